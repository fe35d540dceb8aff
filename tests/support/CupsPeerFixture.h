#pragma once
// A private CUPS server with one PDF printer on a file: device, for the printing tests.

#include "Peers.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

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

// The page count and the rotation of the first page of a PDF, as pdfinfo tells them.
inline QPair<int, int> PrintedPagesAndRotation(const QString &file)
{
    QProcess info;
    info.start(FindProgram(QStringLiteral("pdfinfo")), {file});
    info.waitForFinished(30000);
    const QString text = QString::fromUtf8(info.readAllStandardOutput());
    return {QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)")).match(text).captured(1).toInt(),
            QRegularExpression(QStringLiteral("Page rot:\\s+(\\d+)")).match(text).captured(1).toInt()};
}

} // namespace TestSupport

// Starts the peer in `folder` and sets `printed` to the file its printer writes; skips the test, or
// fails it under CI, when the peer's programs are missing.
#define QORLO_START_CUPS_PEER(peer, folder, printed)                                                         \
    do {                                                                                                     \
        QORLO_REQUIRE_PEER(TestSupport::CupsPeerInstalled(),                                                 \
                           QStringLiteral("cups, cups-filters and poppler-utils"));                          \
        QVERIFY((folder).isValid());                                                                         \
        (printed) = TestSupport::StartCupsPeer((peer), (folder));                                            \
        QVERIFY2(!(printed).isEmpty(), qPrintable((peer).error()));                                          \
    } while (false)
