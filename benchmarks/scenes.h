// SPDX-License-Identifier: MIT
#pragma once

#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "testkit/LogicScene.h"

/// The demo world after its first frame, the helicopter at its start.
struct DemoScene : LogicScene {
    DemoScene() {
        useProjectData();
        start();
        frame();
    }
    /// The helicopter at 4 m over the sea with its rotor turning: all of its downwash is shown.
    void hoverOverSea() {
        UdpRecvData hover = record();
        hover.altitude = 4;
        hover.latitude = 19.74;
        hover.rotor_speed = 250;
        send(hover);
        frame();
    }
    /// High over the sea, so that nothing that is dropped comes down while it is measured; so many
    /// metres to the north.
    void climb(double north = 0) {
        logic->m_heli->m_prefab->setWgsPosition({-155.0, 19.9 + north / 110700, 6000});
    }
    /// Takes away all that was dropped or fired. A reset leaves missiles where they are.
    void removeDropped() {
        logic->release_winch();
        for (ig::ObjectPrefab* missile : logic->m_missiles)
            missile->setEnabled(false);
        logic->update_missle();
        logic->reset();
        climb();
    }
};
