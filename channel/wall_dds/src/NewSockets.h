// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>

/// The UDP sockets that the process opens while this lives: those of the middleware, which gives
/// them an interface's address at most. Packets would come in on any interface, and leave on
/// whichever leads to where they are sent.
class NewSockets {
public:
    NewSockets() : m_before(list()) {}
    /// From now on they speak on that interface alone. False where the system refuses, with errno.
    bool tie(const std::string& interface) const;

private:
    static std::set<int> list();

    std::set<int> m_before;
};
