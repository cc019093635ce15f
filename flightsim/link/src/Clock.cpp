// SPDX-License-Identifier: MIT
#include "flightsim/link/Clock.h"

#include "common/program/Process.h"

#include <ctime>

namespace flightsim {

namespace {

StopFlag g_stop = false;
static_assert(StopFlag::is_always_lock_free, "set in a signal handler");

std::int64_t read(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return t.tv_sec * NS_PER_SECOND + t.tv_nsec;
}

} // namespace

std::int64_t steadyNow() { return read(CLOCK_MONOTONIC); }
std::int64_t wallNow() { return read(CLOCK_REALTIME); }

void sleepUntil(std::int64_t due_ns) {
    constexpr std::int64_t SPIN_NS = 200'000;
    const std::int64_t wake_ns = due_ns - SPIN_NS;
    if (wake_ns > steadyNow()) {
        const timespec wake{wake_ns / NS_PER_SECOND, wake_ns % NS_PER_SECOND};
        // A signal cuts the sleep short; the loop below then waits out the rest.
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &wake, nullptr);
    }
    while (steadyNow() < due_ns) {
    }
}

const StopFlag& stopOnSignals() {
    program::onStopSignal([] { g_stop = true; });
    return g_stop;
}

} // namespace flightsim
