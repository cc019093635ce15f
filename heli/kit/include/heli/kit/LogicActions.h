// SPDX-License-Identifier: MIT
#pragma once

#include "ig/action/Action.h"
#include "ig/math/mat.h"

namespace ig {
class Node;
}

struct TorpedoInfo;

/// Opens a dropped torpedo's parachute after a while and hides it when the torpedo is down to the
/// ellipsoid or its time is over, which ends the action. Tells its record when it goes.
class ActionEmitTorpedo : public ig::ForeverAction {
public:
    /// `delay` in seconds. The record stays the caller's and must outlive the action; its time left
    /// is the time limit. Null without a record, or when memory ran out.
    static ActionEmitTorpedo* Create(TorpedoInfo* info, float delay);
    ~ActionEmitTorpedo() override;

    bool start() override;
    bool step(float dt) override;
    bool isDone() const override { return m_done; }
    bool forceDone() override;
    virtual bool init(TorpedoInfo* info, float delay);
    virtual void update(float) {}

private:
    void hideParachute();

    TorpedoInfo* m_info = nullptr; ///< not owned
    float m_delay = 0;             ///< seconds before the parachute is shown
    float m_limit = 0;             ///< seconds after which it is hidden
    float m_elapsed = 0;
    bool m_shown = false; ///< the parachute was placed and shown
    bool m_done = false;
};

/// Flies a missile straight along the Y axis that it had at its launch, and hides it when its time
/// is over, which ends the action.
class ActionEmitMissile : public ig::ForeverAction {
public:
    /// `speed` in m/s, `lifetime` in seconds. The node stays the caller's and must outlive the
    /// action. Null without a node, or when memory ran out.
    static ActionEmitMissile* Create(ig::Node* node, float speed, float lifetime);

    /// Puts the missile back to its launch.
    bool start() override;
    /// Always true, paused or not.
    bool step(float dt) override;
    bool isDone() const override { return m_done; }
    virtual bool init(ig::Node* node, float speed, float lifetime);
    /// Moves the missile on; a hidden one stays where it is.
    virtual void update(float dt);

private:
    ig::Node* m_node = nullptr; ///< not owned
    float m_lifetime = 0;       ///< seconds
    float m_speed = 0;          ///< m/s
    ig::dmat4 m_start;          ///< world transform at the launch
    ig::dvec4 m_direction;      ///< its Y column
    bool m_done = false;
    float m_elapsed = 0;
};
