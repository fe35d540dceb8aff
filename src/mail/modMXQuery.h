#pragma once
// Finds the mail exchanger of a domain with a DNS query of its own over UDP; the name servers and the
// local domain come from the resolver file and are kept for the life of the process.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace modMXQuery {

struct MXRecord
{
    QString host;
    qint16 preference = 0;
};

// Where discovery looks and which port it asks; changing either starts discovery afresh.
void SetResolverFile(const QString &path);
void SetDnsPort(quint16 port);

// The best exchanger of the domain (empty: the local domain), or empty. Raises QorloError 20000
// with the texts of the lookup's failures.
QString ResolveMX(const QString &domain);
// Fills the name servers and the local and parent domains from the resolver file.
void GetDNSInfo();

QStringList DnsServers();
QString LocalDomain();
QString ParentDomain();
QString BestMX();
// The records of the last query, lowest preference first.
QList<MXRecord> MXRecords();

// The query packet for the domain's MX records.
QByteArray BuildQuery(const QString &domain);
// Appends the name at `position` to `text`; only the byte 192 counts as a pointer.
void ReadDomainName(const QByteArray &buffer, int &position, QString &text);
// Walks `count` answers from `position` (the question name) and returns the best exchanger.
QString ParseMXResponse(const QByteArray &buffer, int position, int count);

} // namespace modMXQuery
