#include "IcmpPing.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/ip.h>
#include <netinet/ip_icmp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace IcmpPing {

namespace {

constexpr quint16 kSequence = 1;
constexpr int kReplyBuffer = 1500;

quint16 Checksum(const QByteArray &packet)
{
    quint32 sum = 0;
    for (qsizetype i = 0; i + 1 < packet.size(); i += 2)
        sum +=
            quint32(static_cast<unsigned char>(packet[i]) << 8 | static_cast<unsigned char>(packet[i + 1]));
    if (packet.size() % 2)
        sum += quint32(static_cast<unsigned char>(packet.back()) << 8);
    while (sum >> 16)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return quint16(~sum);
}

QByteArray EchoRequest(const QByteArray &payload, quint16 identifier)
{
    QByteArray packet(8, '\0');
    packet[0] = char(ICMP_ECHO);
    packet[4] = char(identifier >> 8);
    packet[5] = char(identifier & 0xFF);
    packet[7] = char(kSequence);
    packet += payload;
    const quint16 sum = Checksum(packet);
    packet[2] = char(sum >> 8);
    packet[3] = char(sum & 0xFF);
    return packet;
}

// Unprivileged ping sockets first; a raw socket where the process may open one.
int OpenSocket(bool &raw)
{
    int fd = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_ICMP);
    raw = fd < 0;
    if (raw)
        fd = ::socket(AF_INET, SOCK_RAW, IPPROTO_ICMP);
    return fd;
}

class SocketCloser
{
public:
    explicit SocketCloser(int fd) : m_fd(fd) {}
    ~SocketCloser() { ::close(m_fd); }
    SocketCloser(const SocketCloser &) = delete;
    SocketCloser &operator=(const SocketCloser &) = delete;

private:
    int m_fd;
};

} // namespace

std::optional<EchoReply> Echo(const QHostAddress &address, const QByteArray &payload, int timeoutMs)
{
    if (address.protocol() != QAbstractSocket::IPv4Protocol)
        return std::nullopt;
    bool raw = false;
    const int fd = OpenSocket(raw);
    if (fd < 0)
        return std::nullopt;
    const SocketCloser closer(fd);
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_addr.s_addr = htonl(address.toIPv4Address());
    const quint16 identifier = quint16(::getpid());
    const QByteArray request = EchoRequest(payload, identifier);
    QElapsedTimer watch;
    watch.start();
    if (::sendto(fd, request.constData(), size_t(request.size()), 0, reinterpret_cast<sockaddr *>(&target),
                 sizeof target) < 0)
        return std::nullopt;
    const QDeadlineTimer deadline(timeoutMs);
    char buffer[kReplyBuffer];
    while (!deadline.hasExpired()) {
        pollfd wait{fd, POLLIN, 0};
        if (::poll(&wait, 1, int(deadline.remainingTime())) <= 0)
            break;
        sockaddr_in from{};
        socklen_t fromSize = sizeof from;
        const ssize_t got =
            ::recvfrom(fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr *>(&from), &fromSize);
        if (got <= 0)
            continue;
        // A raw socket hands over the IP header too; a ping socket only the ICMP message.
        const int skip = raw ? (static_cast<unsigned char>(buffer[0]) & 0x0F) * 4 : 0;
        if (got < skip + 8 || (raw && from.sin_addr.s_addr != target.sin_addr.s_addr))
            continue;
        const auto *icmp = reinterpret_cast<const unsigned char *>(buffer + skip);
        const quint16 sequence = quint16(icmp[6] << 8 | icmp[7]);
        const quint16 owner = quint16(icmp[4] << 8 | icmp[5]);
        // A raw socket sees every ICMP message of the machine, our own request on loopback included.
        if (icmp[0] == ICMP_ECHO || sequence != kSequence || (raw && owner != identifier))
            continue;
        EchoReply reply;
        reply.address = QHostAddress(ntohl(from.sin_addr.s_addr));
        reply.status = icmp[0] == ICMP_ECHOREPLY ? 0 : icmp[0];
        reply.roundTripMs = watch.elapsed();
        reply.data = QByteArray(buffer + skip + 8, int(got - skip - 8));
        return reply;
    }
    return std::nullopt;
}

} // namespace IcmpPing
