// SPDX-License-Identifier: MIT
#pragma once

#include "frames/FrameInput.h"

/// Where frames get what they take in. The application has one, and asks it at the beginning of
/// every frame, those of a message box included; nothing else comes into the frame.
class FrameInputs {
public:
    /// What the script that may be played keeps step with.
    struct Moment {
        double time = 0;      ///< of the scene, s
        bool records = false; ///< the flight simulation's have begun to come
    };

    virtual ~FrameInputs() = default;
    /// Waits until the next frame is due, and says all that it takes in. False when there is none
    /// to come.
    virtual bool next(const Moment& moment, frames::FrameInput& input) = 0;
};
