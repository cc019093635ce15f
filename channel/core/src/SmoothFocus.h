// SPDX-License-Identifier: MIT
#pragma once

#include "PoseSmoother.h"
#include "ig/scene/ShownPoses.h"

class LogicBase;
class LogicListener;

/// Shows what the picture is about, with all that is part of it or hangs on it and with the camera
/// of the logic's own views, where it is at the frame's own time: between two records of the flight
/// simulation. The scene never notices: after the picture everything is where the records say.
class SmoothFocus {
public:
    /// After all of the frame but camera and picture. Moves things for the picture.
    /// `time` and `arrival`, of the newest record, s on one clock; `still`: the scene stands still.
    void show(LogicBase& logic, const LogicListener& listener, double time, double arrival,
              bool still);
    /// After the picture. Puts everything back, and lets the logic place its camera there.
    void putBack(LogicBase& logic);

private:
    PoseSmoother m_smoother;
    ig::ShownPoses m_shown;
    bool m_moved = false;
    bool m_still = false; ///< in the frame before
    int m_applied = 0;    ///< records up to that
};
