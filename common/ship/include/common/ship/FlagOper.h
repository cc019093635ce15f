// SPDX-License-Identifier: MIT
#pragma once

namespace ig {
class Node;
}

/// Swings a flag about its staff and turns it between the ship's heading, in a calm, and the
/// scene's wind, at full strength. The logic creates one per flag at start-up, sets it up when the
/// scene has the flag, and advances it every frame; without a flag it is inert. The flag hangs
/// along −X of its node, which turns about Z. Zero-filled at creation.
struct FlagOper {
    /// A fresh swing between ±`amplitude` degrees at `speed` degrees per second.
    void init(ig::Node* node, float amplitude, float speed);
    /// A constant turn added to the flag's, degrees.
    void set_offset(float offset) { m_offset = offset; }
    /// Turns the flag, then swings it on by `dt` seconds. An error line, and no more, for a flag
    /// that belongs to no prefab.
    void update(float dt);

    ig::Node* m_node = nullptr; ///< null: inert
    float m_phase = 0;          ///< present swing, degrees
    float m_amplitude = 0;
    float m_speed = 0;
    int m_direction = 0; ///< +1 or −1
    float m_offset = 0;

private:
    void swing(float dt);
};
