// SPDX-License-Identifier: MIT
#pragma once

#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/Renderer.h"
#include "ig/app/Sky.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/ui/UiDrawList.h"
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

/// What a picture shows at noon under a fair sky.
inline ig::FrameInfo noon() {
    ig::FrameInfo frame;
    const ig::Sky sky = ig::computeSky(12, LogicScene::LONGITUDE, 80);
    frame.sun_direction = sky.sun_direction;
    frame.moon_direction = sky.moon_direction;
    return frame;
}

/// The demo scene with all that a picture of it needs: third person behind the helicopter, panels.
struct Show : DemoScene {
    Show(int picture_width, int picture_height) {
        width = picture_width;
        height = picture_height;
        picture.particles = &particles;
        picture.focus = logic->m_heli->m_prefab;
        picture.ui = &list;
    }
    void advance(float dt = 1 / 60.0f) {
        frame(dt);
        particles.advance(*world, dt);
        picture.time += static_cast<double>(dt);
        ui->draw(list);
    }
    ig::ParticleSystem particles;
    ig::UiDrawList list;
    ig::FrameInfo picture = noon();
};
