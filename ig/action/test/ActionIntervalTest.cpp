// SPDX-License-Identifier: MIT
#include "ig/action/ActionInterval.h"

#include "ActionProbe.h"

#include <gtest/gtest.h>
#include <limits>

using namespace ig;

namespace {

/// Counts completions and the data that the action carried.
struct Receiver {
    void onDone(Action* action) {
        count++;
        data = action->getData();
    }
    int count = 0;
    void* data = nullptr;
};

} // namespace

TEST(ActionInterval, completion_handler_runs_once_with_the_action_after_the_duration) {
    Receiver receiver;
    ActionManager manager;
    auto* action = ActionInterval::Create(0.2f, {&receiver, &Receiver::onDone});
    action->setData(&manager);
    manager.addAction(action, false);
    manager.update(0.1f);
    EXPECT_EQ(receiver.count, 0);
    manager.update(0.1f);
    EXPECT_EQ(receiver.count, 1) << "at the duration itself";
    EXPECT_EQ(receiver.data, &manager);
    manager.update(0.1f);
    EXPECT_EQ(receiver.count, 1);

    manager.addAction(ActionInterval::Create(1, {&receiver, &Receiver::onDone}), false);
    manager.removeAllActions();
    EXPECT_EQ(receiver.count, 1) << "removed actions don't complete";
    manager.addAction(ActionInterval::Create(0), false);
    manager.update(0);
    EXPECT_EQ(manager.size(), 0) << "no duration and no handler";
    manager.addAction(ActionInterval::Create(std::numeric_limits<float>::quiet_NaN()), false);
    manager.update(0);
    EXPECT_EQ(manager.size(), 0) << "a duration that is no number doesn't last for ever";
}

TEST(ActionInterval, elapsed_time_stops_at_the_duration_and_start_resets_it) {
    std::string log;
    ActionProbe probe(log, 'a', 1.5f);
    EXPECT_TRUE(probe.step(1));
    EXPECT_FALSE(probe.isDone());
    probe.step(1);
    EXPECT_EQ(probe.elapsed(), 1.5f);
    EXPECT_TRUE(probe.isDone());
    probe.start();
    EXPECT_FALSE(probe.isDone());
    probe.forceDone();
    EXPECT_EQ(probe.elapsed(), 1.5f);
}

TEST(ActionInterval, removed_action_counts_as_done_when_asked_to) {
    std::string log;
    for (bool asked : {false, true}) {
        ActionProbe probe(log, 'a', 1);
        probe.setDoneIfDel(asked);
        probe.start();
        probe.release();
        EXPECT_EQ(probe.isDone(), asked);
    }
}

TEST(ActionInterval, runs_out_of_memory_quietly) {
    jAllocator::get()->setLimit(1);
    EXPECT_FALSE(ActionInterval::Create(1));
    jAllocator::get()->setLimit(0);
}
