// SPDX-License-Identifier: MIT
#include "DdsBarrier.h"

#include "Topics.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr dds_duration_t PATIENCE = DDS_SECS(1); ///< with one that is silent
}

bool DdsBarrier::wait(std::uint64_t run, std::uint64_t frame, double seconds) {
    wall_topics_Ready ready{};
    ready.run = run;
    ready.name = m_name.data();
    ready.frame = frame;
    dds_write(m_writer.get(), &ready);
    const dds_time_t until = dds_time() + std::llround(seconds * double(DDS_NSECS_IN_SEC));
    while (true) {
        const dds_time_t now = dds_time();
        takeAll<wall_topics_Ready>(m_reader.get(), [&](const wall_topics_Ready& other) {
            if (other.name != m_name) m_others[other.name] = {other.run, other.frame, now};
        });
        if (areReady(run, frame, now)) return true;
        if (now >= until) return false;
        dds_waitset_wait(m_waitset.get(), nullptr, 0, until - now);
    }
}

bool DdsBarrier::areReady(std::uint64_t run, std::uint64_t frame, dds_time_t now) const {
    return std::ranges::none_of(m_others, [&](const auto& entry) {
        const Other& other = entry.second;
        return other.run == run && other.frame < frame && now - other.heard < PATIENCE;
    });
}
