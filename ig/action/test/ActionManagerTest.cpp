// SPDX-License-Identifier: MIT
#include "ig/action/ActionManager.h"

#include "ActionProbe.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

using namespace ig;

namespace {

class ActionManagerTest : public testing::Test {
protected:
    ~ActionManagerTest() override {
        manager.removeAllActions();
        EXPECT_EQ(memCount(), m_allocations) << "every action is freed";
    }
    ActionProbe* add(char letter, float duration, bool paused = false) {
        ActionProbe* probe = makeProbe(log, letter, duration);
        manager.addAction(probe, paused);
        return probe;
    }
    std::string takeLog() { return std::exchange(log, {}); }

    std::string log;
    ActionManager manager;

private:
    std::size_t m_allocations = memCount();
};

} // namespace

TEST_F(ActionManagerTest, actions_step_in_the_order_added_and_end_once) {
    add('a', 2);
    add('b', 1);
    EXPECT_EQ(takeLog(), "asbs");
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.b.btbrbd");
    EXPECT_EQ(manager.size(), 1);
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.atarad");
    manager.update(1);
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(manager.size(), 0);
}

TEST_F(ActionManagerTest, paused_actions_stand_still_until_resumed) {
    ActionProbe* a = add('a', 1, true);
    manager.update(5);
    EXPECT_EQ(a->elapsed(), 0);
    EXPECT_EQ(manager.size(), 1);
    a->setPause(false);
    manager.update(0.25f);
    EXPECT_EQ(a->elapsed(), 0.25f);
    a->setPause(true);
    EXPECT_TRUE(a->forceDone());
    manager.update(0);
    EXPECT_EQ(manager.size(), 0) << "what is done ends, paused or not";
}

TEST_F(ActionManagerTest, bad_frame_times_count_as_zero) {
    ActionProbe* a = add('a', 1);
    for (float dt :
         {-1.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        manager.update(dt);
        ASSERT_EQ(a->last_dt, 0);
    }
    EXPECT_EQ(a->elapsed(), 0);
}

TEST_F(ActionManagerTest, removal_releases_without_completion) {
    ActionProbe* a = add('a', 1);
    add('b', 1);
    takeLog();
    manager.removeAction(a);
    EXPECT_EQ(takeLog(), "arad");
    manager.removeAction(a); // dangling: only compared
    manager.removeAction(nullptr);
    EXPECT_EQ(manager.size(), 1);
    manager.removeAllActions();
    EXPECT_EQ(takeLog(), "brbd");
}

TEST_F(ActionManagerTest, null_repeated_and_refusing_actions_are_not_held) {
    manager.addAction(nullptr, false);
    ActionProbe* a = add('a', 1);
    manager.addAction(a, false);
    EXPECT_EQ(manager.size(), 1);
    takeLog();
    ActionProbe* b = makeProbe(log, 'b', 1);
    b->refuse = true;
    manager.addAction(b, false);
    EXPECT_EQ(takeLog(), "bsbrbd");
    EXPECT_EQ(manager.size(), 1);
}

TEST_F(ActionManagerTest, an_action_may_remove_itself_or_others_while_it_steps) {
    ActionProbe* a = add('a', 9);
    ActionProbe* b = add('b', 0.5f);
    ActionProbe* c = add('c', 9);
    takeLog();
    b->on_step = [&] {
        manager.removeAction(a);
        manager.removeAction(b);
        manager.removeAction(c);
        EXPECT_EQ(manager.size(), 0);
    };
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.b.aradcrcdbrbd") << "its own end comes after its step, unfinished";

    ActionProbe* d = add('d', 1);
    add('e', 1);
    takeLog();
    d->on_step = [&] { manager.removeAllActions(); };
    manager.update(1);
    EXPECT_EQ(takeLog(), "d.ereddrdd");
}

TEST_F(ActionManagerTest, completion_handlers_may_remove_and_add) {
    ActionProbe* a = add('a', 1);
    add('b', 1);
    takeLog();
    a->on_trigger = [&] {
        manager.removeAction(a);
        manager.removeAllActions();
        manager.addAction(a, false); // it is over: not taken again
        add('n', 1);
        for (char letter = 'A'; letter < 'Z'; letter++)
            add(letter, 9); // the list must grow
        takeLog();
    };
    manager.update(1);
    EXPECT_EQ(takeLog(), "arad") << "what was added waits for the next update";
    EXPECT_EQ(manager.size(), 26);
    manager.update(1);
    EXPECT_EQ(takeLog().substr(0, 8), "n.ntnrnd");
}

TEST_F(ActionManagerTest, releases_may_use_the_manager) {
    ActionProbe* a = add('a', 9);
    ActionProbe* b = add('b', 9);
    add('c', 9);
    a->on_release = [&] { manager.removeAction(b); };
    b->on_release = [&] { add('n', 9); };
    takeLog();
    manager.removeAllActions();
    EXPECT_EQ(takeLog(), "arbrnsbdadcrcd");
    EXPECT_EQ(manager.size(), 1);
}

TEST_F(ActionManagerTest, a_nested_update_is_ignored) {
    ActionProbe* a = add('a', 9);
    a->on_step = [&] { manager.update(1); };
    takeLog();
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.");
}

TEST_F(ActionManagerTest, copies_start_empty_and_destruction_releases) {
    add('a', 1);
    takeLog();
    {
        ActionManager copy(manager);
        EXPECT_EQ(copy.size(), 0);
        copy.addAction(makeProbe(log, 'b', 1), false);
        copy = manager;
        EXPECT_EQ(copy.size(), 1);
        copy.update(0.5f);
    }
    EXPECT_EQ(takeLog(), "bsb.brbd");
    EXPECT_EQ(manager.size(), 1);
}

TEST_F(ActionManagerTest, a_forever_action_ends_only_by_removal) {
    struct Forever : ForeverAction {};
    auto* action = memNew<Forever>({"test", "Forever"});
    ASSERT_TRUE(action);
    EXPECT_FALSE(action->forceDone());
    EXPECT_TRUE(action->step(1));
    action->setPause(true);
    EXPECT_FALSE(action->step(1));
    manager.addAction(action, false);
    EXPECT_FALSE(action->isPause());
    for (int i = 0; i < 100; i++)
        manager.update(1000);
    EXPECT_EQ(manager.size(), 1);
}
