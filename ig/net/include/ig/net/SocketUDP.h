// SPDX-License-Identifier: MIT
#pragma once

#include "frames/Digest.h"
#include "frames/FrameInput.h"
#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ig {

/// Where datagrams come from.
struct SocketSender {
    std::uint32_t address = 0; ///< network byte order
    int port = 0;              ///< 0: nobody
    double last_received = 0;  ///< when its last datagram arrived, s; see `SocketUDP::collect`

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
    std::uint64_t datagrams_sent = 0;     ///< less those that the system turned out to refuse
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
    int receive_error = 0;         ///< errno of the last `collect`; 0 when that was none
    int send_error = 0;            ///< errno of the last `write`; 0 when nothing spoke against that
    std::uint64_t sent_digest = 0; ///< of all that `write` took; 0 before the first
    int smallest = 0;              ///< bytes of the smallest delivered datagram; 0 before the first
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
    double first_received = 0;     ///< when that datagram arrived, s; 0 before the first
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
/// What has come to a socket reaches its reader by way of the frame's input: before each frame the
/// application lets `collect` gather what waits in all sockets, or takes a log's input instead, and
/// gives that to `deliver`. Within a frame nothing arrives.
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
    /// Prepares for receiving datagrams of up to `size` bytes, and many waiting ones: at least 1
    /// MiB is asked for, of which the system grants what it allows
    /// (`SocketStatistics::receive_buffer`).
    bool recv(int size);
    /// Counts the delivered datagrams of another size than this; 0: any size is right.
    void setExpectedSize(int size) { m_statistics.expected_size = size; }
    /// Prepares for sending datagrams of up to `size` bytes.
    bool send(int size);
    /// From now on `write` answers at once instead of waiting, as `read` always does.
    bool nonblock();

    /// Destination of `write`: a dotted IPv4 address, or "localhost". False, with one log line, for
    /// anything else, which leaves the destination as it was.
    bool setSendIP(const jString& ip);
    /// In [1, 65535]. False leaves the port as it was.
    bool setSendPort(int port);

    /// Takes one delivered datagram of at most `size` × `count` bytes; what is longer is cut.
    /// Answers its length in `buffer`, 0 when there is none, −1 when none could be received.
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
    /// when it can't be sent, which is counted; nothing to send is answered by 0. What only the
    /// system refuses is counted when the next frame begins.
    int write(const void* data, std::size_t size, std::size_t count);

    bool isOpened() const { return m_open; }
    /// Closes the socket; datagrams that still wait are lost. Destination, filter and statistics
    /// stay.
    void close();
    /// Closes the socket and makes the object as good as new.
    void release();

    /// Local port; 0 before `bind`.
    int getPort() const { return m_port; }
    /// Delivers only this sender's datagrams from now on; empty: anybody's. Same forms as
    /// `setSendIP`. False leaves the filter as it was.
    bool setAllowedSender(const jString& ip);
    const SocketStatistics& getStatistics() const { return m_statistics; }
    /// All sockets of the process that are open, in the order of opening.
    static const jVector<SocketUDP*>& getOpenSockets();
    /// Ports that `bind` was refused and that no socket has been bound to since.
    static const jVector<RefusedPort>& getRefusedPorts();

    // ---- the frame's input

    /// A run begins, before its first socket: sockets count from 0, and are the system's.
    static void setOnline();
    /// The same for a run that is played again: sockets open nothing and send nothing, and every
    /// step of setting them up answers as the log says, or else that it worked.
    static void setOffline();
    /// Offline: what comes from a frame of the log. A step finds its answer in the input of the
    /// frame after, those of the start in the first one's: so they are given before that frame
    /// runs.
    static void addAnswers(const std::vector<frames::SocketAnswer>& answers);
    /// Adds what waits in all open sockets that `recv` prepared to the input, DRAIN datagrams of a
    /// socket at most, and what the system has said of sockets since the last time. What a reader
    /// left of earlier deliveries counts towards DRAIN, so that a flood stays in the system's
    /// buffer, and what that can't hold is known to be lost.
    ///
    /// Datagrams have the times of arrival that the system stamps, as seconds since `run_start` of
    /// the steady clock. The stamps are of the calendar's clock: where that was set meanwhile, the
    /// arrival is still not before the socket was last empty, and not in the future. A system that
    /// nobody asked for stamps before gives none for a moment: the arrival is then the collection.
    /// Nothing to collect offline.
    static void collect(frames::FrameInput& input, double run_start = 0);
    /// Gives the input's datagrams to their sockets, from which `read` takes them, and its news to
    /// the statistics. What is for no open socket is dropped.
    static void deliver(const frames::FrameInput& input);

private:
    struct Collection;

    template <class Ask>
    bool ask(frames::SocketAnswer::Step step, int& value, Ask&& ask_system);
    bool bindTo(int port);
    bool refuse(int port, const char* reason) const;
    bool fail(const char* operation) const;
    void collectFrom(Collection& collection);
    int collectDatagrams(Collection& collection);
    std::uint32_t countLost();
    void hear(const frames::SocketNews& news);
    int endDrain();
    void noteReceived(const frames::Datagram& datagram);
    void noteSender(const SocketSender& sender);
    void transmit(const void* data, std::size_t bytes);
    int failWrite(int error);

    int m_number = -1; ///< in the order of creation
    bool m_open = false;
    int m_descriptor = -1;            ///< negative when closed, and offline
    int m_port = 0;                   ///< local; 0 before `bind`
    bool m_receives = false;          ///< `recv` prepared it
    std::uint32_t m_send_address = 0; ///< network byte order, as all addresses here; 0 when not set
    int m_send_port = 0;              ///< 0 when not set
    std::uint32_t m_allowed_sender = 0; ///< 0: anybody
    std::uint32_t m_drops = 0;          ///< what the system has counted for this descriptor
    int m_in_a_row = 0; ///< datagrams taken, and charged for, since the last answer of 0
    std::vector<frames::Datagram> m_inbox; ///< delivered
    std::size_t m_taken = 0;               ///< of those, by `read`
    /// Steady clock when the last datagram arrived or the socket was last empty.
    std::int64_t m_floor_ns = 0;
    frames::SocketNews m_news; ///< of sending, since the last `collect`
    int m_receive_error = 0;   ///< what the last `collect` told
    int m_told_send_error = 0; ///< likewise
    int m_refusal = 0;         ///< errno with which the system refuses what is sent, as delivered
    frames::Digest m_sent;
    SocketStatistics m_statistics;
};

} // namespace ig
