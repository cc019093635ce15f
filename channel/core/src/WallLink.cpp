// SPDX-License-Identifier: MIT
#include "WallLink.h"

#include "Options.h"
#include "ig/base/jLog.h"

#include <filesystem>

using ig::jLog;

bool WallLink::open(const Options& options) {
    const auto refuse = [](const std::string& message) {
        jLog::error("visual_channel: --wall: %s", message.c_str());
        return false;
    };
    std::string message;
    const std::string path = (std::filesystem::path(options.directory) / options.wall).string();
    if (!wall::readWall(path, m_wall, message)) return refuse(message);
    if (!*WALL_LIBRARY) return refuse("this program was built without (VC_WALL)");
    if (!m_library.load(WALL_LIBRARY)) return false;
    const auto create =
        reinterpret_cast<wall::CreateWallNetworkFunction>(m_library.find("CreateWallNetwork"));
    if (!create) return false;
    m_network.reset(create(m_wall.network, message));
    return m_network || refuse(message);
}
