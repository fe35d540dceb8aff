#pragma once
// A private CUPS server with one PDF printer on a file: device, for the printing tests.

#include "Peers.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace TestSupport {

// cupsd, the PDF printer's driver and pdfinfo to read what it prints.
inline bool CupsPeerInstalled()
{
    return !FindProgram(QStringLiteral("cupsd")).isEmpty() &&
           !FindProgram(QStringLiteral("pdfinfo")).isEmpty() &&
           QFileInfo::exists(QStringLiteral("/usr/share/ppd/cupsfilters/Generic-PDF_Printer-PDF.ppd"));
}

// Starts cupsd below `folder` on a free port and points libcups at it. Returns the file the printer
// "PeerPDFFile" writes, or an empty text with peer.error() saying why.
inline QString StartCupsPeer(PeerProcess &peer, const QTemporaryDir &folder)
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
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(port));
    return peerDir + QStringLiteral("/out/PeerPDFFile.pdf");
}

} // namespace TestSupport
