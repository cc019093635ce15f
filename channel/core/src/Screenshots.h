// SPDX-License-Identifier: MIT
#pragma once

#include "ContactSheet.h"

#include <string>

/// The pictures that the command line asks for: the last frame, and one every so many seconds,
/// numbered before the suffix: out/flight.png, out/flight_0001.png, ...; and a contact sheet of
/// all. What can't be written is named in the log once.
class Screenshots {
public:
    /// `path` empty: none; `interval` in seconds of scene time, 0: only the last frame; `sheet`
    /// empty: none.
    Screenshots(const std::string& path, double interval, const std::string& sheet)
        : m_path(path), m_sheet_path(sheet), m_interval(interval) {}
    /// Whether files can be written where they will be, as far as can be told before the first
    /// frame; with one log line if not. `named`: pictures under names of their own will come, too.
    bool check(bool named) const;
    /// The pictures every so many seconds end with the first that can't be written.
    void afterFrame(ig::Renderer& renderer, double time);
    void afterLast(ig::Renderer& renderer);
    /// A numbered picture now, under the asked name or "picture.png", with the first number that no
    /// file has: a former run's pictures stay. Its path; empty when it could not be written.
    std::string takeNew(ig::Renderer& renderer);
    /// The last frame now, as NAME.png in the folder of the asked name.
    void take(ig::Renderer& renderer, const std::string& name);
    /// Something that was asked for has not been written.
    bool hasFailed() const { return m_failed; }

private:
    std::string nextPath();
    std::string nameBeside(const std::string& name) const;
    bool keep(ig::Renderer& renderer, const std::string& path, bool on_sheet = true);

    std::string m_path, m_sheet_path;
    ContactSheet m_sheet;
    double m_interval;
    double m_next = 0; ///< scene time of the next one, s
    int m_number = 0;
    bool m_failed = false;
};
