#pragma once
// What the tests of the installed programs share: a schedule written as its file, the daemon's
// environment, and bounded waits on the files it writes.

#include "Peers.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <QString>
#include <QThread>

namespace AppTest {

inline QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Pumps events until the file holds `text` or `ms` have passed.
inline bool WaitForText(const QString &path, const QByteArray &text, int ms)
{
    const QDeadlineTimer deadline(ms);
    while (!ReadFile(path).contains(text) && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(50);
    }
    return ReadFile(path).contains(text);
}

// A daemon's environment: its own home and settings, and no print server, so that the start-up
// warns and goes on at once.
inline QProcessEnvironment DaemonEnvironment(const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    environment.insert(QStringLiteral("CUPS_SERVER"),
                       QStringLiteral("127.0.0.1:") + QString::number(TestSupport::FreePort()));
    environment.remove(QStringLiteral("QORLO_APP_FOLDER"));
    return environment;
}

} // namespace AppTest
