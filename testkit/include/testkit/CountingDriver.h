// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <vector>

/// Stands in for an OpenGL driver: while it lives, every function that the renderer calls counts
/// and returns at once, so that what remains is the renderer's own work. Needs no context: use
/// `RendererGL::Surface::window`. Queries tell of a complete OpenGL 4.6, pictures read back are
/// left as they were.
///
/// The list of functions is made from the renderer's sources by `gl_calls.cmake`. One at a time.
class CountingDriver {
public:
    CountingDriver();
    ~CountingDriver();
    CountingDriver(const CountingDriver&) = delete;

    struct Counts {
        std::uint64_t calls = 0;
        std::uint64_t draws = 0;     ///< of the calls
        std::uint64_t instances = 0; ///< that the draws asked for
        std::uint64_t bytes = 0;     ///< brought to buffers
        std::set<unsigned> programs; ///< that the draws used
    };
    static Counts& counts(); ///< since they were last set

private:
    std::vector<std::function<void()>> m_restore;
};
