// SPDX-License-Identifier: MIT
#pragma once

#include "Entity.h"
#include "wall/Stream.h"
#include "wall/WallNetwork.h"

/// Puts the stream together of what comes frame by frame and of the history's blocks.
class DdsSubscriber final : public wall::Subscriber {
public:
    /// Readers of the two, and what wakes `wait`; the participant outlives it.
    DdsSubscriber(Entity now, Entity history, Entity waitset)
        : m_now(std::move(now)), m_history(std::move(history)), m_waitset(std::move(waitset)) {}

    void wait(double seconds) override;
    std::vector<std::uint8_t> take() override;
    std::uint64_t getRun() const override { return m_stream.getRun(); }
    void restart() override { m_stream.restart(); }
    std::uint64_t getSize() const override { return m_stream.getSize(); }
    bool isConnected() const override;

private:
    Entity m_now, m_history, m_waitset;
    wall::Stream m_stream;
};
