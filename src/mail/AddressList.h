#pragma once
// Expands recipient and printer lists: <file> references by the lines of list files, @0..@9 by domains.

#include <QString>

class clsLog;
class clsSchedule;

namespace AddressList {

// ExpandListFiles followed by ExpandDomainShortcuts.
QString ExpandAddressList(const QString &text, const clsSchedule &schedule, clsLog &log);

// Replaces each <name> by the lines of that list file, joined by ";", nested lists included. A name
// without "/" lies in the application folder. A file met a second time ends the expansion as the text
// stands; a missing file is logged once and its reference stays in the text.
QString ExpandListFiles(const QString &text, const clsSchedule &schedule, clsLog &log);

// Replaces every "@" + digit whose domain is set by "@" + that domain, digits 0 to 9 in turn.
QString ExpandDomainShortcuts(const QString &text, const clsSchedule &schedule);

} // namespace AddressList
