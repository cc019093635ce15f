// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ig {
class Renderer;
}

/// The pictures that the command line asks for: the last frame, and one every so many seconds,
/// numbered before the suffix: out/flight.png, out/flight_0001.png, ...
class Screenshots {
public:
    /// `path` empty: none; `interval` in seconds of scene time, 0: only the last frame.
    Screenshots(const std::string& path, double interval) : m_path(path), m_interval(interval) {}
    void afterFrame(ig::Renderer& renderer, double time);
    void afterLast(ig::Renderer& renderer);
    /// A numbered picture now, under the asked name or "picture.png".
    void take(ig::Renderer& renderer);

private:
    std::string m_path;
    double m_interval;
    double m_next = 0; ///< scene time of the next one, s
    int m_number = 0;
};
