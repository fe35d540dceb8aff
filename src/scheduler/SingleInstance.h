#pragma once
// One scheduler per application folder and user: a local server in the abstract namespace, so
// nothing is left on disk and the name is free again when the process ends.

#include <QLocalServer>
#include <QString>

class SingleInstance
{
public:
    // The server's name for this user and the canonical form of `appPath`.
    static QString ServerName(const QString &appPath);
    // Claims the folder; false when another running instance holds it.
    bool Claim(const QString &appPath);

private:
    QLocalServer m_server;
};
