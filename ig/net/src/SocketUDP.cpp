// SPDX-License-Identifier: MIT
#include "ig/net/SocketUDP.h"

#include "ig/base/jLog.h"
#include "program/Clock.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <linux/sock_diag.h>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ig {

namespace {

// Room for about 900 host records: what a host at 100 records per second sends in 9 s, and a host
// at 1,000 per second in nearly one, so that a stall of the channel loses nothing.
constexpr int LEAST_RECEIVE_BUFFER = 1 << 20;

// A sender that has been silent for so long is not one of several that send at a time.
constexpr double SENDER_PAUSE = 1; // s

jVector<SocketUDP*>& openSockets() {
    static jVector<SocketUDP*> sockets;
    return sockets;
}

jVector<RefusedPort>& refusedPorts() {
    static jVector<RefusedPort> ports;
    return ports;
}

void forgetRefusal(int port) {
    jVector<RefusedPort>& refused = refusedPorts();
    for (int i = refused.size() - 1; i >= 0; i--)
        if (refused[i].port == port) refused.remove(i);
}

sockaddr_in makeAddress(std::uint32_t address, int port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = address;
    result.sin_port = htons(static_cast<std::uint16_t>(port));
    return result;
}

// Address of a dotted text, in network byte order; 0 when it is none. No names: asking for one can
// take seconds, and no operation of a socket may wait on the network.
std::uint32_t parseAddress(const jString& ip) {
    in_addr address{};
    if (ip == "localhost") return htonl(INADDR_LOOPBACK);
    return inet_pton(AF_INET, ip.c_str(), &address) == 1 ? address.s_addr : 0;
}

bool isPort(int port) { return port >= 1 && port <= 65535; }

// size × count, or more than any datagram when the product doesn't fit.
std::size_t product(std::size_t size, std::size_t count) {
    std::size_t bytes = 0;
    return __builtin_mul_overflow(size, count, &bytes) ? std::numeric_limits<int>::max() : bytes;
}

} // namespace

SocketUDP::~SocketUDP() { close(); }

bool SocketUDP::create() {
    close();
    m_descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (!isOpened()) return fail("create");
    m_drops = 0;
    openSockets().append(this);
    return true;
}

bool SocketUDP::bind(int port) {
    return isPort(port) ? bindTo(port) : refuse(port, "not a port, 1 to 65535");
}

bool SocketUDP::bind() { return bindTo(0); }

bool SocketUDP::bindTo(int port) {
    const sockaddr_in local = makeAddress(htonl(INADDR_ANY), port);
    if (::bind(m_descriptor, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0)
        return refuse(port, std::strerror(errno));
    forgetRefusal(port);
    return true;
}

bool SocketUDP::refuse(int port, const char* reason) const {
    jLog::error("SocketUDP::bind: local port %d: %s", port, reason);
    forgetRefusal(port);
    refusedPorts().append({port, reason});
    return false;
}

bool SocketUDP::recv(int size) {
    const int wanted = std::max(size, LEAST_RECEIVE_BUFFER);
    // The first form exceeds the system's limit and needs a privilege; the second takes what the
    // limit allows.
    if (setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &wanted, sizeof wanted) != 0 &&
        setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &wanted, sizeof wanted) != 0)
        return fail("recv");
    m_statistics.asked_buffer = 2 * wanted; // the system adds as much again for itself
    socklen_t length = sizeof m_statistics.receive_buffer;
    getsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &m_statistics.receive_buffer, &length);
    return true;
}

bool SocketUDP::send(int size) {
    int granted = 0;
    socklen_t length = sizeof granted;
    if (getsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &granted, &length) != 0)
        return fail("send");
    if (granted >= size) return true;
    return setsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &size, sizeof size) == 0 || fail("send");
}

bool SocketUDP::nonblock() {
    const int flags = fcntl(m_descriptor, F_GETFL);
    return (flags >= 0 && fcntl(m_descriptor, F_SETFL, flags | O_NONBLOCK) == 0) ||
           fail("nonblock");
}

// Reports the system's reason for the failure of a set-up step.
bool SocketUDP::fail(const char* operation) const {
    jLog::error("SocketUDP::%s: %s", operation, std::strerror(errno));
    return false;
}

bool SocketUDP::setSendIP(const jString& ip) {
    const std::uint32_t address = parseAddress(ip);
    if (!address) {
        jLog::error("SocketUDP::setSendIP: \"%s\" is not an address", ip.c_str());
        m_statistics.refused_destination = ip;
        return false;
    }
    m_send_address = address;
    m_statistics.refused_destination.clear();
    return true;
}

bool SocketUDP::setSendPort(int port) {
    if (!isPort(port)) {
        jLog::error("SocketUDP::setSendPort: %d is not a port", port);
        return false;
    }
    m_send_port = port;
    return true;
}

