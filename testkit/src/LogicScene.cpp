// SPDX-License-Identifier: MIT
#include "testkit/LogicScene.h"

#include "heli/config/AppData.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "testkit/TakeIn.h"

#include <cstring>
#include <string>

using namespace ig;

extern "C" LogicBase* CreateLogic(World*, CameraControl*);

const char* const LogicScene::HELICOPTER =
    "data/PELMAR_PROJECT/prefabs/KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.prefab";

namespace {

const char* const WORLD = "data/PELMAR_PROJECT/PELMAR_PROJECT.world";

// A square of 40 m, facing up.
const char* const SQUARE = "o square\nv -20 -20 0\nv 20 -20 0\nv 20 20 0\nv -20 20 0\n"
                           "f 1 2 3 4\n";

std::string wgs(double altitude) {
    return "wgs: [" + std::to_string(LogicScene::LONGITUDE) + ", " +
           std::to_string(LogicScene::LATITUDE) + ", " + std::to_string(altitude) + "]";
}

} // namespace

LogicScene::LogicScene() {
    m_world_file = "nodes:\n- {name: start_heli, " + wgs(ALTITUDE) + ", hpr: [30, 0, 0]}\n" +
                   "- {name: deck, type: mesh, mesh: square.obj, " + wgs(DECK) + "}\n";
    folder.write("square.obj", SQUARE);
    folder.write("light.mat", "parameters: {density: 0.5}\n");
    folder.write("glass.mat", "parameters: {wiper: 0, rain_power: 0}\n");
    folder.write(HELICOPTER, helicopterPrefab());
    folder.write("config/Logic_Nerith_Heli_Final.cfg",
                 "recv_from_flightSimulation_port: " + std::to_string(receive_port) +
                     "\nsend_to_flightSimulation_port: " + std::to_string(peer.port()) + "\n");
}

LogicScene::~LogicScene() { stop(); }

void LogicScene::useProjectData() {
    std::filesystem::remove_all(folder.path() / "data");
    std::filesystem::create_symlink(folder.before() / "data", folder.path() / "data");
    m_world_file.clear();
}

void LogicScene::addToWorld(const std::string& rest) { m_world_file += "- {" + rest + "}\n"; }

std::string LogicScene::helicopterPrefab() {
    return R"(node:
  name: helicopter
  body: {mass: 5000, center: [0, 0, 1], shapes: [{type: box, size: [2, 10, 2]}]}
  children:
  - {name: cam_first_player, position: [0.5, 4, 1], rotation: [90, 0, 0]}
  - {name: dl_1, position: [-1, -2, 0]}
  - {name: dr_2, position: [1, -3, 0]}
  - {name: sonar, position: [0, 1, -1]}
  - {name: winch, position: [1.5, 1, 1]}
  - {name: deflector, position: [0, 3, 2]}
  - {name: downwash, children: [{name: downwash_spe, type: particles}]}
  - {name: normal}
  - {name: destroyed, enabled: false}
  - {name: fire, enabled: false}
  - {name: front_proj}
  - {name: wing, children: [{name: wing_mesh}, {name: wing_plane}]}
  - {name: tail, children: [{name: tail_mesh}, {name: tail_plane}]}
  - {name: glass_frame, rotation: [-40, 0, 0], children: [{name: wiper_left}, {name: wiper_right}]}
  - {name: tail_light, type: light, material: light.mat}
  - {name: glass_top_left, type: mesh, mesh: square.obj, intersect: false, surfaces: [{material: glass.mat}]}
  - {name: windows}
  - {name: gear, rotation: [0, 0, 90], children: [{name: wheel_front}, {name: wheel_left, rotation: [5, 0, 0]}]}
  - {name: wheel_right}
  - {name: belly, type: mesh, mesh: square.obj, intersect: false, position: [0, 0, -1]}
)";
}

bool LogicScene::start() {
    if (!m_world_file.empty()) folder.write(WORLD, m_world_file);
    Engine::get()->setApp(this);
    ui->resize(width, height);
    world.emplace();
    Engine::get()->setWorld(&*world);
    logic = static_cast<Logic_Nerith_Heli_Final*>(CreateLogic(&*world, &camera_control));
    world->load(logic->getWorldPath());
    if (const Node* marker = world->getNodeByName("start_heli"))
        camera.setTransform(marker->getWorldTransform() *
                            dmat4(dquat(dvec3(1, 0, 0), 90), dvec3()));
    camera.setPerspective(50, 16.0f / 9, 0.1, 1e7);
    camera_control.setCamera(&camera);
    if (before_init) before_init(*logic);
    return logic->init();
}

void LogicScene::frame(float dt, bool still) {
    takeIn();
    Engine::get()->beginFrame(dt, still);
    const float step = Engine::get()->getSceneStep();
    logic->update(step);
    world->updatePhysics(step);
    world->updateParticles(step);
    ui->resize(width, height);
    ui->update(dt);
    logic->swap();
    control.endFrame();
}

void LogicScene::stop() {
    if (logic) logic->release();
    ui.reset();
    if (world) world->clear();
    delete static_cast<LogicBase*>(logic);
    logic = nullptr;
    world.reset();
    MaterialManager::release();
    Mesh::release();
    PackageManager::release();
    AppData::destroy_instance();
    Engine::get()->reset();
}

std::optional<UdpSendData> LogicScene::feedback() {
    std::optional<UdpSendData> newest;
    for (std::string bytes; !(bytes = peer.receive()).empty();) {
        if (bytes.size() != sizeof(UdpSendData)) continue;
        newest.emplace();
        std::memcpy(&*newest, bytes.data(), bytes.size());
    }
    return newest;
}

UdpRecvData LogicScene::record() {
    UdpRecvData record{};
    record.longitude = LONGITUDE;
    record.latitude = LATITUDE;
    record.altitude = ALTITUDE;
    return record;
}

dvec3 LogicScene::helicopterWgs() const {
    return EllipsoidModel().toWGS(logic->m_heli->get_world_position());
}
