// SPDX-License-Identifier: MIT
#pragma once

namespace ig {
class Node;
}

/// Swings a flag about its staff and turns it between two directions: in a calm the wind that the
/// ship makes for itself, which blows the flag astern, at full strength the scene's wind, and in
/// proportion between, the shorter way round. The flag hangs along X of its node, which turns about
/// the ship's vertical. Both ends are right for a ship that heads north. On a heading h the calm
/// end is off by h to the left and the windy end by h to the right.
///
/// The logic creates one per flag at start-up, sets it up when the scene has the flag, and advances
/// it every frame; without a flag it is inert. Zero-filled at creation.
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
