// SPDX-License-Identifier: MIT
#include "ig/net/SocketUDP.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ig {

namespace {

// Room for about 900 host records: what a host at 100 records per second sends in 9 s, and a host
// at 1,000 per second in nearly one, so that a stall of the channel loses nothing.
constexpr int least_receive_buffer = 1 << 20;

// Far above what a host sends between two frames, and read in about 1 ms.
constexpr int most_in_a_row = 1024;

jVector<SocketUDP*>& openSockets() {
    static jVector<SocketUDP*> sockets;
    return sockets;
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

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
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
    openSockets().append(this);
    return true;
}

bool SocketUDP::bind(int port) {
    if (isPort(port)) return bindTo(port);
    jLog::error("SocketUDP::bind: %d is not a port", port);
    return false;
}

bool SocketUDP::bind() { return bindTo(0); }

bool SocketUDP::bindTo(int port) {
    const sockaddr_in local = makeAddress(htonl(INADDR_ANY), port);
    if (::bind(m_descriptor, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0)
        return true;
    jLog::error("SocketUDP::bind: local port %d: %s", port, std::strerror(errno));
    return false;
}

bool SocketUDP::recv(int size) {
    const int wanted = std::max(size, least_receive_buffer);
    // The first form exceeds the system's limit and needs a privilege; the second takes what the
    // limit allows.
    if (setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &wanted, sizeof wanted) != 0 &&
        setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &wanted, sizeof wanted) != 0)
        return fail("recv");
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
        return false;
    }
    m_send_address = address;
    m_send_ip = ip;
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
    while (m_in_a_row < most_in_a_row) {
        sockaddr_in from{};
        socklen_t from_length = sizeof from;
        // With MSG_TRUNC the answer is the datagram's own length, also when it was cut.
        const ssize_t length = recvfrom(m_descriptor, buffer, room, MSG_TRUNC,
                                        reinterpret_cast<sockaddr*>(&from), &from_length);
        if (length < 0) {
            if (errno == EINTR) continue;
            m_in_a_row = 0;
            if (errno == EAGAIN || errno == EWOULDBLOCK) return 0;
            m_statistics.receive_failures++;
            if (m_read_report.allow()) jLog::warning("SocketUDP::read: %s", std::strerror(errno));
            return -1;
        }
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
    m_in_a_row = 0;
    return 0;
}

void SocketUDP::noteReceived(int length, std::uint32_t sender, int port) {
    SocketStatistics& s = m_statistics;
    s.last_received = steadySeconds();
    if (s.datagrams_received == 0) s.first_received = s.last_received;
    s.smallest = s.datagrams_received ? std::min(s.smallest, length) : length;
    s.largest = std::max(s.largest, length);
    s.datagrams_received++;
    s.bytes_received += static_cast<std::uint64_t>(length);
    s.last_sender_port = port;
    if (sender == m_last_sender) return;
    m_last_sender = sender;
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &sender, text, sizeof text);
    s.last_sender_address = text;
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
    m_statistics.datagrams_sent++;
    m_statistics.bytes_sent += static_cast<std::uint64_t>(sent);
    return static_cast<int>(sent);
}

int SocketUDP::failWrite(int error) {
    m_statistics.send_failures++;
    int held_back = 0;
    if (error != EAGAIN && error != EWOULDBLOCK && m_write_report.allow(&held_back))
        jLog::warning("SocketUDP::write: to \"%s\", port %d: %s (%d more since the last report)",
                      m_send_ip.c_str(), m_send_port, std::strerror(error), held_back);
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
    m_send_ip.clear();
    m_send_address = 0;
    m_send_port = 0;
    m_allowed_sender = 0;
    m_last_sender = 0;
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

} // namespace ig
