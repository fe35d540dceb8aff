#pragma once
// The printers the machine knows: CUPS destinations with their make-and-model and device URI.

#include <QList>
#include <QString>

struct PrinterInfo
{
    QString name;         // the device name
    QString makeAndModel; // the driver name
    QString deviceUri;    // the port
    bool isDefault = false;
};

namespace Printers {

// Asks the CUPS server of the environment (CUPS_SERVER or the local one); none reachable gives none.
QList<PrinterInfo> Installed();
// The default destination's name, or empty.
QString DefaultPrinterName();

} // namespace Printers
