// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jLog.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"

#include <cstddef>
#include <cstdint>

namespace ig {

/// What passed through one socket since it was made. Sizes are those on the wire, without headers.
struct SocketStatistics {
    std::uint64_t datagrams_received = 0; ///< those that `read` delivered
    std::uint64_t bytes_received = 0;     ///< of those
    std::uint64_t datagrams_sent = 0;
    std::uint64_t bytes_sent = 0;
    std::uint64_t truncated = 0; ///< delivered datagrams that were longer than the reader's buffer
    std::uint64_t filtered = 0;  ///< dropped: from another sender than the allowed one
    std::uint64_t empty = 0;     ///< dropped: without a byte
    std::uint64_t receive_failures = 0;
    std::uint64_t send_failures = 0;
    int smallest = 0; ///< bytes of the smallest delivered datagram; 0 before the first
    int largest = 0;
    int receive_buffer = 0; ///< bytes the system reserves for waiting datagrams; 0 before `recv`
    jString last_sender_address; ///< dotted, of the last delivered datagram; empty before the first
    int last_sender_port = 0;
    double first_received = 0; ///< seconds on the steady clock; 0 before the first
    double last_received = 0;
};

/// A UDP/IPv4 socket. Made and owned by whoever talks over it: `create`, then `bind`, then `recv`
/// and/or `send`, `nonblock`; every step answers false after logging why. Used by one thread; the
/// host application looks at all open sockets between frames.
///
/// A socket for sending stays unconnected, so that an absent peer never makes a write fail.
class SocketUDP : public jObject {
public:
    SocketUDP() = default;
    SocketUDP(const SocketUDP&) = delete;
    SocketUDP& operator=(const SocketUDP&) = delete;
    ~SocketUDP() override;

    /// Opens the socket; one that is open is closed first.
    bool create();
    /// Binds to that local port, in [1, 65535], on every local address. A port that another socket
    /// holds is refused.
    bool bind(int port);
    /// Binds to any free local port.
    bool bind();
    /// Prepares for datagrams of up to `size` bytes and for many waiting ones: at least 1 MiB is
    /// asked for, of which the system grants what it allows (`SocketStatistics::receive_buffer`).
    bool recv(int size);
    /// Prepares for sending datagrams of up to `size` bytes.
    bool send(int size);
    /// From now on `read` and `write` answer at once instead of waiting.
    bool nonblock();

    /// Destination of `write`: a dotted IPv4 address, or "localhost". False, with one log line, for
    /// anything else, which leaves the destination as it was.
    bool setSendIP(const jString& ip);
    /// In [1, 65535]. False leaves the port as it was.
    bool setSendPort(int port);

    /// Takes one waiting datagram of at most `size` × `count` bytes; what is longer is cut. Answers
    /// its length in `buffer`, 0 when none is waiting, −1 on a failure.
    ///
    /// A caller may read until the answer is 0 or less: empty datagrams and those of senders that
    /// are not allowed are passed over, and after 1,024 datagrams in a row one 0 is answered all
    /// the same, so that a flood can't hold the frame.
    int read(void* buffer, std::size_t size, std::size_t count);
    /// Sends one datagram of `size` × `count` bytes to the destination. Answers its length, or −1
    /// on a failure; nothing to send is answered by 0. Failures are counted, and reported once per
    /// second at most, except when the system's own buffer is full.
    int write(const void* data, std::size_t size, std::size_t count);

    bool isOpened() const { return m_descriptor >= 0; }
    /// Closes the socket; datagrams that still wait are lost. Destination, filter and statistics
    /// stay.
    void close();
    /// Closes the socket and makes the object as good as new.
    void release();

    /// Local port; 0 before `bind`.
    int getPort() const;
    /// Delivers only this sender's datagrams from now on; empty: anybody's. Same forms as
    /// `setSendIP`. False leaves the filter as it was.
    bool setAllowedSender(const jString& ip);
    const SocketStatistics& getStatistics() const { return m_statistics; }
    /// All sockets of the process that are open, in the order of opening.
    static const jVector<SocketUDP*>& getOpenSockets();

private:
    bool bindTo(int port);
    bool fail(const char* operation) const;
    void noteReceived(int length, std::uint32_t sender, int port);
    int failWrite(int error);

    int m_descriptor = -1;
    jString m_send_ip;                ///< as given, for messages
    std::uint32_t m_send_address = 0; ///< network byte order, as all addresses here; 0 when not set
    int m_send_port = 0;              ///< 0 when not set
    std::uint32_t m_allowed_sender = 0; ///< 0: anybody
    std::uint32_t m_last_sender = 0;    ///< address whose text the statistics hold
    int m_in_a_row = 0;                 ///< datagrams taken since the last answer of 0
    SocketStatistics m_statistics;
    LogLimiter m_write_report;
    LogLimiter m_read_report;
};

} // namespace ig
