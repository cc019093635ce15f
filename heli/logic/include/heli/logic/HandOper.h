// SPDX-License-Identifier: MIT
#pragma once

namespace ig {
class Node;
class ObjectPrefab;
} // namespace ig

/// Swings the deck commander's hands. The logic creates one at start-up, sets it up with the
/// commander when the world has one, and advances it every frame. Without a commander it is inert.
/// Zero-filled at creation.
struct HandOper {
    /// False, with nothing set, for a null prefab.
    bool init(ig::ObjectPrefab* commander);
    /// Swings both hands by `dt` seconds.
    void update(float dt);

    ig::Node* m_root = nullptr; ///< null: inert
    ig::Node* m_left_hand = nullptr;
    ig::Node* m_right_hand = nullptr;
    float m_angle = 0;       ///< about the hands' X axis, degrees
    float m_angle_limit = 0; ///< the swing turns back at plus and minus this; 45 after set-up
    float m_swing_speed = 0; ///< degrees per second; 120 after set-up
    int m_swing_dir = 0;     ///< +1 or −1
};
