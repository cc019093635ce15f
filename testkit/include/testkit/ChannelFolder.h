// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/TempFolder.h"
#include "testkit/UdpPeer.h"

#include <string>

/// Makes a folder one that a channel can work in: the project's data, texts and key help, and a
/// configuration with the ports of its link.
inline void fillChannelFolder(const TempFolder& folder, const std::filesystem::path& project,
                              int receive_port, int send_port) {
    std::filesystem::create_symlink(project / "data", folder.path() / "data");
    folder.write("config/Logic_Nerith_Heli_Final.cfg",
                 "recv_from_flightSimulation_port: " + std::to_string(receive_port) +
                     "\nsend_to_flightSimulation_port: " + std::to_string(send_port) + "\n");
    for (const char* name : {"config/texts.zh.yaml", "config/texts.en.yaml",
                             "config/Logic_Nerith_Heli_Final.interface.yaml"})
        std::filesystem::create_symlink(project / name, folder.path() / name);
}

/// Such a folder to work in, and the flight simulation's end of its link, on free ports.
struct ChannelFolder : WorkingFolder {
    ChannelFolder() { fillChannelFolder(*this, before(), records_port, peer.port()); }
    UdpPeer peer;
    const int records_port = UdpPeer::freePort();
};
