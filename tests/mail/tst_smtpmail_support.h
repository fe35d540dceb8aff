#pragma once
// What the tests of the report mail sender share: an application folder with a schedule, a run log and
// one report item, the mail client's short time-outs, and readers of SMTP.Log and the run log.

#include "MailTestPeers.h"

#include "core/Ansi.h"
#include "core/TWReg.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

namespace SmtpMailTest {

// Failures cost seconds: the client reads these from its own settings once PersistentSettings is set.
inline void ShortClientTimeouts(quint16 remotePort = 25)
{
    const QString program = QStringLiteral("QorloSendMail");
    const QString section = QStringLiteral("Settings");
    TWReg::SaveSetting(section, QStringLiteral("PersistentSettings"), QStringLiteral("1"), program);
    TWReg::SaveSetting(section, QStringLiteral("ConnectTimeout"), QStringLiteral("5"), program);
    TWReg::SaveSetting(section, QStringLiteral("MessageTimeout"), QStringLiteral("5"), program);
    TWReg::SaveSetting(section, QStringLiteral("ConnectRetry"), QStringLiteral("1"), program);
    TWReg::SaveSetting(section, QStringLiteral("RemotePort"), QString::number(remotePort), program);
}

// An application folder whose schedule sends to the peer and has item 7 "Sales" at the cursor, running.
struct MailApp
{
    explicit MailApp(quint16 port)
    {
        schedule.SMTP_Server = QStringLiteral("127.0.0.1");
        schedule.SMTP_From = QStringLiteral("scheduler@example.com");
        schedule.SMTP_Port = port;
        schedule.SMTPDelay = 0;
        schedule.AddNew();
        schedule.SetReportID(QStringLiteral("7"));
        schedule.SetName(QStringLiteral("Sales"));
        schedule.SetFile(dir.filePath(QStringLiteral("sales.rpt")));
        schedule.SetNextRun(QStringLiteral("02-Mar-2026 06:00"));
        schedule.ProcessingID = QStringLiteral("7");
        schedule.ProcessingName = QStringLiteral("Sales");
    }
    QString path(const QString &name) const { return dir.filePath(name); }
    QString writeFile(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        return path(name);
    }
    QString smtpLog() const { return Ansi::Decode(ReadAll(path(QStringLiteral("SMTP.Log")))); }
    // "ID|text|next" of every run log entry.
    QStringList logEntries() const
    {
        clsLog reader(dir.path());
        reader.Load(reader.FileName());
        QStringList entries;
        for (int row = 0; row < reader.Count(); ++row)
            entries.append(reader.CellAt(row, clsLog::ColReportID) + QLatin1Char('|') +
                           reader.CellAt(row, clsLog::ColText) + QLatin1Char('|') +
                           reader.CellAt(row, clsLog::ColNextDate));
        return entries;
    }

    QTemporaryDir dir;
    clsSchedule schedule{dir.path()};
    clsLog log{dir.path()};
};

inline QJsonObject PartOf(const QJsonObject &parsed, int index)
{
    return parsed.value(QStringLiteral("parts")).toArray().at(index).toObject();
}

inline QStringList Recipients(const QString &message)
{
    return SmtpPeer::envelopeOf(message).value(QStringLiteral("rcpt_tos")).toVariant().toStringList();
}

// The file names of the message's parts, the body's part giving an empty name.
inline QStringList PartNames(const QJsonObject &parsed)
{
    QStringList names;
    for (const QJsonValue &part : parsed.value(QStringLiteral("parts")).toArray())
        names.append(part.toObject().value(QStringLiteral("filename")).toString());
    return names;
}

} // namespace SmtpMailTest
