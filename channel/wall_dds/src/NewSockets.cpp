// SPDX-License-Identifier: MIT
#include "NewSockets.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <sys/socket.h>
#include <system_error>

namespace {

bool has(int socket, int option, int expected) {
    int value = 0;
    socklen_t size = sizeof value;
    return getsockopt(socket, SOL_SOCKET, option, &value, &size) == 0 && value == expected;
}

} // namespace

std::set<int> NewSockets::list() {
    std::set<int> sockets;
    std::error_code none; // then there are no files to see
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", none)) {
        const std::string name = entry.path().filename();
        int file = -1;
        std::from_chars(name.data(), name.data() + name.size(), file);
        if (has(file, SO_DOMAIN, AF_INET) && has(file, SO_TYPE, SOCK_DGRAM)) sockets.insert(file);
    }
    return sockets;
}

bool NewSockets::tie(const std::string& interface) const {
    const auto size = static_cast<socklen_t>(interface.size());
    std::set<int> sockets = list();
    std::erase_if(sockets, [this](int socket) { return m_before.contains(socket); });
    errno = ENOENT;
    return !sockets.empty() && std::ranges::all_of(sockets, [&](int socket) {
        return setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, interface.c_str(), size) == 0;
    });
}
