// SPDX-License-Identifier: MIT
#include "Video.h"

#include "ig/app/Renderer.h"
#include "ig/base/jLog.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <ctime>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ig;

extern char** environ;

namespace {

constexpr timeval STALLED{1, 0}; ///< a program that takes nothing for so long hangs
constexpr double FINISHING = 30; ///< s that it may take to complete the file
constexpr timespec NAP{0, 10'000'000};

/// Starts ffmpeg with `input` as its standard input. An error number, 0 for none.
int startProgram(const std::string& path, const std::string& size, int input, pid_t* program) {
    const std::string file = "file:" + path; // whatever its name begins with
    const std::string rate = std::to_string(Video::RATE);
    const char* const arguments[] = {
        "ffmpeg", "-loglevel", "error", "-y", "-f", "rawvideo", "-pixel_format", "rgb24",
        "-video_size", size.c_str(), "-framerate", rate.c_str(), "-i", "pipe:0",
        // What players understand has half as many colours along each edge.
        "-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2", "-pix_fmt", "yuv420p", file.c_str(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // A group of its own: the terminal's Ctrl-C is for us, who then end the video in order.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int error = posix_spawnp(program, arguments[0], &actions, &attributes,
                                   const_cast<char* const*>(arguments), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

void Video::afterFrame(Renderer& renderer, double time) {
    if (m_path.empty()) return;
    if (m_program < 0) m_begin = time;
    const auto due = static_cast<long long>(std::floor((time - m_begin) * RATE + 1e-6)) + 1;
    if (due <= m_count) return;
    Picture picture;
    if (!renderer.readPicture(picture)) return fail("there are no pictures");
    if (m_program < 0 && !start(picture)) return;
    fit(picture);
    // After a stall the last picture stands for the time that has passed, a second of it at most.
    for (long long i = std::min<long long>(due - m_count, RATE); i > 0; i--)
        if (!send()) return;
    m_count = due;
}

bool Video::start(const Picture& picture) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        fail(std::strerror(errno));
        return false;
    }
    m_pipe = ends[0];
    setsockopt(m_pipe, SOL_SOCKET, SO_SNDTIMEO, &STALLED, sizeof STALLED);
    m_width = picture.width;
    m_height = picture.height;
    const std::string size = std::to_string(m_width) + "x" + std::to_string(m_height);
    const int error = startProgram(m_path, size, ends[1], &m_program);
    ::close(ends[1]);
    if (error == 0) return true;
    m_program = -1;
    fail(error == ENOENT ? "the program ffmpeg is not installed" : std::strerror(error));
    return false;
}

/// The video keeps its size: of a larger picture the upper left part is seen, beside a smaller one
/// it is black.
void Video::fit(const Picture& picture) {
    const auto row = 3 * static_cast<std::size_t>(m_width);
    m_bytes.assign(row * static_cast<std::size_t>(m_height), 0);
    const auto shared = 3 * static_cast<std::size_t>(std::min(m_width, picture.width));
    for (int y = 0; y < std::min(m_height, picture.height); y++)
        std::memcpy(&m_bytes[row * static_cast<std::size_t>(y)], picture.at(0, y), shared);
}

bool Video::send() {
    for (std::size_t sent = 0; sent < m_bytes.size();) {
        const ssize_t n = ::send(m_pipe, &m_bytes[sent], m_bytes.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            fail(errno == EPIPE || errno == ECONNRESET ? "ffmpeg has ended"
                 : errno == EAGAIN                     ? "ffmpeg takes no more pictures"
                                                       : std::strerror(errno));
            return false;
        }
        sent += static_cast<std::size_t>(n);
    }
    return true;
}

void Video::fail(const char* why) {
    jLog::error("Video: \"%s\": %s: going on without the video", m_path.c_str(), why);
    m_path.clear();
    stop(0);
}

void Video::close() {
    if (m_program < 0) return;
    const int status = stop(FINISHING);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        jLog::error("Video: \"%s\": ffmpeg failed: the file is not complete", m_path.c_str());
    m_path.clear();
}

/// Ends the program, which is killed when it still runs after `patience` seconds. Its status.
int Video::stop(double patience) {
    if (m_pipe >= 0) ::close(m_pipe);
    m_pipe = -1;
    if (m_program < 0) return 0;
    int status = 0;
    const auto step = static_cast<double>(NAP.tv_nsec) * 1e-9;
    for (; patience > 0 && waitpid(m_program, &status, WNOHANG) == 0; patience -= step)
        nanosleep(&NAP, nullptr);
    if (patience <= 0) {
        kill(m_program, SIGKILL);
        waitpid(m_program, &status, 0);
    }
    m_program = -1;
    return status;
}
