// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/capture/Capture.h"

#include <cstddef>
#include <vector>

namespace flightsim {

class PacketDissector {
public:
    /// Whether packets of that kind of link (`DLT_…`) are known.
    static bool isKnown(int link);

    /// `stats`, which must outlive this, counts what is left out.
    PacketDissector(int link, CaptureStats& stats) : m_link(link), m_stats(stats) {}

    /// Takes a packet, as far as it was captured, out of `captured` and `length`. True when
    /// it completes a datagram; its bytes lie in the packet or, when they came in fragments, here.
    bool take(std::span<const std::uint8_t> captured, std::size_t length, std::int64_t wall_ns,
              CapturedDatagram& datagram);
    /// At the end: what still waits for fragments is incomplete.
    void finish();

private:
    /// A datagram of which some fragments are there.
    struct Partial {
        std::uint32_t from;
        std::uint32_t to;
        std::uint16_t id;
        std::int64_t wall_ns;            ///< when its first one came
        std::vector<std::uint8_t> bytes; ///< up to the farthest that is there
        std::vector<bool> there;         ///< of `bytes`
        bool end_known = false;          ///< the last fragment is there
    };
    std::size_t findIp(std::span<const std::uint8_t> packet) const;
    bool takeIp(std::span<const std::uint8_t> packet, bool cut, CapturedDatagram& datagram);
    bool takeFragment(std::span<const std::uint8_t> head, std::span<const std::uint8_t> part,
                      std::int64_t wall_ns);
    Partial& partialOf(std::span<const std::uint8_t> head, std::int64_t wall_ns);
    bool takeUdp(std::span<const std::uint8_t> udp, CapturedDatagram& datagram);

    int m_link;
    CaptureStats& m_stats;
    std::vector<Partial> m_partials;      ///< the oldest first
    std::vector<std::uint8_t> m_complete; ///< the datagram that was put together last
};

} // namespace flightsim
