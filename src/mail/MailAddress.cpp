#include "MailAddress.h"

#include "core/Numbers.h"

namespace MailAddress {

namespace {

// Searched as one text: any run of its letters passes as a top-level domain.
const QLatin1String kTopLevelDomains(
    "AERO BIZ COM COOP EDU GOV INFO INT MIL MUSEUM NAME NET ORG PRO AC AD AE AF AG AI AL AM AN AO AQ AR AS "
    "AT AU AW AZ BA BB BD BE BF BG BH BI BJ BM BN BO BR BS BT BV BW BY BZ CA CC CD CF CG CH CI CK CL CM CN "
    "CO "
    "CR CU CV CX CY CZ DE DJ DK DM DO DZ EC EE EG EH ER ES ET FI FJ FK FM FO FR GA GD GE GF GG GH GI GL GM "
    "GN "
    "GP GQ GR GS GT GU GW GY HK HM HN HR HT HU ID IE IL IM IN IO IQ IR IS IT JE JM JO JP KE KG KH KI KM KN "
    "KP "
    "KR KW KY KZ LA LB LC LI LK LR LS LT LU LV LY MA MC MD MG MH MK ML MM MN MO MP MQ MR MS MT MU MV MW MX "
    "MY "
    "MZ NA NC NE NF NG NI NL NO NP NR NU NZ OM PA PE PF PG PH PK PL PM PN PR PS PT PW PY QA RE RO RU RW SA "
    "SB "
    "SC SD SE SG SH SI SJ SK SL SM SN SO SR ST SV SY SZ TC TD TF TG TH TJ TK TM TN TO TP TR TT TV TW TZ UA "
    "UG "
    "UK UM US UY UZ VA VC VE VG VI VN VU WF WS YE YT YU ZA ZM ZW");

} // namespace

bool IsValidEmailAddress(const QString &address)
{
    const QStringList parts = address.split(QLatin1Char('@'));
    return parts.size() == 2 && IsValidDomain(parts.at(1));
}

bool IsValidDomain(const QString &text)
{
    const QString domain = text.trimmed().toUpper();
    if (domain.isEmpty())
        return false;
    if (IsIPAddress(domain))
        return true;
    const QStringList labels = domain.split(QLatin1Char('.'));
    return labels.size() >= 2 && QString(kTopLevelDomains).contains(labels.last());
}

bool IsIPAddress(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 4)
        return false;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (!Numbers::IsNumeric(parts.at(i)))
            return false;
        if (Numbers::NumericPrefix(parts.at(i)) > (i == 0 ? 239 : 255))
            return false;
    }
    return true;
}

QStringList SplitList(const QString &text, const QString &delimiter)
{
    if (text.isEmpty())
        return QStringList();
    return delimiter.isEmpty() ? QStringList{text} : text.split(delimiter);
}

QStringList CleanAddressList(const QStringList &list)
{
    QStringList cleaned;
    cleaned.reserve(list.size());
    for (const QString &entry : list) {
        QString clean = entry.trimmed();
        clean.remove(QStringLiteral("\r\n")).remove(QLatin1Char('\t'));
        cleaned.append(clean);
    }
    return cleaned;
}

} // namespace MailAddress
