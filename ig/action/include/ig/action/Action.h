// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"

namespace ig {

/// Something that goes on over several frames: a weapon in flight, an effect, a delay. Made by a
/// plug-in (`memNew`, by way of the class's own static `Create`), given to an `ActionManager`,
/// which owns it from then on: starts it, steps it every frame until it is done, and frees it.
/// Whoever keeps the pointer must forget it when the action ends.
class Action {
public:
    virtual bool isPause() const { return m_pause; }
    /// A paused action is still asked to step and does not advance.
    virtual void setPause(bool pause) { m_pause = pause; }
    /// A number of the creator's choice; 0 at first.
    virtual int getTag() const { return m_tag; }
    virtual void setTag(int tag) { m_tag = tag; }
    /// A pointer of the creator's choice, not owned; null at first.
    virtual void* getData() const { return m_data; }
    virtual void setData(void* data) { m_data = data; }
    virtual ~Action() = default;

    /// Called once, when the action is given to its manager. False refuses: it is freed unstepped.
    virtual bool start() { return true; }
    /// Advances by `dt` seconds, at least 0. True when it advanced, false when it is paused.
    virtual bool step(float dt);
    /// Asked after every step; true ends the action.
    virtual bool isDone() const { return false; }
    /// Makes the action done, so that it ends with the next step. False when it can't.
    virtual bool forceDone() { return false; }
    /// Called once when the action is done, before `release`; not when it is removed.
    virtual void trigger() {}
    /// Called once before the action is freed, however it ended: gives back what it holds.
    virtual void release() {}

    /// Actions come from the engine allocator; `delete` takes them out of the memory tracker.
    static void* operator new(std::size_t size) { return jObject::operator new(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory) noexcept { jObject::operator delete(memory); }

protected:
    Action() = default;

private:
    void* m_data = nullptr;
    int m_tag = 0;
    bool m_pause = false;
};

/// Never done by itself: derived classes say when, or somebody removes it.
class ForeverAction : public Action {
protected:
    ForeverAction() = default;
};

/// An action that takes a known time.
class FiniteTimeAction : public Action {
public:
    /// Seconds.
    virtual float getDuration() const { return m_duration; }
    virtual void setDuration(float duration) { m_duration = duration; }

protected:
    FiniteTimeAction() = default;

private:
    float m_duration = 0;
};

} // namespace ig
