// SPDX-License-Identifier: MIT
#include "testkit/UdpPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

} // namespace

UdpPeer::UdpPeer(const char* own) : m_descriptor(socket(AF_INET, SOCK_DGRAM, 0)) {
    sockaddr_in address = loopback(0);
    inet_pton(AF_INET, own, &address.sin_addr);
    socklen_t length = sizeof address;
    if (m_descriptor < 0 ||
        bind(m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("UdpPeer: no socket");
    m_port = ntohs(address.sin_port);
}

UdpPeer::~UdpPeer() { close(m_descriptor); }

void UdpPeer::send(const void* data, std::size_t size, int port) const {
    const sockaddr_in address = loopback(port);
    const auto sent = sendto(m_descriptor, data, size, 0,
                             reinterpret_cast<const sockaddr*>(&address), sizeof address);
    if (sent != static_cast<ssize_t>(size)) throw std::runtime_error("UdpPeer: sendto");
}

std::string UdpPeer::receive(int timeout_ms) const {
    pollfd waiting{m_descriptor, POLLIN, 0};
    if (poll(&waiting, 1, timeout_ms) <= 0) return {};
    std::string bytes(65536, '\0');
    const auto length = recv(m_descriptor, bytes.data(), bytes.size(), 0);
    bytes.resize(length > 0 ? length : 0);
    return bytes;
}

int UdpPeer::freePort() { return UdpPeer().port(); }
