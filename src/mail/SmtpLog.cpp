#include "SmtpLog.h"

#include "core/Ansi.h"
#include "core/Clock.h"
#include "core/CommonFile.h"

#include <QSaveFile>

namespace SmtpLog {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

// One buffer for the whole process, whoever sends: a pass of the Mail folder nested in a run's send
// starts it afresh, and SMTP.Log shows whatever story came last.
QString &Buffer()
{
    static QString buffer;
    return buffer;
}

QString TimePrefix()
{
    return Clock::current().now().toString(QStringLiteral("HH:mm")) + QStringLiteral("   ");
}

} // namespace

const QString &SmtpLogBuffer()
{
    return Buffer();
}

void StartSmtpLog(const QString &text)
{
    if (text.isEmpty())
        Buffer() = TimePrefix() + QStringLiteral("Starting new message");
    else
        Buffer() = TimePrefix() + text + kCrLf;
}

void AddSmtpLog(const QString &text)
{
    Buffer() += kCrLf + TimePrefix() + text;
}

void FlushSmtpLog(const QString &appPath)
{
    QSaveFile file(CommonFile::JoinPath(appPath, QStringLiteral("SMTP.Log")));
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(Ansi::Encode(Buffer() + kCrLf));
    file.commit();
}

} // namespace SmtpLog
