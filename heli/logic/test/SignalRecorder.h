// SPDX-License-Identifier: MIT
#pragma once

#include "nodes.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the operator sees of a cable's length; 0 for what is none.
inline float shownLength(ig::Node* rope) {
    const ig::BodyRope* body = ropeOf(rope);
    return body ? body->getLength() * 1.5f : 0;
}

/// A test of a logic that has started and run a frame, over small files or the project's own.
struct LogicTest : testing::Test {
    explicit LogicTest(bool project_data = false) {
        if (project_data) scene.useProjectData();
        EXPECT_TRUE(scene.start());
        scene.frame();
    }
    Logic_Nerith_Heli_Final& logic() { return *scene.logic; }
    HelicopterCorax& heli() { return *scene.logic->m_heli; }
    LogicScene scene;
};

/// What the logic tells the application about its weapons, in order.
struct SignalRecorder {
    struct Effect {
        std::string what; ///< its file, and for how many seconds
        ig::dvec3 place;
    };
    explicit SignalRecorder(Logic_Nerith_Heli_Final& logic) {
        logic.m_sig_play_spe_once.append(
            {this, [this](SynCoder::CMDPlaySpeOnceInfo* e) {
                 const ig::jString what = e->path + " " + ig::ToString(e->duration);
                 effects.push_back({what.c_str(), e->transform.getTranslate()});
             }});
        logic.m_sig_node_removed.append({this, [this](auto node) { removed.push_back(node); }});
        logic.m_sig_prefab_added.append({this, [this](auto prefab, bool flag) {
                                             added.push_back(prefab);
                                             added_flags.push_back(flag);
                                         }});
        logic.m_sig_node_text.append(
            {this, [this](auto, const ig::jString& text) { texts.push_back(text.c_str()); }});
        logic.m_sig_code.append(
            {this, [this](int code) { codes.emplace_back(code, removed.size()); }});
    }
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
