// SPDX-License-Identifier: MIT
#include "heli/kit/HeliEffectsKitCorax.h"

#include "heli/kit/HelicopterCorax.h"
#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/math/jMath.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"

#include <algorithm>
#include <cmath>

using namespace ig;

namespace {

const char* const INIT = "HeliEffectsKitCorax::init";

// Heights above the surface, metres, below which an effect is shown.
constexpr float DOWNWASH_BELOW = 25, OUT_BLADE_BELOW = 19, OUT_SNOW_BELOW = 15, H_BLADE_BELOW = 10,
                LEAVES_BELOW = 5;
constexpr float FADED_IN_AT = 15; ///< metres; from DOWNWASH_BELOW down to here it fades in

constexpr double FLUTTER_RATE = 25; ///< rad/s: about four beats a second

void show(Node* node, bool on) {
    if (node) node->setEnabled(on);
}

Node* findRequired(const Node* root, const char* name) {
    Node* node = root ? root->getChildByName(name, true) : nullptr;
    if (!node) jLog::error("%s:can not find \"%s\" node", INIT, name);
    return node;
}

void setAlpha(Node* node, float alpha) {
    if (!node || !node->isObject()) return;
    Material* material = static_cast<Object*>(node)->getSurfaceMaterial(0);
    const int color = material ? material->findParameterIDByTag("diffuse_color") : -1;
    if (color < 0) return;
    vec4 value = material->getParameterValue(color);
    value.w = alpha;
    material->setParameterValue(color, value);
}

} // namespace

bool HeliEffectsKitCorax::init(HelicopterCorax* heli) {
    m_heli = heli;
    if (!heli) return false;
    const Node* root = heli->m_prefab ? heli->m_prefab->getRoot() : nullptr;
    m_downwash = findRequired(root, "downwash");
    if (!m_downwash) return false;
    Node* spray = findRequired(root, "downwash_spe");
    if (!spray) return false;
    if (spray->getType() != OBJECT_PARTICLES) {
        jLog::error("%s:\"%s\" node is not a particle", INIT, "downwash_spe");
        return false;
    }
    m_downwash_spe = static_cast<ObjectParticles*>(spray);
    find_field(*root);
    m_out_blade = spray->getChildByName("out_blade", false);
    m_out_snow = spray->getChildByName("out_snow", false);
    m_h_blade = spray->getChildByName("h_blade", false);
    m_leaf_1 = spray->getChildByName("leaf_1", false);
    m_leaf_2 = spray->getChildByName("leaf_2", false);
    m_water = spray->getChildByName("water", false);
    for (Node* node : {m_water, m_leaf_1, m_leaf_2})
        show(node, false);
    return true;
}

void HeliEffectsKitCorax::find_field(const Node& root) {
    Node* node = root.getChildByName("field_anim", true);
    if (!node || node->getType() != NODE_FIELD) return;
    m_field_anim = node;
    const auto& field = static_cast<const NodeField&>(*node);
    m_field_base_1 = field.getParameter(0);
    m_field_base_2 = field.getParameter(1);
    m_field_base_3 = field.getParameter(2);
}

void HeliEffectsKitCorax::announce(const SignalList<Object*, int>& listeners) const {
    for (Node* node : {static_cast<Node*>(m_downwash_spe), m_out_blade, m_out_snow, m_h_blade,
                       m_leaf_1, m_leaf_2, m_water})
        if (node && node->isObject()) emit(listeners, static_cast<Object*>(node), 0);
}

/// The nodes belong to the prefab: without it there are none.
bool HeliEffectsKitCorax::is_ready() const { return m_downwash_spe && m_heli && m_heli->m_prefab; }

void HeliEffectsKitCorax::update() {
    if (!is_ready()) return;
    const EllipsoidModel* earth = Engine::get()->getEllipsoidModel();
    dvec3 geodetic = earth->toWGS(m_heli->get_world_position(), true);
    const double ground = static_cast<double>(m_heli->get_ground_height());
    m_height = static_cast<float>(geodetic.z - ground);
    geodetic.z = ground;
    const dvec3 below = earth->toWorld(geodetic, true);
    m_downwash->setWorldTransform(earth->getWGSTransform(below, true));
    show(m_water, m_heli->is_over_water());
    switch_bands();
    flutter();
}

/// A cascade: what lies further down than the band of the present height is left as it is, because
/// it is shown no longer or not yet.
void HeliEffectsKitCorax::switch_bands() {
    const auto shown_below = [this](float limit, std::initializer_list<Node*> nodes) {
        const bool on = m_height < limit;
        for (Node* node : nodes)
            show(node, on);
        return on;
    };
    if (!shown_below(DOWNWASH_BELOW, {m_downwash, m_downwash_spe})) return;
    if (!shown_below(OUT_BLADE_BELOW, {m_out_blade})) return;
    if (!shown_below(OUT_SNOW_BELOW, {m_out_snow})) return;
    if (!shown_below(H_BLADE_BELOW, {m_h_blade})) {
        show(m_leaf_1, false);
        return;
    }
    shown_below(LEAVES_BELOW, {m_leaf_1, m_leaf_2});
}

void HeliEffectsKitCorax::flutter() {
    if (!m_field_anim) return;
    const float collective = std::isfinite(m_heli->m_collective) ? m_heli->m_collective : 0;
    const double reach = static_cast<double>(collective) * static_cast<double>(m_field_base_1);
    const double beat = std::sin(FLUTTER_RATE * Engine::get()->getRunningTime());
    auto& field = static_cast<NodeField&>(*m_field_anim);
    field.setParameter(0, static_cast<float>(reach * (0.7 + 0.3 * beat)));
    field.setParameter(1, collective * m_field_base_2);
    field.setParameter(2, collective * m_field_base_3);
}

void HeliEffectsKitCorax::update_fade(float level) {
    if (!is_ready()) return;
    const float k = std::isnan(level) ? 0 : std::clamp(level, 0.0f, 1.0f);
    const float alpha = jMath::getFadeOut(m_height, DOWNWASH_BELOW, FADED_IN_AT) * k;
    for (Node* node : {static_cast<Node*>(m_downwash_spe), m_out_blade, m_out_snow, m_h_blade,
                       m_leaf_1, m_leaf_2, m_water})
        setAlpha(node, alpha);
}