int SocketUDP::read(void* buffer, std::size_t size, std::size_t count) {
    const std::size_t room = product(size, count);
    if (!isOpened() || !buffer || !room) return 0;
    while (m_in_a_row < DRAIN) {
        sockaddr_in from{};
        socklen_t from_length = sizeof from;
        // With MSG_TRUNC the answer is the datagram's own length, also when it was cut.
        const ssize_t length = recvfrom(m_descriptor, buffer, room, MSG_TRUNC,
                                        reinterpret_cast<sockaddr*>(&from), &from_length);
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return endDrain(errno);
        m_in_a_row++;
        if (m_allowed_sender && from.sin_addr.s_addr != m_allowed_sender) {
            m_statistics.filtered++;
        } else if (length == 0) {
            m_statistics.empty++;
        } else {
            noteReceived(static_cast<int>(length), from.sin_addr.s_addr, ntohs(from.sin_port));
            if (static_cast<std::size_t>(length) <= room) return static_cast<int>(length);
            m_statistics.truncated++;
            return static_cast<int>(room);
        }
    }
    return endDrain(0);
}

/// The answer that ends a drain: 0 when nothing waits or enough was taken, −1 on an error.
int SocketUDP::endDrain(int error) {
    m_in_a_row = 0;
    noteLost();
    const bool waiting = error == EAGAIN || error == EWOULDBLOCK;
    m_statistics.receive_error = waiting ? 0 : error;
    if (m_statistics.receive_error == 0) return 0;
    m_statistics.receive_failures++;
    return -1;
}

void SocketUDP::noteReceived(int length, std::uint32_t address, int port) {
    SocketStatistics& s = m_statistics;
    s.last_received = program::steadyNow();
    if (s.datagrams_received == 0) s.first_received = s.last_received;
    s.smallest = s.datagrams_received ? std::min(s.smallest, length) : length;
    s.largest = std::max(s.largest, length);
    s.datagrams_received++;
    s.bytes_received += length;
    noteSender({address, port, s.last_received});
    if (s.expected_size == 0 || length == s.expected_size) return;
    (length < s.expected_size ? s.too_short : s.too_long)++;
    s.wrong_size = length;
    s.wrong_sender = s.senders[0];
}

/// Puts a sender in front of those known, of which the one that was heard longest ago goes.
void SocketUDP::noteSender(const SocketSender& sender) {
    SocketStatistics& s = m_statistics;
    SocketSender* const end = s.senders + SocketStatistics::SENDERS;
    SocketSender* place = std::find(s.senders, end, sender);
    if (place != s.senders && s.senders[0].port != 0) {
        const bool recent =
            place != end && sender.last_received - place->last_received < SENDER_PAUSE;
        (recent ? s.interleaved : s.taken_over)++;
    }
    std::rotate(s.senders, place == end ? end - 1 : place, place == end ? end : place + 1);
    s.senders[0] = sender;
}

/// The system counts them for as long as the descriptor is open.
void SocketUDP::noteLost() {
    std::uint32_t counts[SK_MEMINFO_VARS] = {};
    socklen_t length = sizeof counts;
    if (getsockopt(m_descriptor, SOL_SOCKET, SO_MEMINFO, counts, &length) != 0) return;
    m_statistics.lost += counts[SK_MEMINFO_DROPS] - m_drops;
    m_drops = counts[SK_MEMINFO_DROPS];
}

void SocketUDP::complain(const SocketComplaint& complaint) {
    m_statistics.implausible++;
    m_statistics.complaint = complaint;
    m_statistics.complaint.sender = m_statistics.senders[0];
}

int SocketUDP::write(const void* data, std::size_t size, std::size_t count) {
    const std::size_t bytes = product(size, count);
    if (!bytes) return 0;
    if (!data || !isOpened()) return failWrite(EBADF);
    if (!m_send_address || !m_send_port) return failWrite(EDESTADDRREQ);
    if (bytes > 65507) return failWrite(EMSGSIZE);
    const sockaddr_in to = makeAddress(m_send_address, m_send_port);
    ssize_t sent = 0;
    do {
        sent =
            sendto(m_descriptor, data, bytes, 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    } while (sent < 0 && errno == EINTR);
    if (sent < 0) return failWrite(errno);
    m_statistics.send_error = 0;
    m_statistics.datagrams_sent++;
    m_statistics.bytes_sent += sent;
    return static_cast<int>(sent);
}

int SocketUDP::failWrite(int error) {
    m_statistics.send_failures++;
    m_statistics.send_error = error;
    return -1;
}

void SocketUDP::close() {
    if (!isOpened()) return;
    ::close(m_descriptor);
    m_descriptor = -1;
    m_in_a_row = 0;
    jVector<SocketUDP*>& open = openSockets();
    open.remove(open.find(this));
}

void SocketUDP::release() {
    close();
    m_send_address = 0;
    m_send_port = 0;
    m_allowed_sender = 0;
    m_statistics = {};
}

int SocketUDP::getPort() const {
    sockaddr_in local{};
    socklen_t length = sizeof local;
    if (!isOpened() || getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&local), &length) != 0)
        return 0;
    return ntohs(local.sin_port);
}

bool SocketUDP::setAllowedSender(const jString& ip) {
    const std::uint32_t address = ip.empty() ? 0 : parseAddress(ip);
    if (!ip.empty() && !address) {
        jLog::error("SocketUDP::setAllowedSender: \"%s\" is not an address", ip.c_str());
        return false;
    }
    m_allowed_sender = address;
    return true;
}

const jVector<SocketUDP*>& SocketUDP::getOpenSockets() { return openSockets(); }

const jVector<RefusedPort>& SocketUDP::getRefusedPorts() { return refusedPorts(); }

jString SocketSender::getText() const {
    if (port == 0) return {};
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address, text, sizeof text);
    return jString(text) + ":" + ToString(port);
}

} // namespace ig
