// SPDX-License-Identifier: MIT
#include "DdsPublisher.h"

#include "Topics.h"
#include "program/Process.h"

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto BLOCK_PERIOD = 1s;
constexpr std::size_t BLOCK_SIZE = 32768; ///< bytes after which a block doesn't wait for its second
constexpr auto REPEAT_AFTER = 8ms;        ///< a frame that is followed by none is sent again
constexpr std::size_t RECENT_SIZE = 1200; ///< bytes beyond the newest: all go into one packet
constexpr std::size_t RECENT_PIECES = 8;

} // namespace

DdsPublisher::DdsPublisher(std::uint64_t run, Entity now, Entity history)
    : m_run(run), m_now(std::move(now)), m_history(std::move(history)) {}

bool DdsPublisher::begin() {
    return program::beginThread(m_thread, [this](const std::stop_token&) { this->run(); });
}

DdsPublisher::~DdsPublisher() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_news.notify_one();
    if (m_thread.joinable()) m_thread.join();
    dds_wait_for_acks(m_history.get(), DDS_MSECS(500)); // the end is to reach the displays
}

void DdsPublisher::append(std::span<const std::uint8_t> bytes) {
    {
        const std::lock_guard lock(m_mutex);
        m_queue.emplace_back(bytes.begin(), bytes.end());
        m_size += bytes.size();
    }
    m_news.notify_one();
}

int DdsPublisher::getDisplays() const {
    dds_publication_matched_status_t status{};
    dds_get_publication_matched_status(m_history.get(), &status);
    return static_cast<int>(status.current_count);
}

std::uint64_t DdsPublisher::getSize() const {
    const std::lock_guard lock(m_mutex);
    return m_size;
}

std::string DdsPublisher::takeComplaint() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_complaint, {});
}

void DdsPublisher::run() {
    Clock::time_point block_due = Clock::now() + BLOCK_PERIOD;
    bool repeats = false;
    std::unique_lock lock(m_mutex);
    while (!m_ends || !m_queue.empty()) {
        const auto until = repeats ? Clock::now() + REPEAT_AFTER : block_due;
        m_news.wait_until(lock, until, [this] { return m_ends || !m_queue.empty(); });
        const std::deque<Bytes> queue = std::exchange(m_queue, {});
        lock.unlock();
        for (const Bytes& bytes : queue)
            add(bytes);
        if (!queue.empty() || repeats) sendRecent();
        repeats = !queue.empty();
        if (m_block.size() > BLOCK_SIZE || Clock::now() >= block_due) {
            sendBlock();
            block_due = Clock::now() + BLOCK_PERIOD;
        }
        lock.lock();
    }
    lock.unlock();
    sendBlock();
}

void DdsPublisher::add(const Bytes& bytes) {
    m_block.insert(m_block.end(), bytes.begin(), bytes.end());
    m_recent.insert(m_recent.end(), bytes.begin(), bytes.end());
    m_recent_sizes.push_back(bytes.size());
    m_sent += bytes.size();
    while (m_recent_sizes.size() > 1 && (m_recent_sizes.size() > RECENT_PIECES ||
                                         m_recent.size() > RECENT_SIZE + bytes.size())) {
        m_recent.erase(m_recent.begin(), m_recent.begin() + static_cast<long>(m_recent_sizes[0]));
        m_recent_sizes.pop_front();
    }
}

void DdsPublisher::sendRecent() { write(m_now.get(), m_sent - m_recent.size(), m_recent); }

void DdsPublisher::sendBlock() {
    if (m_block.empty()) return;
    write(m_history.get(), m_sent - m_block.size(), m_block);
    if (!m_failed) m_block.clear(); // else it goes with the next one
}

void DdsPublisher::write(dds_entity_t writer, std::uint64_t offset, Bytes& bytes) {
    wall_topics_Piece piece{};
    piece.run = m_run;
    piece.offset = offset;
    piece.size = m_sent;
    piece.bytes._length = piece.bytes._maximum = static_cast<std::uint32_t>(bytes.size());
    piece.bytes._buffer = bytes.data();
    const dds_return_t result = dds_write(writer, &piece);
    const bool failed = result < 0;
    if (failed && !m_failed) {
        const std::lock_guard lock(m_mutex);
        m_complaint = std::string("a block could not be sent: ") + dds_strretcode(result) +
                      ": a display may hang; it is sent again";
    }
    if (writer == m_history.get()) m_failed = failed;
}
