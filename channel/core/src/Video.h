// SPDX-License-Identifier: MIT
#pragma once

#include "Worker.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace ig {
class Renderer;
struct Picture;
} // namespace ig

/// A video of the pictures, made by the program ffmpeg, to which the pictures go through a pipe. It
/// runs at the scene's pace: RATE pictures for every second of scene time, however many frames that
/// took. A frame only reads its picture back; the program is started, fed and, when it hangs, given
/// up beside the frames, which wait for it only while `Worker::MOST` pictures are under way.
/// Whatever goes wrong is told once, by a later frame; the frames go on without the video, and no
/// part of it is left.
class Video {
public:
    static constexpr int RATE = 30; ///< pictures a second

    /// An empty path: no video. The first frame starts it.
    explicit Video(const std::string& path) : m_path(path) {}
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;
    ~Video() { close(); }

    /// Whether the video can be made, as far as can be told before the first frame; with one log
    /// line if not.
    bool check() const;
    /// After every frame; `time` is the scene's, seconds.
    void afterFrame(ig::Renderer& renderer, double time);
    /// Waits until the file is complete.
    void close();
    /// What was asked for has not been made.
    bool hasFailed() const { return m_failed; }

private:
    void deliver(const ig::Picture& picture, long long times);
    bool start(const ig::Picture& picture);
    void fit(const ig::Picture& picture);
    bool send();
    void fail(const std::string& why);
    void lose(const std::string& why, bool begun);
    void report();
    int stop(double patience);
    std::string takeComplaint();

    std::string m_path;    ///< empty when there is nothing more to write
    double m_begin = 0;    ///< scene time, s
    long long m_count = 0; ///< pictures due so far
    bool m_failed = false;

    // The worker's, until it has finished.
    int m_pipe = -1;
    int m_complaints = -1; ///< a file in memory, for what the program has to say
    pid_t m_program = -1;
    int m_width = 0, m_height = 0;     ///< of the video
    std::vector<std::uint8_t> m_bytes; ///< one of its pictures
    std::string m_message;             ///< why there is no video
    std::atomic<bool> m_lost = false;  ///< the message holds; nothing more is sent

    Worker m_worker; ///< goes first: its jobs use the others
};
