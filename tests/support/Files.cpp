#include "Files.h"

#include "TestMain.h"
#include "core/Ansi.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

void CopyFolder(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString source = files.next();
        const QString target = to + source.mid(from.size());
        QDir().mkpath(QFileInfo(target).path());
        if (!QFile::copy(source, target))
            qFatal("cannot copy %s", qPrintable(source));
    }
}

QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString WriteFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s: %s", qPrintable(path), qPrintable(file.errorString()));
    return path;
}

QString WriteLines(const QString &path, const QStringList &lines)
{
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += Ansi::Encode(line + u"\r\n"_s);
    return WriteFile(path, bytes);
}

QByteArray RandomBytes(qsizetype size)
{
    static QRandomGenerator random(RandomSeed());
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

QString WriteScript(const QString &path, const QByteArray &body)
{
    WriteFile(path, "#!/bin/sh\n" + body + "\n");
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner);
    return path;
}

QStringList FileNames(const QString &folder, const QStringList &filters)
{
    return QDir(folder).entryList(filters, QDir::Files, QDir::Name);
}

bool RunProgram(const QString &program, const QStringList &arguments, QByteArray *output, int timeoutMs)
{
    QProcess process;
    process.start(program, arguments);
    const bool done = process.waitForFinished(timeoutMs) && process.exitStatus() == QProcess::NormalExit &&
                      process.exitCode() == 0;
    if (!done)
        qWarning("%s failed: %s", qPrintable(program), process.readAllStandardError().constData());
    if (output)
        *output = done ? process.readAllStandardOutput() : QByteArray();
    return done;
}

QByteArray ProgramOutput(const QString &program, const QStringList &arguments, int timeoutMs)
{
    QByteArray output;
    RunProgram(program, arguments, &output, timeoutMs);
    return output;
}

bool WaitUntil(const std::function<bool()> &done, int ms)
{
    const QDeadlineTimer deadline(ms);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(20);
    }
    return done();
}

} // namespace TestSupport
