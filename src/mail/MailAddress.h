#pragma once
// Checks and clean-up of mail addresses, host names and the delimited lists they come in.

#include <QString>
#include <QStringList>

namespace MailAddress {

// Two parts around "@", the second a valid domain; the part before the sign is not looked at.
bool IsValidEmailAddress(const QString &address);
// At least two labels, the last one found in the list of top-level domains; a dotted address passes.
bool IsValidDomain(const QString &text);
// Four numeric parts, the first at most 239, the others at most 255.
bool IsIPAddress(const QString &text);
// Splits at the delimiter; an empty text gives no entries, an empty delimiter one entry.
QStringList SplitList(const QString &text, const QString &delimiter);
// Trims each entry and removes every CR LF and tab from it.
QStringList CleanAddressList(const QStringList &list);

} // namespace MailAddress
