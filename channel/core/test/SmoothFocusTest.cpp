// SPDX-License-Identifier: MIT
#include "SmoothFocus.h"

#include "LogicListener.h"
#include "heli/logic/records.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

/// A flight with sonar and winch out. What the picture shows is checked in each frame; afterwards
/// all must be as in a flight that is not smoothed.
struct SmoothFlight {
    SmoothFlight() {
        scene.useProjectData();
        scene.before_init = [this](LogicBase& logic) { listener.connect(logic); };
        EXPECT_TRUE(scene.start());
        scene.logic->m_ocean->setBeaufort(0);
        scene.logic->emit_sonar();
        record.hang_enable = 1;
        record.hang_length = 5;
    }
    /// `smooth`: also shows the frame, and puts all back.
    void frame(int i, bool smooth) {
        record.latitude += 5e-6;
        record.heading += 0.3f;
        i % 4 == 3 ? scene.frame() : scene.tell(record); // 45 records to 60 frames
        if (i % 4 != 3) arrival = i / 60.0;
        if (smooth) {
            const dmat4 told = helicopter()->getWorldTransform();
            const dvec3 sonar = load()->getWorldPosition();
            const dvec3 eye = scene.camera.getWorldPosition();
            focus.show(*scene.logic, listener, i / 60.0, arrival, i >= FROZEN);
            scene.logic->swap();
            EXPECT_TRUE(i != FROZEN || helicopter()->getWorldTransform() == told);
            checkPicture(told, sonar, eye);
            focus.putBack(*scene.logic);
        }
        const Node* const nodes[] = {helicopter(), load(), scene.logic->m_winch_info->obj,
                                     &scene.camera};
        for (const Node* node : nodes)
            ends.push_back(node->getWorldTransform());
    }
    void checkPicture(const dmat4& told, const dvec3& sonar, const dvec3& eye_before) {
        using Logic = Logic_Nerith_Heli_Final;
        const Logic& logic = *scene.logic;
        const dmat4 shown = helicopter()->getWorldTransform();
        moved += shown != told;
        const dvec3 eye = scene.camera.getWorldPosition();
        if (logic.m_player_mode == Logic::PLAYER_MODE_FREE)
            EXPECT_EQ(eye, eye_before);
        else if (logic.m_player_mode == Logic::PLAYER_MODE_THIRD)
            EXPECT_NEAR(length(eye - shown.getTranslate()), 25, 1e-6);
        else
            expectAt(eye, (shown * logic.m_first_view_transform).getTranslate());
        const dvec3 mount = shown * logic.m_sonar_mount.getTranslate();
        const dvec3 way = mount - told * logic.m_sonar_mount.getTranslate();
        expectAt(logic.m_sonar_info->rope->getChild(0)->getWorldPosition(), mount);
        expectAt(logic.m_sonar_info->anchor->getWorldPosition(), mount);
        expectAt(logic.m_winch_info->rope->getChild(0)->getWorldPosition(),
                 shown * logic.m_winch_mount.getTranslate());
        expectAt(load()->getWorldPosition(),
                 scene.logic->is_break_sonar_joint() ? sonar : sonar + way); // falling
    }
    static void expectAt(const dvec3& is, const dvec3& should) {
        EXPECT_LT(length(is - should), 1e-6);
    }
    static constexpr int FROZEN = 20; ///< from this frame on, by a host that flies on
    Node* helicopter() const { return scene.logic->m_heli->m_prefab; }
    const Node* load() const { return scene.logic->m_sonar_info->sonar; }

    LogicScene scene;
    LogicListener listener;
    SmoothFocus focus;
    UdpRecvData record = LogicScene::record();
    double arrival = 0;
    int moved = 0;
    std::vector<dmat4> ends;
};

std::vector<dmat4> fly(bool smooth) {
    SmoothFlight flight;
    for (int i = 0; i < 90; i++) {
        if (i == 30) flight.scene.control.setLeftButton(true);
        if (i > 30 && i < 40) flight.scene.control.moveMouse(3, 2);
        if (i == 50) flight.scene.logic->break_sonar_joint();
        if (i == 70) flight.scene.logic->change_view(); // free
        if (i == 71) flight.scene.logic->change_view(); // first person
        flight.frame(i, smooth);
    }
    EXPECT_TRUE(!smooth || flight.moved > 60);
    return flight.ends;
}

TEST(SmoothFocus, MovesAllThatBelongsTogetherInThePictureAndNothingInTheScene) {
    EXPECT_TRUE(fly(true) == fly(false));
}

} // namespace
