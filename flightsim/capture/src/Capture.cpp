// SPDX-License-Identifier: MIT
#include "flightsim/capture/Capture.h"

#include "PacketDissector.h"
#include "program/Clock.h"
#include "program/InputFile.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstdio>
#include <fstream>
#include <pcap/pcap.h>

namespace flightsim {

namespace {

constexpr std::size_t ETHERNET_HEAD = 14;
constexpr std::size_t IP_HEAD = 20;
constexpr std::size_t UDP_HEAD = 8;
/// Of packets; beyond what a datagram and its heads may be, as others write it.
constexpr std::uint32_t SNAP_LENGTH = 262144;
/// Of Unix time, in 2106: what is told to be later is damaged.
constexpr std::int64_t END_SECOND = std::int64_t{1} << 32;

template <class T>
void put(std::string& to, T value) {
    to.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// Network byte order.
void putNet16(std::string& to, std::size_t value) {
    put(to, htons(static_cast<std::uint16_t>(value)));
}

/// The sum that IPv4 and UDP check themselves with: of 16-bit words, carries added in again, all
/// bits inverted. `sum`: of what else is to be in it.
std::uint16_t checksum(std::span<const char> bytes, std::uint32_t sum = 0) {
    for (std::size_t i = 0; i < bytes.size(); i++) {
        const std::uint32_t byte = static_cast<std::uint8_t>(bytes[i]);
        sum += i % 2 == 0 ? byte << 8 : byte;
    }
    while (sum >> 16 != 0)
        sum = (sum & 0xffff) + (sum >> 16);
    return static_cast<std::uint16_t>(~sum);
}

void setNet16(std::string& in, std::size_t at, std::uint16_t value) {
    in[at] = static_cast<char>(value >> 8);
    in[at + 1] = static_cast<char>(value);
}

std::string ipHead(const CapturedDatagram& datagram, std::uint16_t id) {
    std::string head = {0x45, 0}; // version 4, five words
    putNet16(head, IP_HEAD + UDP_HEAD + datagram.bytes.size());
    putNet16(head, id);
    putNet16(head, 0x4000); // not to be fragmented
    head += {64, IPPROTO_UDP, 0, 0};
    put(head, datagram.from.address);
    put(head, datagram.to.address);
    setNet16(head, 10, checksum(head));
    return head;
}

std::string udpPart(const CapturedDatagram& datagram, const std::string& ip_head) {
    const std::size_t size = UDP_HEAD + datagram.bytes.size();
    std::string part;
    putNet16(part, datagram.from.port);
    putNet16(part, datagram.to.port);
    putNet16(part, size);
    putNet16(part, 0);
    part.append(datagram.bytes.begin(), datagram.bytes.end());
    // The sum covers addresses, protocol and size too; 0 would say that there is none.
    const std::string addresses = ip_head.substr(12);
    const auto outside = static_cast<std::uint32_t>(
        static_cast<std::uint16_t>(~checksum(addresses)) + IPPROTO_UDP + size);
    const std::uint16_t sum = checksum(part, outside);
    setNet16(part, 6, sum == 0 ? 0xffff : sum);
    return part;
}

} // namespace

void CaptureReader::Close::operator()(pcap* capture) const { pcap_close(capture); }

CaptureReader::CaptureReader() = default;
CaptureReader::~CaptureReader() = default;

bool CaptureReader::isCapture(const std::string& path) {
    constexpr std::array<std::uint32_t, 5> MAGICS = {0xa1b2c3d4, 0xd4c3b2a1, 0xa1b23c4d, 0x4d3cb2a1,
                                                     0x0a0d0d0a}; // pcapng
    std::uint32_t magic = 0;
    if (!program::whyUnreadable(path).empty()) return false;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&magic), sizeof magic);
    return std::ranges::find(MAGICS, magic) != MAGICS.end();
}

