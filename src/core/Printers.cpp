#include "Printers.h"

#include <cups/cups.h>

namespace Printers {

QList<PrinterInfo> Installed()
{
    cups_dest_t *dests = nullptr;
    const int count = cupsGetDests2(CUPS_HTTP_DEFAULT, &dests);
    QList<PrinterInfo> printers;
    for (int i = 0; i < count; ++i) {
        const cups_dest_t &dest = dests[i];
        if (dest.instance)
            continue;
        PrinterInfo info;
        info.name = QString::fromUtf8(dest.name);
        info.makeAndModel =
            QString::fromUtf8(cupsGetOption("printer-make-and-model", dest.num_options, dest.options));
        info.deviceUri = QString::fromUtf8(cupsGetOption("device-uri", dest.num_options, dest.options));
        info.isDefault = dest.is_default != 0;
        printers.append(info);
    }
    cupsFreeDests(count, dests);
    return printers;
}

QString DefaultPrinterName()
{
    for (const PrinterInfo &printer : Installed()) {
        if (printer.isDefault)
            return printer.name;
    }
    return QString();
}

} // namespace Printers
