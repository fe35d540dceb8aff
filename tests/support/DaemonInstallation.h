#pragma once
// The windowless program copied into a fresh application folder, with its own settings folder, for the
// tests that run it as a process.

#include "Files.h"
#include "Peers.h"

#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

namespace TestSupport {

struct DaemonInstallation
{
    // `daemon` is the built program; mail documents go out on `smtpPort` with short time-outs.
    DaemonInstallation(const QString &daemon, quint16 smtpPort)
    {
        QFile::copy(daemon, program());
        QFile::setPermissions(program(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QSettings mail(config.filePath(QStringLiteral("Tessaly Works/QorloSendMail.ini")),
                       QSettings::IniFormat);
        mail.beginGroup(QStringLiteral("Settings"));
        mail.setValue(QStringLiteral("PersistentSettings"), QStringLiteral("1"));
        mail.setValue(QStringLiteral("RemotePort"), QString::number(smtpPort));
        mail.setValue(QStringLiteral("ConnectTimeout"), QStringLiteral("5"));
        mail.setValue(QStringLiteral("MessageTimeout"), QStringLiteral("10"));
        mail.setValue(QStringLiteral("ConnectRetry"), QStringLiteral("1"));
    }
    QString program() const { return app.filePath(QStringLiteral("qorlomanagerd")); }
    QString path(const QString &name) const { return app.filePath(name); }
    void start(QProcess &process) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
        // No print server: the start-up warns and goes on at once.
        environment.insert(QStringLiteral("CUPS_SERVER"),
                           QStringLiteral("127.0.0.1:") + QString::number(FreePort()));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(app.path());
        process.start(program(), {});
    }
    // A script that appends its name to order.txt.
    QString script(const QString &name) const
    {
        const QString file = path(name + QStringLiteral(".sh"));
        WriteScript(file,
                    "echo " + name.toUtf8() + " >> '" + path(QStringLiteral("order.txt")).toUtf8() + "'");
        return file;
    }
    QStringList order() const
    {
        return QString::fromUtf8(ReadFile(path(QStringLiteral("order.txt"))))
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    QTemporaryDir app;
    QTemporaryDir config;
};

} // namespace TestSupport
