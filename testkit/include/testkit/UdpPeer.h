// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

/// The other end of the link, made of bare system calls so that tests don't check our socket with
/// itself. Bound to a free port of a loopback address.
class UdpPeer {
public:
    explicit UdpPeer(const char* address = "127.0.0.1");
    ~UdpPeer();
    UdpPeer(const UdpPeer&) = delete;

    int port() const { return m_port; }
    /// Sends one datagram to that port of the loopback address.
    void send(const void* data, std::size_t size, int port) const;
    /// The next waiting datagram, or an empty text when none arrives within `timeout_ms`.
    std::string receive(int timeout_ms = 0) const;

    /// A port that was free a moment ago.
    static int freePort();

private:
    int m_descriptor;
    int m_port;
};
