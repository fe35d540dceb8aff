#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <unistd.h>

QString SingleInstance::ServerName(const QString &appPath)
{
    QString canonical = QFileInfo(appPath).canonicalFilePath();
    if (canonical.isEmpty())
        canonical = QDir::cleanPath(QFileInfo(appPath).absoluteFilePath());
    // A hash keeps long folder names within the socket name's limit.
    const QByteArray folder = QCryptographicHash::hash(canonical.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("QorloMANAGER-") + QString::number(getuid()) + QLatin1Char('-') +
           QLatin1String(folder);
}

bool SingleInstance::Claim(const QString &appPath)
{
    m_server.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    return m_server.listen(ServerName(appPath));
}
