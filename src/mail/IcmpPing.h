#pragma once
// One ICMP echo request and its reply, where the process may open an ICMP socket.

#include <QByteArray>
#include <QHostAddress>
#include <optional>

namespace IcmpPing {

struct EchoReply
{
    QHostAddress address; // who answered
    int status = 0;       // 0 for an echo reply
    qint64 roundTripMs = 0;
    QByteArray data;
};

// No value when no ICMP socket can be opened, the address is not IPv4, or no reply comes in time.
std::optional<EchoReply> Echo(const QHostAddress &address, const QByteArray &payload, int timeoutMs);

} // namespace IcmpPing
