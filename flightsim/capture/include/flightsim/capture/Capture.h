// SPDX-License-Identifier: MIT
#pragma once

#include "program/OutputFile.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

struct pcap;

/// Packet captures, as tcpdump, Wireshark and their like write and read them: here only the UDP
/// datagrams over IPv4 in them.
namespace flightsim {

/// Where a datagram comes from or goes to.
struct Endpoint {
    std::uint32_t address = 0; ///< IPv4, network byte order
    std::uint16_t port = 0;    ///< host byte order
};

/// A datagram of a capture.
struct CapturedDatagram {
    std::int64_t wall_ns = 0; ///< Unix time; of one that came in fragments, that of the last
    Endpoint from;
    Endpoint to;
    std::span<const std::uint8_t> bytes; ///< valid until the reader moves on
};

/// What a capture held beside the datagrams that were read.
struct CaptureStats {
    std::int64_t other = 0;      ///< packets that are no UDP over IPv4
    std::int64_t cut = 0;        ///< packets of which only the beginning was captured
    std::int64_t malformed = 0;  ///< packets with lengths at odds, or a time beyond 1970 to 2106
    std::int64_t incomplete = 0; ///< datagrams some fragment of which is missing
};

/// Takes the UDP datagrams out of the packets of one kind of link. Fragments are put together:
/// Ethernet's packets are too short for a host data record, which travels over it in two.
class PacketDissector;

enum class CaptureStatus {
    datagram,
    end,       ///< the file ends behind a whole packet
    truncated, ///< the file ends within a packet: what was read before is good
    malformed  ///< the file is damaged here: nothing behind can be trusted
};

/// Reads a capture from first to last: pcap of either byte order, in micro- or nanoseconds, or
/// pcapng. Checksums are not looked at, because senders leave them to the network card.
class CaptureReader {
public:
    CaptureReader();
    ~CaptureReader();

    /// Whether a file begins as a capture does.
    static bool isCapture(const std::string& path);

    /// Opens a file. False with `getMessage()` when it can't be read or is of a kind of link whose
    /// packets are not known.
    bool open(const std::string& path);
    /// Reads the next datagram. Once it has answered anything but `datagram` it repeats that.
    CaptureStatus next(CapturedDatagram& datagram);
    /// Complete once the end was met.
    const CaptureStats& getStats() const { return m_stats; }
    /// What is wrong, with the path and the number of packets read. For `open` that failed,
    /// `truncated` and `malformed`.
    const std::string& getMessage() const { return m_message; }

private:
    CaptureStatus stop(int result);

    struct Close {
        void operator()(pcap* capture) const;
    };
    std::string m_path;
    std::unique_ptr<pcap, Close> m_capture;
    std::unique_ptr<PacketDissector> m_dissector;
    std::int64_t m_packets = 0; ///< read so far
    CaptureStats m_stats;
    CaptureStatus m_status = CaptureStatus::end;
    std::string m_message;
};

/// Writes datagrams as the packets of an Ethernet link, in the plain pcap format with nanoseconds.
/// The file is complete or isn't there.
class CaptureWriter {
public:
    /// Creates the file. False with `getMessage()` when it can't; so are the following.
    bool open(const std::string& path);
    /// Adds a datagram of at most 65507 bytes. Its time must be one that the format can tell: from
    /// 1970 to 2106.
    bool append(const CapturedDatagram& datagram);
    bool close() { return m_file.close(); }

    std::int64_t getSize() const { return m_size; } ///< of the file, bytes
    const std::string& getMessage() const { return m_file.getMessage(); }

private:
    program::OutputFile m_file;
    std::int64_t m_size = 0;
    std::uint16_t m_id = 0; ///< counts the packets, as IPv4 wants them told apart
};

} // namespace flightsim
