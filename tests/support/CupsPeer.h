#pragma once
// A private CUPS server with one PDF printer, "PeerPDFFile", on a file: device; and the print server
// setting of a test.

#include "Peers.h"

#include <QTemporaryDir>

namespace TestSupport {

// cupsd, the PDF printer's driver and pdfinfo to read what it prints.
bool CupsPeerInstalled();
// Starts cupsd below `folder` on a free port and points libcups at it. Returns the file the printer
// writes, or an empty text with peer.error() saying why.
QString StartCupsPeer(PeerProcess &peer, const QTemporaryDir &folder);
// Points libcups and Qt at the print server at `address` ("host:port").
void UsePrintServer(const QByteArray &address);
// Points them at a port where no print server answers: the printer list is empty at once.
void NoPrintServer();

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
