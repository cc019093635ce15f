// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <netinet/in.h>
#include <optional>
#include <span>
#include <string>

namespace flightsim {

/// Where datagrams go: an IPv4 address and a port.
struct UdpAddress {
    sockaddr_in address{};

    /// From "host:port"; the host may be a name. Nothing, with `message`, when the text is not that
    /// or the name is not known.
    static std::optional<UdpAddress> parse(const std::string& text, std::string& message);
    std::string text() const;
    /// This is `port` of the very machine, by its loopback address.
    bool isLoopback(int port) const;
};

/// A datagram that arrived.
struct Arrival {
    std::size_t size = 0;       ///< of the datagram; beyond the buffer's, the rest is lost
    std::int64_t steady_ns = 0; ///< when it came in, not when it was picked up
    UdpAddress from = {};       ///< who sent it
};

/// A UDP socket that never blocks. It stays unconnected, so that a channel which isn't running yet
/// doesn't fail the sends.
class UdpSocket {
public:
    UdpSocket() = default;
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;
    ~UdpSocket();

    /// A socket to send with. False with `message` when the system has none to give.
    bool open(std::string& message);
    /// A socket that receives on `port` of every interface; 0 lets the system choose one. False
    /// with `message`, for example when the port is in use.
    bool bind(int port, std::string& message);
    bool isOpen() const { return m_socket >= 0; }
    int getPort() const; ///< the bound one, or 0

    /// False when the system refuses; `errno` then tells why.
    bool send(const UdpAddress& to, std::span<const std::uint8_t> datagram);
    /// Takes a waiting datagram into `buffer`. Nothing when none waits.
    std::optional<Arrival> receive(std::span<std::uint8_t> buffer);
    /// Sleeps until a datagram waits, a signal comes, or the steady clock shows `until_ns`. True
    /// when one waits. A socket that isn't open only sleeps.
    bool waitReadable(std::int64_t until_ns) const;
    /// The same for two.
    static bool waitReadable(const UdpSocket& one, const UdpSocket& other, std::int64_t until_ns);

private:
    int m_socket = -1;
};

} // namespace flightsim
