// SPDX-License-Identifier: MIT
#pragma once

#include "ig/action/ActionManager.h"
#include "ig/action/ActionMulti.h"

#include <functional>
#include <string>

/// An interval that writes into `log` what happens to it: its letter followed by s(tart), . (step),
/// t(rigger), r(elease), d(estructor). Optional hooks run inside step and trigger.
class ActionProbe : public ig::ActionInterval {
public:
    ActionProbe(std::string& log, char letter, float duration) : m_log(log), m_letter(letter) {
        setDuration(duration);
    }
    ~ActionProbe() override { note('d'); }
    bool start() override {
        note('s');
        return ActionInterval::start() && !refuse;
    }
    bool step(float dt) override {
        note('.');
        last_dt = dt;
        if (on_step) on_step();
        return ActionInterval::step(dt);
    }
    void trigger() override {
        note('t');
        ActionInterval::trigger();
        if (on_trigger) on_trigger();
    }
    void release() override {
        note('r');
        ActionInterval::release();
        if (on_release) on_release();
    }
    float elapsed() const { return m_elapsed; }

    bool refuse = false;
    float last_dt = -1;
    std::function<void()> on_step, on_trigger, on_release;

private:
    void note(char what) { (m_log += m_letter) += what; }
    std::string& m_log;
    char m_letter;
};

inline ActionProbe* makeProbe(std::string& log, char letter, float duration) {
    return ig::memNew<ActionProbe>({"test", "makeProbe"}, log, letter, duration);
}
