// SPDX-License-Identifier: MIT
#include "flightsim/link/UdpLink.h"

#include "program/Clock.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace flightsim {

using program::NS_PER_SECOND;
using program::steadyNow_ns;

namespace {

/// Both the channel's datagrams and a whole second of records must fit while this side is busy.
constexpr int RECEIVE_BUFFER_SIZE = 1 << 20;

/// When a datagram came in, on the steady clock. The system stamps it on the wall clock; what that
/// shows to have passed since is taken off. A wall clock that was set meanwhile is not believed.
std::int64_t arrivalTime(msghdr& message) {
    const std::int64_t now_ns = steadyNow_ns();
    const std::int64_t wall_ns = program::wallNow_ns();
    for (cmsghdr* c = CMSG_FIRSTHDR(&message); c; c = CMSG_NXTHDR(&message, c)) {
        if (c->cmsg_level != SOL_SOCKET || c->cmsg_type != SCM_TIMESTAMPNS) continue;
        timespec stamp;
        std::memcpy(&stamp, CMSG_DATA(c), sizeof stamp);
        const std::int64_t age_ns = wall_ns - (stamp.tv_sec * NS_PER_SECOND + stamp.tv_nsec);
        if (age_ns >= 0 && age_ns < NS_PER_SECOND) return now_ns - age_ns;
    }
    return now_ns;
}

} // namespace

std::optional<UdpAddress> UdpAddress::parse(const std::string& text, std::string& message) {
    const auto colon = text.rfind(':');
    unsigned port = 0;
    if (colon != std::string::npos) {
        const char* end = text.data() + text.size();
        const auto read = std::from_chars(text.data() + colon + 1, end, port);
        if (read.ec != std::errc{} || read.ptr != end) port = 0;
    }
    if (colon == 0 || port == 0 || port > 65535) {
        message = "\"" + text + "\" is not an address such as 127.0.0.1:10004";
        return std::nullopt;
    }
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(text.substr(0, colon).c_str(), nullptr, &hints, &found);
    if (error != 0) {
        message = "cannot resolve \"" + text.substr(0, colon) + "\": " + gai_strerror(error);
        return std::nullopt;
    }
    UdpAddress result;
    std::memcpy(&result.address, found->ai_addr, sizeof result.address);
    result.address.sin_port = htons(static_cast<std::uint16_t>(port));
    freeaddrinfo(found);
    return result;
}

std::string UdpAddress::text() const {
    char host[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address.sin_addr, host, sizeof host);
    return std::string(host) + ":" + std::to_string(ntohs(address.sin_port));
}

bool UdpAddress::isLoopback(int port) const {
    return ntohs(address.sin_port) == port &&
           ntohl(address.sin_addr.s_addr) >> 24 == IN_LOOPBACKNET;
}

UdpSocket::~UdpSocket() {
    if (m_socket >= 0) close(m_socket);
}

bool UdpSocket::open(std::string& message) {
    if (m_socket >= 0) close(m_socket);
    m_socket = socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (m_socket >= 0) return true;
    message = std::string("cannot open a UDP socket: ") + std::strerror(errno);
    return false;
}

bool UdpSocket::bind(int port, std::string& message) {
    if (!open(message)) return false;
    const int on = 1;
    // Comfort only: without them the times are less exact and a busy moment loses datagrams.
    setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &RECEIVE_BUFFER_SIZE, sizeof RECEIVE_BUFFER_SIZE);
    setsockopt(m_socket, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true;
    message = "cannot receive on UDP port " + std::to_string(port) + ": " + std::strerror(errno);
    close(m_socket);
    m_socket = -1;
    return false;
}

int UdpSocket::getPort() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (m_socket < 0 || getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return 0;
    return ntohs(address.sin_port);
}

bool UdpSocket::send(const UdpAddress& to, std::span<const std::uint8_t> datagram) {
    return sendto(m_socket, datagram.data(), datagram.size(), 0,
                  reinterpret_cast<const sockaddr*>(&to.address), sizeof to.address) >= 0;
}

std::optional<Arrival> UdpSocket::receive(std::span<std::uint8_t> buffer) {
    iovec block{buffer.data(), buffer.size()};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(timespec))];
    UdpAddress from;
    msghdr message{};
    message.msg_name = &from.address;
    message.msg_namelen = sizeof from.address;
    message.msg_iov = &block;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t size = recvmsg(m_socket, &message, MSG_TRUNC);
    if (size < 0) return std::nullopt;
    return Arrival{static_cast<std::size_t>(size), arrivalTime(message), from};
}

bool UdpSocket::waitReadable(std::int64_t until_ns) const {
    return waitReadable(*this, UdpSocket(), until_ns);
}

bool UdpSocket::waitReadable(const UdpSocket& one, const UdpSocket& other, std::int64_t until_ns) {
    const std::int64_t left_ns = std::max<std::int64_t>(0, until_ns - steadyNow_ns());
    const timespec timeout{left_ns / NS_PER_SECOND, left_ns % NS_PER_SECOND};
    // A negative descriptor is skipped by the system.
    pollfd entries[2] = {{one.m_socket, POLLIN, 0}, {other.m_socket, POLLIN, 0}};
    // An error pending on the socket counts too: `receive` takes it off.
    return ppoll(entries, 2, &timeout, nullptr) > 0;
}

} // namespace flightsim
