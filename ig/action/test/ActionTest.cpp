// SPDX-License-Identifier: MIT
#include "ig/action/ActionManager.h"
#include "ig/action/ActionMulti.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>

using namespace ig;

namespace {

/// An interval that writes into `log` what happens to it: its letter followed by s(tart), . (step),
/// t(rigger), r(elease), d(estructor). Hooks, by the same letters, run then; a negative duration
/// refuses to start.
struct Probe : ActionInterval {
    Probe(std::string& a_log, char a_letter, float duration) : log(a_log), letter(a_letter) {
        setDuration(duration);
    }
    ~Probe() override { note('d'); }
    bool start() override { return note('s'), ActionInterval::start() && getDuration() >= 0; }
    bool step(float dt) override { return note('.'), ActionInterval::step(dt); }
    void trigger() override { note('t'); }
    void release() override { note('r'), ActionInterval::release(); }
    void note(char what) {
        (log += letter) += what;
        if (hooks[what]) hooks[what]();
    }
    float elapsed() const { return m_elapsed; }

    std::string& log;
    char letter;
    std::map<char, std::function<void()>> hooks;
};

class ActionTest : public testing::Test {
protected:
    ~ActionTest() override {
        manager.removeAllActions();
        EXPECT_EQ(memCount(), allocations) << "every action is freed";
    }
    Probe* make(char letter, float duration) {
        return memNew<Probe>({"test", "make"}, log, letter, duration);
    }
    template <class T>
    T* add(T* action, bool paused = false) {
        manager.addAction(action, paused);
        return action;
    }
    /// What happens from here to the end of one update.
    std::string update(float dt) {
        log.clear();
        manager.update(dt);
        return log;
    }

    std::size_t allocations = memCount();
    std::string log;
    ActionManager manager;
};

} // namespace

TEST_F(ActionTest, ActionsStepInTheOrderAddedEndOnceAndStandStillWhilePaused) {
    Probe* a = add(make('a', 2));
    add(make('b', 1));
    Probe* c = add(make('c', 1), true);
    add(a); // held already
    EXPECT_EQ(log, "asbscs");
    for (float wrong : {-1.0f, NAN, INFINITY})
        EXPECT_EQ(update(wrong), "a.b.c.") << "counts as zero";
    EXPECT_EQ(update(1), "a.b.btbrbdc.");
    EXPECT_EQ(update(1.5f), "a.ataradc.");
    c->setPause(false);
    EXPECT_EQ(update(0.25f), "c.");
    EXPECT_EQ(c->elapsed(), 0.25f);
    c->setPause(true);
    c->forceDone();
    EXPECT_EQ(update(0), "c.ctcrcd") << "what is done ends, paused or not";
}

TEST_F(ActionTest, RemovalReleasesWithoutCompletionAndARefusedStartIsARemoval) {
    Probe* a = add(make('a', 1));
    add(make('b', -1));
    manager.addAction(nullptr, false);
    manager.removeAction(a);
    manager.removeAction(a); // dangling: only compared
    EXPECT_EQ(log, "asbsbrbdarad");
    EXPECT_EQ(manager.size(), 0);
}

TEST_F(ActionTest, AnActionMayRemoveItselfAndOthersWhileItSteps) {
    Probe* a = add(make('a', 9));
    Probe* b = add(make('b', 0.5f));
    add(make('c', 9));
    b->hooks['.'] = [&] {
        manager.update(1); // nested: ignored
        manager.removeAction(a);
        manager.removeAllActions();
        EXPECT_EQ(manager.size(), 0);
    };
    EXPECT_EQ(update(1), "a.b.aradcrcdbrbd") << "its own end comes after its step, unfinished";
}

TEST_F(ActionTest, CompletionHandlersAndReleasesMayRemoveAndAdd) {
    Probe *a = add(make('a', 1)), *b = add(make('b', 9)), *c = add(make('c', 9));
    b->hooks['r'] = [&] { manager.removeAction(c); };
    c->hooks['r'] = [&] { add(make('n', 1)); };
    a->hooks['t'] = [&] {
        manager.removeAllActions();
        manager.addAction(a, false); // it is over: not taken again
        for (char letter = 'A'; letter < 'Z'; letter++)
            add(make(letter, 9)); // the list must grow
    };
    EXPECT_EQ(update(1).substr(0, 20), "a.atbrcrnscdbdAsBsCs");
    EXPECT_EQ(manager.size(), 26);
    EXPECT_EQ(update(1).substr(0, 8), "n.ntnrnd");
}

TEST_F(ActionTest, AnIntervalCompletesOnceAtItsDurationUnlessRemoved) {
    std::vector<Action*> completed;
    const ActionInterval::Completion note(&log, [&](Action* a) { completed.push_back(a); });
    Action* action = add(ActionInterval::Create(0.2f, note));
    for (std::size_t count : {0, 1, 1}) {
        manager.update(0.1f);
        EXPECT_EQ(completed, std::vector<Action*>(count, action));
    }
    for (float duration : {0.0f, NAN}) // which must not last for ever
        add(ActionInterval::Create(duration));
    manager.update(0);
    EXPECT_EQ(manager.size(), 0);
    add(ActionInterval::Create(1, note));
    manager.removeAllActions();
    EXPECT_EQ(completed.size(), 1u);
}

TEST_F(ActionTest, AMultiRunsItsActionsTogetherAndCompletesEachAtItsOwnTime) {
    ActionMulti* multi = add(
        ActionMulti::Create({make('a', 3), nullptr, make('b', 1), make('r', -1), make('c', 2)}));
    EXPECT_EQ(multi->getDuration(), 3);
    EXPECT_EQ(log, "asbsrsrrrdcs");
    EXPECT_EQ(update(1), "a.b.btbrbdc.");
    multi->setPause(true);
    EXPECT_EQ(update(1), "");
    multi->setPause(false);
    EXPECT_EQ(update(1), "a.c.ctcrcd");
    multi->forceDone();
    EXPECT_EQ(update(0), "a.atarad");
}

TEST_F(ActionTest, ARemovedMultiCompletesNoOtherAction) {
    Probe* a = make('a', 1);
    add(ActionMulti::Create({ActionMulti::Create({a, make('b', 1)}), make('c', 1)}));
    a->hooks['t'] = [&] { manager.removeAllActions(); };
    EXPECT_EQ(update(1), "a.ataradbrbdcrcd");
}
