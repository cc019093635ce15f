// SPDX-License-Identifier: MIT
#pragma once

#include "Entity.h"
#include "wall/WallNetwork.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

/// Sends the stream twice: frame by frame as it comes, each piece with the ones before it, so that
/// a lost packet is made good by the next without asking; and in blocks of a second, reliably,
/// which are kept for displays that come late and close every gap.
class DdsPublisher final : public wall::Publisher {
public:
    /// Writers of the two; the participant outlives it.
    DdsPublisher(std::uint64_t run, Entity now, Entity history);
    ~DdsPublisher() override;
    /// Before all else. False when the system has no thread to spare.
    bool begin();

    void append(std::span<const std::uint8_t> bytes) override;
    int getDisplays() const override;
    std::uint64_t getSize() const override;
    std::string takeComplaint() override;

private:
    using Bytes = std::vector<std::uint8_t>;

    void run();
    void add(const Bytes& bytes);
    void sendRecent();
    void sendBlock();
    void write(dds_entity_t writer, std::uint64_t offset, Bytes& bytes);

    const std::uint64_t m_run;
    Entity m_now, m_history;
    mutable std::mutex m_mutex; ///< of what follows, up to the thread's own
    std::condition_variable m_news;
    std::deque<Bytes> m_queue;
    std::uint64_t m_size = 0;
    std::string m_complaint;
    bool m_ends = false;
    // The thread's own.
    Bytes m_recent;                         ///< the end of the stream as it was sent
    std::deque<std::size_t> m_recent_sizes; ///< of its pieces
    Bytes m_block;                          ///< not in the history yet
    std::uint64_t m_sent = 0;               ///< bytes of the stream
    bool m_failed = false;                  ///< the last write
    std::jthread m_thread;
};
