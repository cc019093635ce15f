// SPDX-License-Identifier: MIT
#include "ig/action/ActionMulti.h"

#include "ActionProbe.h"

#include <gtest/gtest.h>
#include <utility>

using namespace ig;

namespace {

class ActionMultiTest : public testing::Test {
protected:
    ~ActionMultiTest() override {
        manager.removeAllActions();
        EXPECT_EQ(memCount(), m_allocations);
    }
    ActionMulti* add(const jVector<ActionInterval*>& actions) {
        ActionMulti* multi = ActionMulti::Create(actions);
        manager.addAction(multi, false);
        return multi;
    }
    std::string takeLog() { return std::exchange(log, {}); }

    std::string log;
    ActionManager manager;

private:
    std::size_t m_allocations = memCount();
};

} // namespace

TEST_F(ActionMultiTest, runs_its_actions_together_and_completes_each_at_its_own_time) {
    ActionMulti* multi =
        add({makeProbe(log, 'a', 3), nullptr, makeProbe(log, 'b', 1), makeProbe(log, 'c', 2)});
    EXPECT_EQ(multi->getDuration(), 3);
    EXPECT_EQ(takeLog(), "asbscs");
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.b.btbrbdc.");
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.c.ctcrcd");
    EXPECT_EQ(manager.size(), 1);
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.atarad");
    EXPECT_EQ(manager.size(), 0);
    add({nullptr});
    manager.update(0);
    EXPECT_EQ(manager.size(), 0) << "nothing to run";
}

TEST_F(ActionMultiTest, removal_releases_what_is_left_without_completion) {
    ActionMulti* multi = add({makeProbe(log, 'a', 1), makeProbe(log, 'b', 2)});
    manager.update(1);
    takeLog();
    manager.removeAction(multi);
    EXPECT_EQ(takeLog(), "brbd");
}

TEST_F(ActionMultiTest, removed_by_one_of_its_actions_it_completes_no_other) {
    ActionProbe* a = makeProbe(log, 'a', 1);
    ActionProbe* b = makeProbe(log, 'b', 1);
    ActionMulti* inner = ActionMulti::Create({a, b});
    add({inner, makeProbe(log, 'c', 1)});
    takeLog();
    a->on_trigger = [&] { manager.removeAllActions(); };
    manager.update(1);
    EXPECT_EQ(takeLog(), "a.ataradbrbdcrcd");

    ActionProbe* d = makeProbe(log, 'd', 1);
    add({d, makeProbe(log, 'e', 1)});
    takeLog();
    d->on_step = [&] {
        d->forceDone();
        manager.removeAllActions();
    };
    manager.update(1);
    EXPECT_EQ(takeLog(), "d.drddered");
}

TEST_F(ActionMultiTest, pause_refusal_and_force_reach_its_actions) {
    ActionProbe* refusing = makeProbe(log, 'r', 1);
    refusing->refuse = true;
    ActionProbe* a = makeProbe(log, 'a', 5);
    ActionMulti* multi = add({refusing, a});
    EXPECT_EQ(takeLog(), "rsrrrdas");
    multi->setPause(true);
    manager.update(1);
    EXPECT_EQ(takeLog(), "");
    multi->setPause(false);
    manager.update(1);
    EXPECT_EQ(a->elapsed(), 1);
    EXPECT_TRUE(multi->forceDone());
    takeLog();
    manager.update(0);
    EXPECT_EQ(takeLog(), "a.atarad");
}

TEST_F(ActionMultiTest, frees_its_actions_when_memory_runs_out) {
    const jVector<ActionInterval*> actions = {makeProbe(log, 'a', 1), nullptr};
    jAllocator::get()->setLimit(1);
    EXPECT_FALSE(ActionMulti::Create(actions));
    jAllocator::get()->setLimit(0);
    EXPECT_EQ(takeLog(), "arad");
}
