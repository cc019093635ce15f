// SPDX-License-Identifier: MIT
#pragma once

#include "ContactSheet.h"
#include "Worker.h"

#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The pictures that the command line asks for: the last frame, and one every so many seconds,
/// numbered before the suffix: out/flight.png, out/flight_0001.png, ...; and a contact sheet of
/// all. A frame only reads its picture back; files are made beside the frames, and what came of
/// them is told by the frames after. What can't be written is named in the log once.
class Screenshots {
public:
    /// `path` empty: none; `interval` in seconds of scene time, 0: only the last frame; `sheet`
    /// empty: none; `folder`, with its slash, is that of pictures without `path`, empty: the
    /// present one.
    Screenshots(const std::string& path, double interval, const std::string& sheet,
                const std::string& folder = {})
        : m_path(path), m_sheet_path(sheet), m_folder(folder), m_interval(interval) {}
    /// Whether files can be written where they will be, as far as can be told before the first
    /// frame; with one log line if not. `named`: pictures under names of their own will come, too.
    bool check(bool named) const;
    /// The pictures every so many seconds end with the first that can't be written.
    void afterFrame(ig::Renderer& renderer, double time);
    /// The pictures that are under way are complete after it.
    void finish();
    /// All files are complete after it.
    void afterLast(ig::Renderer& renderer);
    /// A numbered picture, under the asked name or "picture.png", with the first number that no
    /// file has: a former run's pictures stay.
    void takeNew(ig::Renderer& renderer);
    /// The last frame, as NAME.png in the folder of the asked name.
    void take(ig::Renderer& renderer, const std::string& name);
    /// Paths of the pictures of `takeNew` that were found written since the last call.
    std::vector<std::string> takeWritten() { return std::exchange(m_written, {}); }
    /// Something that was asked for has not been written.
    bool hasFailed() const { return m_failed; }

private:
    enum class Kind { series, numbered, named, last };
    struct Shot { ///< under way
        Kind kind;
        std::string path;
        ig::Picture picture;
        std::string message; ///< why it could not be written; the worker's until it is done
        std::atomic<bool> done = false;
    };

    std::string nextPath();
    std::string nameBeside(const std::string& name) const;
    bool isUnderWay(const std::string& path) const;
    void keep(ig::Renderer& renderer, const std::string& path, Kind kind);
    void write(Shot& shot);
    void report();
    void fail(Kind kind, const std::string& message);
    void writeSheet();

    std::string m_path, m_sheet_path, m_folder;
    double m_interval;
    double m_next = 0; ///< scene time of the next one, s
    int m_number = 0;
    bool m_failed = false;
    std::vector<std::string> m_written;
    std::deque<std::unique_ptr<Shot>> m_shots; ///< the oldest first
    ContactSheet m_sheet;                      ///< the worker's until it has finished
    Worker m_worker;                           ///< goes first: its jobs use the others
};
