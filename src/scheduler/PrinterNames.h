#pragma once
// The names of the machine's printers, from the engine's CUPS listing: for the start-up warning, the
// schedule file's printer list and the item editor.

#include <QStringList>

QStringList InstalledPrinterNames();
