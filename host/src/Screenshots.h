// SPDX-License-Identifier: MIT
#pragma once

#include "ContactSheet.h"

#include <string>

/// The pictures that the command line asks for: the last frame, and one every so many seconds,
/// numbered before the suffix: out/flight.png, out/flight_0001.png, ...; and a contact sheet of
/// all.
class Screenshots {
public:
    /// `path` empty: none; `interval` in seconds of scene time, 0: only the last frame; `sheet`
    /// empty: none.
    Screenshots(const std::string& path, double interval, const std::string& sheet)
        : m_path(path), m_sheet_path(sheet), m_interval(interval) {}
    void afterFrame(ig::Renderer& renderer, double time);
    void afterLast(ig::Renderer& renderer);
    /// A numbered picture now, under the asked name or "picture.png".
    void take(ig::Renderer& renderer);
    /// The last frame now, as NAME.png in the folder of the asked name.
    void take(ig::Renderer& renderer, const std::string& name);

private:
    void keep(ig::Renderer& renderer, const std::string& path);

    std::string m_path, m_sheet_path;
    ContactSheet m_sheet;
    double m_interval;
    double m_next = 0; ///< scene time of the next one, s
    int m_number = 0;
};
