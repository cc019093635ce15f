// SPDX-License-Identifier: MIT
#include "Video.h"

#include "ig/app/Renderer.h"
#include "ig/base/jLog.h"
#include "program/OutputFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <spawn.h>
#include <sstream>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ig;

extern char** environ;

namespace {

constexpr timeval STALLED{1, 0}; ///< a program that takes nothing for so long hangs
constexpr double FINISHING = 30; ///< s that it may take to complete the file
constexpr timespec NAP{0, 10'000'000};

constexpr const char* NOT_INSTALLED = "the program ffmpeg, which makes it, is not installed";

bool isInstalled() {
    const char* const path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/ffmpeg").c_str(), X_OK) == 0) return true;
    return false;
}

/// Starts ffmpeg with these as its standard input and its standard error. An error number, 0 for
/// none.
int startProgram(const std::string& path, const std::string& size, int input, int complaints,
                 pid_t* program) {
    const std::string file = "file:" + path; // whatever its name begins with
    const std::string rate = std::to_string(Video::RATE);
    const char* const arguments[] = {
        "ffmpeg", "-loglevel", "error", "-xerror", "-y", "-f", "rawvideo", "-pixel_format", "rgb24",
        "-video_size", size.c_str(), "-framerate", rate.c_str(), "-i", "pipe:0",
        // What players understand has half as many colours along each edge.
        "-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2", "-pix_fmt", "yuv420p", file.c_str(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    if (complaints >= 0) posix_spawn_file_actions_adddup2(&actions, complaints, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // A group of its own: the terminal's Ctrl-C is for us, who then end the video in order.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF |
                                              POSIX_SPAWN_SETSIGMASK);
    sigset_t defaults; // what we ignore
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    sigset_t none; // what the worker's thread blocks
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    const int error = posix_spawnp(program, arguments[0], &actions, &attributes,
                                   const_cast<char* const*>(arguments), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

bool Video::check() const {
    using program::OutputFile;
    if (m_path.empty()) return true;
    std::string why = OutputFile::whyNot(m_path, OutputFile::Kind::growing);
    if (why.empty() && !isInstalled()) why = NOT_INSTALLED;
    if (!why.empty()) jLog::error("--video: cannot write \"%s\": %s", m_path.c_str(), why.c_str());
    return why.empty();
}

void Video::afterFrame(Renderer& renderer, double time) {
    report();
    if (m_path.empty()) return;
    if (m_count == 0) m_begin = time;
    const auto due = static_cast<long long>(std::floor((time - m_begin) * RATE + 1e-6)) + 1;
    if (due <= m_count) return;
    const auto picture = std::make_shared<Picture>(); // without a size: there is none
    if (!renderer.readPicture(*picture)) *picture = {};
    // After a stall the last picture stands for the time that has passed, a second of it at most.
    const long long times = std::min<long long>(due - m_count, RATE);
    m_worker.post([this, picture, times] { deliver(*picture, times); });
    m_count = due;
}

/// On the worker's thread.
void Video::deliver(const Picture& picture, long long times) {
    if (m_lost) return;
    if (picture.rgb.empty()) return fail("there are no pictures");
    if (m_program < 0 && !start(picture)) return;
    try {
        fit(picture);
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    }
    for (; times > 0; times--)
        if (!send()) return;
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
    m_complaints = memfd_create("ffmpeg", MFD_CLOEXEC);
    const int error = startProgram(m_path, size, ends[1], m_complaints, &m_program);
    ::close(ends[1]);
    if (error == 0) return true;
    m_program = -1;
    fail(error == ENOENT ? NOT_INSTALLED : std::strerror(error));
    return false;
}

/// The video keeps its size: of a larger picture the upper left part is seen, beside a smaller one
/// it is black.
void Video::fit(const Picture& picture) {
    const auto row = 3 * static_cast<std::size_t>(m_width);
    m_bytes.assign(row * m_height, 0);
    const auto shared = 3 * static_cast<std::size_t>(std::min(m_width, picture.width));
    for (int y = 0; y < std::min(m_height, picture.height); y++)
        std::memcpy(&m_bytes[row * y], picture.at(0, y), shared);
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
        sent += n;
    }
    return true;
}

void Video::fail(const std::string& why) {
    const bool started = m_program >= 0;
    stop(0);
    lose(why, started);
}

/// `begun`: there may be a part of it.
void Video::lose(const std::string& why, bool begun) {
    m_message = takeComplaint();
    if (m_message.empty()) m_message = why;
    if (begun) program::OutputFile::remove(m_path);
    m_lost = true;
}

/// Nothing before it is lost, and after it has been told.
void Video::report() {
    if (!m_lost || m_path.empty()) return;
    jLog::error("--video: cannot write \"%s\": %s: there is no video", m_path.c_str(),
                m_message.c_str());
    m_path.clear();
    m_failed = true;
}

void Video::close() {
    m_worker.finish();
    report();
    if (m_program < 0) return;
    const int status = stop(FINISHING);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        lose("ffmpeg failed", true);
        return report();
    }
    const std::string complaint = takeComplaint();
    if (!complaint.empty()) jLog::warning("--video: \"%s\": %s", m_path.c_str(), complaint.c_str());
    m_path.clear();
}

/// The first line of what the program had to say; the others follow from it.
std::string Video::takeComplaint() {
    if (m_complaints < 0) return {};
    std::array<char, 512> text{};
    const ssize_t n = pread(m_complaints, text.data(), text.size() - 1, 0);
    ::close(m_complaints);
    m_complaints = -1;
    const std::string line(text.data(), std::max<ssize_t>(n, 0));
    return line.substr(0, line.find('\n'));
}

/// Ends the program, which is killed when it still runs after `patience` seconds. Its status.
int Video::stop(double patience) {
    if (m_pipe >= 0) ::close(m_pipe);
    m_pipe = -1;
    if (m_program < 0) return 0;
    int status = 0;
    const auto step = NAP.tv_nsec * 1e-9;
    for (; patience > 0 && waitpid(m_program, &status, WNOHANG) == 0; patience -= step)
        nanosleep(&NAP, nullptr);
    if (patience <= 0) {
        kill(m_program, SIGKILL);
        waitpid(m_program, &status, 0);
    }
    m_program = -1;
    return status;
}
