// SPDX-License-Identifier: MIT
#include "PacketDissector.h"

#include "program/Clock.h"

#include <algorithm>
#include <cstring>
#include <pcap/dlt.h>

namespace flightsim {

namespace {

constexpr std::uint8_t UDP = 17;
constexpr std::size_t UDP_HEAD = 8;
constexpr std::size_t LEAST_IP_HEAD = 20;
constexpr std::uint16_t ETHERTYPE_IPV4 = 0x0800;
constexpr std::size_t NOT_IPV4 = SIZE_MAX;

/// Protocols number in network byte order.
std::uint16_t number(std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

/// An address as it lies, in network byte order.
std::uint32_t address(std::span<const std::uint8_t> bytes, std::size_t at) {
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

/// Where the content begins behind an EtherType at `at`, past tags of virtual networks.
std::size_t behindEtherType(std::span<const std::uint8_t> packet, std::size_t at) {
    while (at + 6 <= packet.size() &&
           (number(packet, at) == 0x8100 || number(packet, at) == 0x88a8))
        at += 4;
    return at + 2 <= packet.size() && number(packet, at) == ETHERTYPE_IPV4 ? at + 2 : NOT_IPV4;
}

} // namespace

bool PacketDissector::isKnown(int link) {
    constexpr int KNOWN[] = {DLT_EN10MB, DLT_RAW,       DLT_IPV4,      DLT_NULL,
                             DLT_LOOP,   DLT_LINUX_SLL, DLT_LINUX_SLL2};
    return std::ranges::find(KNOWN, link) != std::end(KNOWN);
}

/// Where the IPv4 packet begins.
std::size_t PacketDissector::findIp(std::span<const std::uint8_t> packet) const {
    switch (m_link) {
    case DLT_EN10MB:
        return behindEtherType(packet, 12);
    case DLT_LINUX_SLL:
        return packet.size() < 16 ? NOT_IPV4 : behindEtherType(packet, 14);
    case DLT_LINUX_SLL2:
        return packet.size() < 20 || number(packet, 0) != ETHERTYPE_IPV4 ? NOT_IPV4 : 20;
    case DLT_NULL: // a number that says IPv4 or not, in the byte order of whoever captured
    case DLT_LOOP:
        return 4;
    default:
        return 0;
    }
}

bool PacketDissector::take(std::span<const std::uint8_t> captured, std::size_t length,
                           std::int64_t wall_ns, CapturedDatagram& datagram) {
    const std::size_t begin = findIp(captured);
    if (begin == NOT_IPV4 || begin >= captured.size() || captured[begin] >> 4 != 4) {
        m_stats.other++;
        return false;
    }
    datagram.wall_ns = wall_ns;
    return takeIp(captured.subspan(begin), captured.size() < length, datagram);
}

/// Takes an IPv4 packet. `cut`: there was more of it, and perhaps only of what fills a short one.
bool PacketDissector::takeIp(std::span<const std::uint8_t> packet, bool cut,
                             CapturedDatagram& datagram) {
    const auto leaveOut = [&](std::int64_t& count) {
        count++;
        return false;
    };
    std::int64_t& too_short = cut ? m_stats.cut : m_stats.malformed;
    if (packet.size() < LEAST_IP_HEAD) return leaveOut(too_short);
    if (packet[9] != UDP) return leaveOut(m_stats.other);
    const std::size_t head = std::size_t{4} * (packet[0] & 15U);
    // 0 where the network card was to cut a large one up.
    const std::size_t total = number(packet, 2) == 0 ? packet.size() : number(packet, 2);
    if (head < LEAST_IP_HEAD || total < head) return leaveOut(m_stats.malformed);
    if (total > packet.size()) return leaveOut(too_short);
    datagram.from.address = address(packet, 12);
    datagram.to.address = address(packet, 16);
    const auto content = packet.first(total).subspan(head);
    if ((number(packet, 6) & 0x3fff) == 0) return takeUdp(content, datagram);
    return takeFragment(packet.first(head), content, datagram.wall_ns) &&
           takeUdp(m_complete, datagram);
}

/// True when a fragment completes its datagram, which is then in `m_complete`.
bool PacketDissector::takeFragment(std::span<const std::uint8_t> head,
                                   std::span<const std::uint8_t> part, std::int64_t wall_ns) {
    const std::uint16_t place = number(head, 6); // three bits of flags, then the offset
    const std::size_t begin = std::size_t{8} * (place & 0x1fffU);
    const bool is_last = (place & 0x2000U) == 0;
    Partial& partial = partialOf(head, wall_ns);
    const std::size_t end = begin + part.size();
    if (end > partial.bytes.size()) {
        partial.bytes.resize(end);
        partial.there.resize(end);
    }
    std::ranges::copy(part, partial.bytes.begin() + static_cast<std::ptrdiff_t>(begin));
    std::fill_n(partial.there.begin() + static_cast<std::ptrdiff_t>(begin), part.size(), true);
    partial.end_known |= is_last;
    if (!partial.end_known || std::ranges::count(partial.there, false) > 0) return false;
    m_complete = std::move(partial.bytes);
    m_partials.erase(m_partials.begin() + (&partial - m_partials.data()));
    return true;
}

/// The datagram that a fragment with this head, captured at that time, belongs to.
PacketDissector::Partial& PacketDissector::partialOf(std::span<const std::uint8_t> head,
                                                     std::int64_t wall_ns) {
    // As long as receivers wait for the rest; numbers come again, in minutes on a busy link.
    constexpr std::int64_t LONGEST_NS = 30 * program::NS_PER_SECOND;
    // As many as a busy network card may interleave; what is older will not be completed.
    constexpr std::size_t MOST = 64;
    m_stats.incomplete += static_cast<std::int64_t>(std::erase_if(
        m_partials, [&](const Partial& p) { return wall_ns - p.wall_ns > LONGEST_NS; }));
    const Partial wanted{address(head, 12), address(head, 16), number(head, 4), wall_ns, {}, {}};
    const auto found = std::ranges::find_if(m_partials, [&](const Partial& partial) {
        return partial.id == wanted.id && partial.from == wanted.from && partial.to == wanted.to;
    });
    if (found != m_partials.end()) return *found;
    if (m_partials.size() == MOST) {
        m_partials.erase(m_partials.begin());
        m_stats.incomplete++;
    }
    m_partials.push_back(wanted);
    return m_partials.back();
}

bool PacketDissector::takeUdp(std::span<const std::uint8_t> udp, CapturedDatagram& datagram) {
    const std::size_t size = udp.size() < UDP_HEAD ? 0 : number(udp, 4);
    if (size < UDP_HEAD || size > udp.size()) {
        m_stats.malformed++;
        return false;
    }
    datagram.from.port = number(udp, 0);
    datagram.to.port = number(udp, 2);
    datagram.bytes = udp.first(size).subspan(UDP_HEAD);
    return true;
}

void PacketDissector::finish() {
    m_stats.incomplete += static_cast<std::int64_t>(m_partials.size());
    m_partials.clear();
}

} // namespace flightsim
