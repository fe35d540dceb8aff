#include "PrinterNames.h"

#include "engine/page/CupsPrinter.h"

QStringList InstalledPrinterNames()
{
    QStringList names;
    for (const Engine::PrinterInfo &printer : Engine::CupsPrinter::InstalledPrinters())
        names.append(printer.deviceName);
    return names;
}