bool CaptureReader::open(const std::string& path) {
    m_path = path;
    m_packets = 0;
    m_stats = {};
    m_status = CaptureStatus::end;
    const std::string why = program::whyUnreadable(path);
    char error[PCAP_ERRBUF_SIZE] = "";
    m_capture.reset(why.empty() ? pcap_open_offline_with_tstamp_precision(
                                      path.c_str(), PCAP_TSTAMP_PRECISION_NANO, error)
                                : nullptr);
    if (!m_capture) {
        m_message = "cannot open \"" + path + "\": " + (why.empty() ? error : why);
        return false;
    }
    const int link = pcap_datalink(m_capture.get());
    if (!PacketDissector::isKnown(link)) {
        const char* name = pcap_datalink_val_to_name(link);
        m_message = "\"" + path + "\": packets of link type " +
                    (name ? name : std::to_string(link)) +
                    " are not known; capture on Ethernet or the loopback interface";
        return false;
    }
    m_dissector = std::make_unique<PacketDissector>(link, m_stats);
    m_status = CaptureStatus::datagram;
    return true;
}

CaptureStatus CaptureReader::next(CapturedDatagram& datagram) {
    while (m_status == CaptureStatus::datagram) {
        pcap_pkthdr* head = nullptr;
        const u_char* bytes = nullptr;
        const int result = pcap_next_ex(m_capture.get(), &head, &bytes);
        if (result != 1) return stop(result);
        m_packets++;
        // A plain capture tells its seconds in 32 bits, which the library takes for signed.
        const std::int64_t second = head->ts.tv_sec + (head->ts.tv_sec < 0 ? END_SECOND : 0);
        if (second < 0 || second >= END_SECOND) {
            m_stats.malformed++;
            continue;
        }
        const std::int64_t wall_ns = // asked for in nanoseconds
            second * program::NS_PER_SECOND + head->ts.tv_usec;
        if (m_dissector->take({bytes, head->caplen}, head->len, wall_ns, datagram)) break;
    }
    return m_status;
}

/// The library has no further packet; `result` is its answer.
CaptureStatus CaptureReader::stop(int result) {
    m_dissector->finish();
    if (result == PCAP_ERROR_BREAK) return m_status = CaptureStatus::end;
    const std::string what = pcap_geterr(m_capture.get());
    m_message =
        "\"" + m_path + "\": behind " + std::to_string(m_packets) + " whole packets: " + what;
    // The library tells the one from the other in its words only.
    return m_status =
               what.starts_with("truncated") ? CaptureStatus::truncated : CaptureStatus::malformed;
}

bool CaptureWriter::open(const std::string& path) {
    std::string head;
    put<std::uint32_t>(head, 0xa1b23c4d); // little-endian, nanoseconds
    put<std::uint16_t>(head, 2);          // version 2.4
    put<std::uint16_t>(head, 4);
    put<std::uint32_t>(head, 0); // times are UTC
    put<std::uint32_t>(head, 0);
    put<std::uint32_t>(head, SNAP_LENGTH);
    put<std::uint32_t>(head, DLT_EN10MB);
    m_size = static_cast<std::int64_t>(head.size());
    m_id = 0;
    return m_file.open(path, program::OutputFile::Kind::whole) && m_file.write(head);
}

bool CaptureWriter::append(const CapturedDatagram& datagram) {
    const std::string ip_head = ipHead(datagram, m_id++);
    const std::string udp = udpPart(datagram, ip_head);
    const auto length = static_cast<std::uint32_t>(ETHERNET_HEAD + ip_head.size() + udp.size());
    std::string packet;
    put(packet, static_cast<std::uint32_t>(datagram.wall_ns / program::NS_PER_SECOND));
    put(packet, static_cast<std::uint32_t>(datagram.wall_ns % program::NS_PER_SECOND));
    put(packet, length);  // captured
    put(packet, length);  // on the way
    packet.append(12, 0); // both stations, none as on the loopback interface
    putNet16(packet, 0x0800);
    packet += ip_head + udp;
    m_size += static_cast<std::int64_t>(packet.size());
    return m_file.write(packet);
}

} // namespace flightsim
