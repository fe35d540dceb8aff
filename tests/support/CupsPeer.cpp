#include "CupsPeer.h"

#include <QFile>
#include <QFileInfo>

#include <cups/cups.h>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

bool CupsPeerInstalled()
{
    return !FindProgram(u"cupsd"_s).isEmpty() && !FindProgram(u"pdfinfo"_s).isEmpty() &&
           QFileInfo::exists(u"/usr/share/ppd/cupsfilters/Generic-PDF_Printer-PDF.ppd"_s);
}

QString StartCupsPeer(PeerProcess &peer, const QTemporaryDir &folder)
{
    // The print filters run as the user lp and must pass through this folder.
    QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                             QFileDevice::ExeOwner | QFileDevice::ExeGroup |
                                             QFileDevice::ExeOther);
    const QString peerDir = folder.filePath(u"cups"_s);
    const quint16 port = FreePort();
    if (!peer.start(u"/bin/bash"_s, {PeerScript(u"cups_peer.sh"_s), peerDir, QString::number(port)},
                    u"READY"_s, 30000))
        return QString();
    UsePrintServer("127.0.0.1:" + QByteArray::number(port));
    return peerDir + u"/out/PeerPDFFile.pdf"_s;
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
