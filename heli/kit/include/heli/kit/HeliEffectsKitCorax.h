// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/Function.h"

namespace ig {
class Node;
class Object;
class ObjectParticles;
} // namespace ig

class HelicopterCorax;

/// The rotor's downwash: spray, dust, snow and leaves thrown up from the surface below the
/// helicopter, and a field that flutters in the wind. All are nodes of the helicopter's prefab; the
/// nearer the surface, the more of them are shown. What an emitter throws up over land or over
/// water only is the emitter's own setting.
///
/// The logic creates one kit at start-up, after the helicopter, and frees it at release before the
/// helicopter goes. Each frame, once the model knows what lies below it and how much collective is
/// applied, the logic calls `update` and then `update_fade`. Nodes keep what they were given.
///
/// Optional nodes that the prefab lacks are null and skipped. After a failed `init` every other
/// operation does nothing.
class HeliEffectsKitCorax final {
public:
    /// Finds the nodes. False, with one message, when there is no "downwash" or no particle system
    /// "downwash_spe"; false without a message for a null helicopter.
    bool init(HelicopterCorax* heli);
    /// Tells `listeners` of each particle object, the main spray first, with the value 0.
    void announce(const ig::SignalList<ig::Object*, int>& listeners) const;

    /// Lays the downwash level onto the surface below the helicopter, shows what belongs to the
    /// present height, and lets the field flutter.
    void update();
    /// Fades everything with height, from 1 at 15 m to 0 at 25 m, and with `level`, which counts as
    /// 0 to 1; what is no number counts as 0.
    void update_fade(float level);

    HelicopterCorax* m_heli = nullptr;             ///< not owned
    ig::Node* m_downwash = nullptr;                ///< carrier, placed on the surface
    ig::ObjectParticles* m_downwash_spe = nullptr; ///< main spray; below it:
    ig::Node* m_out_blade = nullptr;               ///< shown below 19 m
    ig::Node* m_out_snow = nullptr;                ///< below 15 m
    ig::Node* m_h_blade = nullptr;                 ///< below 10 m
    ig::Node* m_leaf_1 = nullptr;                  ///< below 5 m
    ig::Node* m_leaf_2 = nullptr;                  ///< below 5 m
    ig::Node* m_water = nullptr;                   ///< over water only
    ig::Node* m_field_anim = nullptr;              ///< the field
    float m_field_base_1 = 0;                      ///< its parameters as found: at full collective
    float m_field_base_2 = 0;
    float m_field_base_3 = 0;
    float m_height = 0; ///< of the helicopter above the surface, at the last update

private:
    bool is_ready() const;
    void find_field(const ig::Node& root);
    void switch_bands();
    void flutter();
};
