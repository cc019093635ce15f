// SPDX-License-Identifier: MIT
#include "EventQueue.h"

#include <gtest/gtest.h>

namespace {

TEST(EventQueue, MovesInARowBecomeTheirFirstAndTheirLast) {
    EventQueue queue;
    const std::vector<std::vector<float>> runs = {{1, 2, 3, 4}, {5}, {6, 7}};
    const std::vector<float> kept = {1, 4, -1, 5, -1, 6, 7, -1};
    for (const std::vector<float>& run : runs) {
        for (const float x : run)
            queue.onMove(x, 2 * x);
        queue.onWheel(1);
    }
    std::vector<float> taken;
    for (const frames::OperatorEvent& event : queue.take()) {
        const bool move = event.kind == frames::OperatorEvent::Kind::move;
        taken.push_back(move ? event.x : -1);
        EXPECT_TRUE(!move || event.y == 2 * event.x);
    }
    EXPECT_EQ(taken, kept);
}

} // namespace
