// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the logic tells the application about its weapons, in order.
struct SignalRecorder {
    struct Effect {
        std::string path;
        float duration;
        ig::dvec3 place;
    };
    explicit SignalRecorder(Logic_Nerith_Heli_Final& logic) {
        logic.m_sig_play_spe_once.append({this, &SignalRecorder::onEffect});
        logic.m_sig_node_removed.append({this, &SignalRecorder::onRemoved});
        logic.m_sig_prefab_added.append({this, &SignalRecorder::onAdded});
        logic.m_sig_node_text.append({this, &SignalRecorder::onText});
        logic.m_sig_code.append({this, &SignalRecorder::onCode});
    }
    void onEffect(SynCoder::CMDPlaySpeOnceInfo* info) {
        effects.push_back({info->path.c_str(), info->duration, info->transform.getTranslate()});
    }
    void onRemoved(ig::Node* node) { removed.push_back(node); }
    void onAdded(ig::ObjectPrefab* prefab, bool flag) {
        added.push_back(prefab);
        added_flags.push_back(flag);
    }
    void onText(ig::Node*, const ig::jString& text) { texts.push_back(text.c_str()); }
    void onCode(int code) { codes.emplace_back(code, removed.size()); }
    std::vector<Effect> effects;
    std::vector<ig::Node*> removed, added;
    std::vector<bool> added_flags;
    std::vector<std::string> texts;
    std::vector<std::pair<int, std::size_t>> codes; ///< each with what was removed before it
};

/// The project's own scene, the helicopter over the open sea, calm unless a test wants waves, which
/// take most of the time; and what the logic tells.
struct SeaScene : LogicScene {
    static constexpr double SEA_LONGITUDE = -155.0, SEA_LATITUDE = 19.9;
    /// Starts, with the helicopter at that altitude.
    explicit SeaScene(double altitude, const ig::dvec3& hpr = {}) {
        useProjectData();
        EXPECT_TRUE(start());
        signals.emplace(*logic);
        logic->m_ocean->setBeaufort(0);
        place(altitude, hpr);
    }
    void place(double altitude, const ig::dvec3& hpr = {}) {
        ig::ObjectPrefab* prefab = logic->m_heli->m_prefab;
        prefab->setWgsHPR(hpr);
        prefab->setWgsPosition({SEA_LONGITUDE, SEA_LATITUDE, altitude});
    }
    static double altitude(const ig::dvec3& point) {
        return ig::EllipsoidModel().getAltitude(point);
    }
    double sea(const ig::dvec3& point) const {
        return altitude(logic->m_ocean->getWorldPoint(point));
    }
    /// Where the world shows effects, beside the weather, in their order.
    std::vector<ig::dvec3> effects() const {
        std::vector<ig::dvec3> places;
        for (const ig::Node* node : world->getNodes())
            if (node->getType() == ig::OBJECT_PARTICLES && node != logic->m_rain &&
                node != logic->m_snow && node != logic->m_hail)
                places.push_back(node->getWorldPosition());
        return places;
    }
    std::optional<SignalRecorder> signals;
};
