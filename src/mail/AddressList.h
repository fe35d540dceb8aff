#pragma once
// Expands recipient and printer lists: <file> references by the lines of list files, @0..@9 by domains.

#include <QString>
#include <QStringList>
#include <functional>

namespace AddressList {

// What an expansion reads besides its text: list files named without "/" lie in `appPath`, the
// shortcuts @0..@9 stand for `domains` (an empty one is no shortcut), and a missing list file is
// reported through `logMissing`.
struct Sources
{
    QString appPath;
    QStringList domains;
    std::function<void(const QString &text)> logMissing;
};

// ExpandListFiles followed by ExpandDomainShortcuts.
QString ExpandAddressList(const QString &text, const Sources &sources);

// Replaces each <name> by the lines of that list file, joined by ";", nested lists included. A file met
// a second time ends the expansion as the text stands; a missing file is logged once and its reference
// stays in the text.
QString ExpandListFiles(const QString &text, const Sources &sources);

// Replaces every "@" + digit whose domain is set by "@" + that domain, digits 0 to 9 in turn.
QString ExpandDomainShortcuts(const QString &text, const QStringList &domains);

} // namespace AddressList
