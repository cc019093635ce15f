// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "ig/base/jBuffer.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"

namespace ig {
class SocketUDP;
}

/// Listens on a local port and turns every waiting datagram into one host data record. The logic
/// creates one at start-up, drains it in its receive cycle, and releases it at the end. A kit whose
/// socket could not be opened stays usable as an empty shell: it receives nothing.
class UdpRecvKit {
public:
    ~UdpRecvKit() { release(); }

    /// Opens the socket on `port`, on every local address. False, logged, when that fails, for
    /// instance because the port is in use.
    bool init(int port);
    /// Appends a record for every waiting datagram, in the order of arrival: its first 1490 bytes,
    /// the rest zero when it is shorter. Returns the number of records now held, those left from
    /// before included. Never waits. What is wrong with a datagram stands in the socket's
    /// statistics; a flood ends the drain as soon as its records are work enough for a frame
    /// (`SocketUDP::DRAIN` plain ones), and the rest waits in the socket for the next.
    int receive();
    /// Closes and destroys the socket.
    void release();

    ig::jVector<UdpRecvData> m_records; ///< oldest first; emptied by the receive cycle
    ig::SocketUDP* m_socket =
        nullptr;          ///< owned; null before `init`, after a failed one, at the end
    ig::jBuffer m_buffer; ///< 4096 bytes after a successful `init`

private:
    void judge(bool whole);
};

/// Holds a socket aimed at the flight simulation; the feedback goes straight through `m_socket`,
/// when it is not null.
class UdpSendKit {
public:
    ~UdpSendKit() { release(); }

    /// Opens a socket on any free local port that sends to `ip`:`port`. False, logged, on failure.
    bool init(const ig::jString& ip, int port);
    void release();

    ig::SocketUDP* m_socket =
        nullptr;          ///< owned; null before `init`, after a failed one, at the end
    ig::jBuffer m_buffer; ///< 4096 bytes after a successful `init`
};
