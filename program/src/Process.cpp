// SPDX-License-Identifier: MIT
#include "program/Process.h"

#include "program/Clock.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace program {

namespace {

constexpr std::int64_t SAME_REQUEST_NS = 500'000'000;

std::atomic<void (*)()> g_stop = nullptr;
std::atomic<std::int64_t> g_first_ns = 0; ///< steady clock at the first signal; 0: none yet
static_assert(std::atomic<std::int64_t>::is_always_lock_free, "set in a signal handler");

void handle(int number) {
    const int error = errno;
    const std::int64_t now_ns = steadyNow_ns();
    std::int64_t first_ns = 0;
    if (g_first_ns.compare_exchange_strong(first_ns, now_ns)) {
        g_stop.load()();
    } else if (number != SIGHUP && now_ns - first_ns > SAME_REQUEST_NS) {
        std::signal(number, SIG_DFL); // takes effect when this handler has returned
        std::raise(number);
    }
    errno = error;
}

} // namespace

void fillStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; stream++)
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            (void)::open("/dev/null", O_RDWR); // gets the lowest free number: this one
}

void letWritesFail() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void onStopSignal(void (*stop)()) {
    g_stop = stop;
    struct sigaction action {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART; // nothing that is being written suffers
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &action, nullptr);
}

WithoutSignals::WithoutSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
}

WithoutSignals::~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

bool beginThread(std::jthread& thread, std::function<void(const std::stop_token&)> run) {
    if (thread.joinable()) return true;
    const WithoutSignals without;
    try {
        thread = std::jthread(std::move(run));
    } catch (const std::system_error&) {
    }
    return thread.joinable();
}

bool takesOutput(int descriptor) {
    pollfd output{descriptor, POLLOUT, 0};
    return poll(&output, 1, 0) != 0; // what fails is seen in printing
}

bool endOutput(std::string& message) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
    if (errno == EPIPE) return true;
    message = std::string("cannot print to the end: ") + std::strerror(errno);
    return false;
}

} // namespace program
