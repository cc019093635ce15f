// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "common/wire/UdpSendData.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/InputRouter.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "ig/ui/UIRoot.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"
#include "testkit/UdpPeer.h"

#include <functional>
#include <memory>
#include <optional>

/// The logic in the test's own process: engine, world, camera, input, a working directory with
/// small scene files, and the flight simulation's end of the link on free ports. Write or change
/// files before `start`.
class LogicScene : public ig::IApp {
public:
    static constexpr double LONGITUDE = -155.06, LATITUDE = 19.71; ///< of "start_heli"
    static constexpr double ALTITUDE = 40;
    static constexpr double DECK = 10;   ///< altitude of the flat deck, 40 m × 40 m, below it
    static const char* const HELICOPTER; ///< path of the prefab

    LogicScene();
    ~LogicScene() override;

    /// Uses the project's own data folder instead of the small files.
    void useProjectData();
    /// Adds a node of a name to the world file's end; `rest` is YAML within a flow map.
    void addToWorld(const std::string& rest);
    /// The text of the small helicopter prefab; change it and write it to HELICOPTER.
    static std::string helicopterPrefab();

    /// Loads the world, creates the logic and initialises it.
    bool start();
    /// One frame as the application runs it; `still`: the scene stands still in it.
    void frame(float dt = 1 / 60.0f, bool still = false);
    void frames(int count, float dt = 1 / 60.0f) {
        for (int i = 0; i < count; i++)
            frame(dt);
    }
    /// Releases and destroys the logic and the world.
    void stop();

    void send(const UdpRecvData& record) { peer.send(&record, sizeof record, receive_port); }
    /// Sends a record and runs the frame that applies it.
    void tell(const UdpRecvData& record) {
        send(record);
        frame();
    }
    /// The newest feedback that arrived.
    std::optional<UdpSendData> feedback();
    /// A record that leaves the helicopter at its start.
    static UdpRecvData record();

    ig::dvec3 helicopterWgs() const;
    ig::Node* helicopterNode(const char* name) const {
        return logic->m_heli->m_prefab->getNodeByName(name);
    }

    int getWidth() const override { return width; }
    int getHeight() const override { return height; }
    ig::ControlApp* getControl() override { return &control; }
    ig::UIRoot* getUIRoot() const override { return ui.get(); }

    WorkingFolder folder;
    LogCapture log;
    UdpPeer peer;
    int receive_port = UdpPeer::freePort();
    int width = 1280, height = 720; ///< of the window
    ig::ControlApp control;
    std::unique_ptr<ig::UIRoot> ui = std::make_unique<ig::UIRoot>();
    ig::InputRouter input{ui.get(), &control};
    std::optional<ig::World> world;
    ig::Camera camera;
    ig::CameraControl camera_control{&camera};
    Logic_Nerith_Heli_Final* logic = nullptr;
    /// Called before the logic's `init`, to add nodes and to connect to what it announces.
    std::function<void(Logic_Nerith_Heli_Final&)> before_init;

private:
    std::string m_world_file;
};
