// SPDX-License-Identifier: MIT
#include "TrialStart.h"

#include "common/logic/LogicBase.h"
#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"
#include "program/MutedOutput.h"

using namespace ig;

namespace world_commands {

/// In the order that the objects need.
TrialStart::~TrialStart() {
    if (m_logic) m_logic->release();
    m_ui.reset();
    m_world.clear();
    delete m_logic;
    MaterialManager::release();
    Mesh::release();
    PackageManager::release();
    Engine::get()->reset();
}

bool TrialStart::loadLibraries(const Setup& setup) {
    Engine::get()->setApp(this);
    Engine::get()->setWorld(&m_world);
    m_ui->resize(getWidth(), getHeight());
    m_camera_control.setCamera(&m_camera);
    for (const std::string& path : setup.plugins) {
        m_plugins.push_back(std::make_unique<Library>());
        if (!m_plugins.back()->load(path)) return false;
    }
    if (!m_library.load(setup.logic)) return false;
    const auto create = reinterpret_cast<CreateLogicFunction>(m_library.find("CreateLogic"));
    if (!create) return false;
    m_logic = create(&m_world, &m_camera_control);
    if (!m_logic) jLog::error("visual_channel: out of memory");
    return m_logic != nullptr;
}

bool TrialStart::begin(const std::string& world) {
    const program::MutedOutput muted; // the logic prints of its link, which there is none of
    SocketUDP::setOffline();          // ports belong to flights
    if (!m_world.load(world)) return false;
    if (m_logic->init()) return true;
    const jString start = m_logic->getStartNode();
    if (!start.empty() && !m_world.getNodeByName(start)) // else it has told why
        jLog::error("%s: there is no node \"%s\" for the scene to start at", world.c_str(),
                    start.c_str());
    return false;
}

} // namespace world_commands
