#include "CupsPeer.h"

#include <QFile>
#include <QFileInfo>

#include <cups/cups.h>

namespace TestSupport {

bool CupsPeerInstalled()
{
    return !FindProgram(QStringLiteral("cupsd")).isEmpty() &&
           !FindProgram(QStringLiteral("pdfinfo")).isEmpty() &&
           QFileInfo::exists(QStringLiteral("/usr/share/ppd/cupsfilters/Generic-PDF_Printer-PDF.ppd"));
}

QString StartCupsPeer(PeerProcess &peer, const QTemporaryDir &folder)
{
    // The print filters run as the user lp and must pass through this folder.
    QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                             QFileDevice::ExeOwner | QFileDevice::ExeGroup |
                                             QFileDevice::ExeOther);
    const QString peerDir = folder.filePath(QStringLiteral("cups"));
    const quint16 port = FreePort();
    if (!peer.start(QStringLiteral("/bin/bash"),
                    {PeerScript(QStringLiteral("cups_peer.sh")), peerDir, QString::number(port)},
                    QStringLiteral("READY"), 30000))
        return QString();
    UsePrintServer("127.0.0.1:" + QByteArray::number(port));
    return peerDir + QStringLiteral("/out/PeerPDFFile.pdf");
}

void UsePrintServer(const QByteArray &address)
{
    qputenv("CUPS_SERVER", address);
    // libcups remembers the first server it found.
    cupsSetServer(nullptr);
}

void NoPrintServer()
{
    UsePrintServer("127.0.0.1:" + QByteArray::number(FreePort()));
}

} // namespace TestSupport
