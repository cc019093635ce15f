// SPDX-License-Identifier: MIT
#include "wall/Stream.h"

#include <algorithm>

namespace wall {

namespace {
/// Bytes that may wait behind a gap: an hour's. What is beyond comes again with the history.
constexpr std::size_t MOST_AHEAD = std::size_t{64} << 20;
} // namespace

void Stream::add(std::uint64_t run, std::uint64_t offset, std::uint64_t size,
                 std::span<const std::uint8_t> bytes) {
    if (run < m_run || run == 0) return;
    if (run > m_run) {
        *this = {};
        m_run = run;
    }
    m_size = std::max(m_size, size);
    if (offset > m_bytes.size()) {
        if (m_ahead_size + bytes.size() > MOST_AHEAD) return;
        std::vector<std::uint8_t>& waiting = m_ahead[offset];
        if (waiting.size() >= bytes.size()) return;
        m_ahead_size += bytes.size() - waiting.size();
        waiting.assign(bytes.begin(), bytes.end());
        return;
    }
    join(offset, bytes);
    while (!m_ahead.empty() && m_ahead.begin()->first <= m_bytes.size()) {
        const auto first = m_ahead.extract(m_ahead.begin());
        m_ahead_size -= first.mapped().size();
        join(first.key(), first.mapped());
    }
}

/// Adds what is new of bytes that leave no gap.
void Stream::join(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
    const std::uint64_t known = m_bytes.size() - offset;
    if (known < bytes.size())
        m_bytes.insert(m_bytes.end(), bytes.begin() + static_cast<long>(known), bytes.end());
}

std::vector<std::uint8_t> Stream::take() {
    std::vector<std::uint8_t> rest(m_bytes.begin() + static_cast<long>(m_taken), m_bytes.end());
    m_taken = m_bytes.size();
    return rest;
}

} // namespace wall
