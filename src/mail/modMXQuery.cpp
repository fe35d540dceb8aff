#include "modMXQuery.h"

#include "core/Ansi.h"
#include "core/QorloError.h"

#include <QFile>
#include <QHostAddress>
#include <QHostInfo>
#include <QTextStream>
#include <QUdpSocket>

namespace modMXQuery {

namespace {

constexpr quint16 kQueryId = 0x11DF;
constexpr quint16 kTypeMX = 15;
constexpr int kAnswerLimit = 2048;
constexpr int kAnswerWaitMs = 5000;
// A pointer that leads back into itself would recurse for ever; real names need a handful of hops.
constexpr int kPointerHops = 32;

struct State
{
    QString resolverFile = QStringLiteral("/etc/resolv.conf");
    quint16 dnsPort = 53;
    QStringList dnsServers;
    QString localDomain;
    QString parentDomain;
    QString bestMX;
    QString queryDomain;
    QList<MXRecord> mxRecords;
};

// One state for the whole process: the name servers are discovered at the first query and kept until
// the program ends, and every query replaces the records of the one before.
State &Module()
{
    static State state;
    return state;
}

[[noreturn]] void Raise(const QString &description)
{
    throw QorloError(QorloError::MXError, description);
}

// Bytes past the received answer read as 0, as in the zeroed receive buffer.
int Byte(const QByteArray &buffer, int position)
{
    return position >= 0 && position < buffer.size() ? static_cast<unsigned char>(buffer[position]) : 0;
}

void AppendWord(QByteArray &packet, quint16 value)
{
    packet.append(char(value >> 8));
    packet.append(char(value & 0xFF));
}

void ReadName(const QByteArray &buffer, int &position, QString &text, int hops)
{
    for (;;) {
        const int length = Byte(buffer, position);
        if (length == 0)
            return;
        if (length == 192) {
            int target = Byte(buffer, position + 1);
            if (hops < kPointerHops)
                ReadName(buffer, target, text, hops + 1);
            position += 2;
            return;
        }
        ++position;
        for (int i = 0; i < length; ++i)
            text.append(Ansi::Char(Byte(buffer, position + i)));
        position += length;
        if (Byte(buffer, position) == 0)
            return;
        text.append(QLatin1Char('.'));
    }
}

void SortByPreference(QList<MXRecord> &records)
{
    bool swapped = true;
    while (swapped) {
        swapped = false;
        for (qsizetype i = 0; i + 1 < records.size(); ++i) {
            if (records.at(i + 1).preference < records.at(i).preference) {
                records.swapItemsAt(i, i + 1);
                swapped = true;
            }
        }
    }
}

QHostAddress ServerAddress(const QString &server)
{
    const QHostAddress direct(server);
    if (!direct.isNull())
        return direct;
    const QList<QHostAddress> found = QHostInfo::fromName(server).addresses();
    return found.isEmpty() ? QHostAddress() : found.first();
}

// The name of the server's address, for a machine whose resolver file names no domain.
QString DomainFromServerName(const QString &server)
{
    const QHostInfo info = QHostInfo::fromName(server);
    const QString name = info.hostName();
    if (info.error() != QHostInfo::NoError || name == server || !name.contains(QLatin1Char('.')))
        return QString();
    return name.mid(name.indexOf(QLatin1Char('.')) + 1);
}

QByteArray Exchange(const QHostAddress &server, const QByteArray &query)
{
    QUdpSocket socket;
    const qint64 sent = socket.writeDatagram(query, server, Module().dnsPort);
    if (sent <= 0)
        Raise(QStringLiteral("Problem sending MX query"));
    QByteArray answer(kAnswerLimit, '\0');
    if (!socket.waitForReadyRead(kAnswerWaitMs) || socket.readDatagram(answer.data(), kAnswerLimit) <= 0)
        Raise(QStringLiteral("Problem receiving MX query"));
    return answer;
}

} // namespace

void SetResolverFile(const QString &path)
{
    Module().resolverFile = path;
    Module().dnsServers.clear();
}

void SetDnsPort(quint16 port)
{
    Module().dnsPort = port;
    Module().dnsServers.clear();
}

void GetDNSInfo()
{
    State &s = Module();
    QString list;
    QString domain;
    QString firstSearch;
    QFile file(s.resolverFile);
    if (file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        QTextStream in(&file);
        while (!in.atEnd()) {
            const QStringList words = in.readLine().simplified().split(QLatin1Char(' '));
            if (words.size() < 2)
                continue;
            if (words.first() == QLatin1String("nameserver"))
                list += words.at(1) + QLatin1Char(',');
            else if (words.first() == QLatin1String("domain"))
                domain = words.at(1);
            else if (words.first() == QLatin1String("search") && firstSearch.isEmpty())
                firstSearch = words.at(1);
        }
    }
    if (domain.isEmpty())
        domain = firstSearch;
    list.replace(QLatin1Char(' '), QLatin1Char(','));
    if (list.endsWith(QLatin1Char(',')))
        list.chop(1);
    s.dnsServers = list.isEmpty() ? QStringList() : list.split(QLatin1Char(','));
    s.localDomain = domain;
    if (s.localDomain.isEmpty() && !s.dnsServers.isEmpty())
        s.localDomain = DomainFromServerName(s.dnsServers.first());
    const QStringList labels = s.localDomain.split(QLatin1Char('.'));
    s.parentDomain =
        labels.size() == 1 ? s.localDomain : labels.at(labels.size() - 2) + QLatin1Char('.') + labels.last();
}

QString ResolveMX(const QString &domain)
{
    State &s = Module();
    s.mxRecords.clear();
    s.bestMX.clear();
    if (s.dnsServers.isEmpty())
        GetDNSInfo();
    if (s.dnsServers.isEmpty())
        Raise(QStringLiteral("No DNS entries found, MX Query cannot contine."));
    const QString target = domain.isEmpty() ? s.localDomain : domain;
    if (target.size() < 5)
        Raise(QStringLiteral("No Valid Domain Specified"));
    s.queryDomain = target;
    const QHostAddress server = ServerAddress(s.dnsServers.first());
    if (server.isNull())
        return QString();
    const QByteArray answer = Exchange(server, BuildQuery(target));
    const int count = Byte(answer, 6) * 256 + Byte(answer, 7);
    if (count != 0)
        return ParseMXResponse(answer, 12, count);
    if (s.queryDomain.indexOf(s.parentDomain) > 0) {
        s.queryDomain = s.queryDomain.mid(s.queryDomain.indexOf(QLatin1Char('.')) + 1);
        return ResolveMX(s.queryDomain);
    }
    return QString();
}

QStringList DnsServers()
{
    return Module().dnsServers;
}
QString LocalDomain()
{
    return Module().localDomain;
}
QString ParentDomain()
{
    return Module().parentDomain;
}
QString BestMX()
{
    return Module().bestMX;
}
QList<MXRecord> MXRecords()
{
    return Module().mxRecords;
}

QByteArray BuildQuery(const QString &domain)
{
    QByteArray packet;
    AppendWord(packet, kQueryId);
    packet.append(char(0x01));
    packet.append(char(0x00));
    AppendWord(packet, 1);
    AppendWord(packet, 0);
    AppendWord(packet, 0);
    AppendWord(packet, 0);
    for (const QString &label : domain.split(QLatin1Char('.'))) {
        packet.append(char(label.size()));
        packet.append(Ansi::Encode(label));
    }
    packet.append(char(0x00));
    AppendWord(packet, kTypeMX);
    AppendWord(packet, 1);
    return packet;
}

void ReadDomainName(const QByteArray &buffer, int &position, QString &text)
{
    ReadName(buffer, position, text, 0);
}

QString ParseMXResponse(const QByteArray &buffer, int position, int count)
{
    State &s = Module();
    s.mxRecords.clear();
    s.bestMX.clear();
    int best = -1;
    QString question;
    ReadDomainName(buffer, position, question);
    // Past the question's end byte, type and class, the answer's 2-byte owner pointer and the type's
    // high byte: on the low byte of the first answer's type.
    position += 8;
    while (count != 0) {
        if (Byte(buffer, position) != kTypeMX)
            break;
        position += 9;
        const qint16 preference = qint16(Byte(buffer, position) * 256 + Byte(buffer, position + 1));
        position += 2;
        QString host;
        ReadDomainName(buffer, position, host);
        if (!host.trimmed().isEmpty()) {
            s.mxRecords.append({host, preference});
            if (best == -1 || preference < best) {
                best = preference;
                s.bestMX = host;
            }
        }
        // Past the next owner name, taken to be a pointer, and the high byte of its type.
        position += 3;
        --count;
    }
    SortByPreference(s.mxRecords);
    return s.bestMX;
}

} // namespace modMXQuery
