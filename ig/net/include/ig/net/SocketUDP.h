// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"

#include <cstddef>
#include <cstdint>

namespace ig {

/// Where datagrams come from.
struct SocketSender {
    std::uint32_t address = 0; ///< network byte order
    int port = 0;              ///< 0: nobody
    double last_received = 0;  ///< seconds on the steady clock

    bool operator==(const SocketSender& o) const { return address == o.address && port == o.port; }
    /// "127.0.0.1:4000"; empty for nobody.
    jString getText() const;
};

/// What a reader finds wrong with a datagram. Its texts live as long as the reader's library.
struct SocketComplaint {
    const char* field = nullptr; ///< its name; null: no complaint
    double value = 0;            ///< that it has
    const char* hint = "";       ///< what may have caused it; empty when nobody knows
    SocketSender sender;
};

/// What passed through one socket since it was made. Sizes are those on the wire, without headers.
struct SocketStatistics {
    static constexpr int SENDERS = 4;

    std::uint64_t datagrams_received = 0; ///< those that `read` delivered
    std::uint64_t bytes_received = 0;     ///< of those
    std::uint64_t datagrams_sent = 0;
    std::uint64_t bytes_sent = 0;
    std::uint64_t truncated = 0; ///< delivered datagrams that were longer than the reader's buffer
    std::uint64_t filtered = 0;  ///< dropped: from another sender than the allowed one
    std::uint64_t empty = 0;     ///< dropped: without a byte
    std::uint64_t lost = 0;      ///< dropped by the system, which had no room left for them
    std::uint64_t too_short = 0; ///< delivered, of another size than the expected one
    std::uint64_t too_long = 0;
    std::uint64_t implausible = 0; ///< delivered, and complained about by the reader
    std::uint64_t receive_failures = 0;
    std::uint64_t send_failures = 0;
    int receive_error = 0; ///< errno of the last `read`; 0 when that was none
    int send_error = 0;    ///< errno of the last `write`; 0 when that went out
    int smallest = 0;      ///< bytes of the smallest delivered datagram; 0 before the first
    int largest = 0;
    int expected_size = 0;     ///< bytes of a right datagram; 0: any
    int wrong_size = 0;        ///< bytes of the last one of another size; 0: none so far
    SocketSender wrong_sender; ///< of that one
    SocketComplaint complaint; ///< the last one
    int receive_buffer = 0;    ///< bytes the system reserves for waiting datagrams; 0 before `recv`
    int asked_buffer = 0;      ///< what it would reserve if it granted what was asked for
    jString refused_destination; ///< what `setSendIP` was given last if that is no address
    /// Those of the delivered datagrams, the last one's first.
    SocketSender senders[SENDERS];
    std::uint64_t taken_over = 0; ///< changes to a sender that had been silent for a second or ever
    std::uint64_t interleaved = 0; ///< changes to one that had not: several send at a time
    double first_received = 0;     ///< seconds on the steady clock; 0 before the first
    double last_received = 0;
};

/// A local port that could not be had.
struct RefusedPort {
    int port = 0;
    jString reason;
};

/// A UDP/IPv4 socket. Made and owned by whoever talks over it: `create`, then `bind`, then `recv`
/// and/or `send`, `nonblock`; every step answers false after logging why. What goes wrong later,
/// datagram by datagram, is counted and not logged: the application looks at the statistics of
/// all open sockets once per frame and tells. Used by one thread.
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
    /// Counts the delivered datagrams of another size than this; 0: any size is right.
    void setExpectedSize(int size) { m_statistics.expected_size = size; }
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
    /// are not allowed are passed over, and after DRAIN datagrams in a row one 0 is answered all
    /// the same, so that a flood can't hold the frame. The rest waits for the next drain.
    int read(void* buffer, std::size_t size, std::size_t count);
    static constexpr int DRAIN = 512;
    /// The caller says that the datagram delivered last is as much work as that many more: they
    /// count towards DRAIN.
    void charge(int more) { m_in_a_row += more; }
    /// The caller finds something wrong with the datagram delivered last, whose sender is added.
    void complain(const SocketComplaint& complaint);
    /// Sends one datagram of `size` × `count` bytes to the destination. Answers its length, or −1
    /// on a failure, which is counted; nothing to send is answered by 0.
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
    /// Ports that `bind` was refused and that no socket has been bound to since.
    static const jVector<RefusedPort>& getRefusedPorts();

private:
    bool bindTo(int port);
    bool refuse(int port, const char* reason) const;
    bool fail(const char* operation) const;
    int endDrain(int error);
    void noteReceived(int length, std::uint32_t address, int port);
    void noteSender(const SocketSender& sender);
    void noteLost();
    int failWrite(int error);

    int m_descriptor = -1;
    std::uint32_t m_send_address = 0; ///< network byte order, as all addresses here; 0 when not set
    int m_send_port = 0;              ///< 0 when not set
    std::uint32_t m_allowed_sender = 0; ///< 0: anybody
    std::uint32_t m_drops = 0;          ///< what the system has counted for this descriptor
    int m_in_a_row = 0; ///< datagrams taken, and charged for, since the last answer of 0
    SocketStatistics m_statistics;
};

} // namespace ig
