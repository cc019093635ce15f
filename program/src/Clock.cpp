// SPDX-License-Identifier: MIT
#include "program/Clock.h"

#include <ctime>

namespace program {

namespace {

std::int64_t read(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return t.tv_sec * NS_PER_SECOND + t.tv_nsec;
}

} // namespace

std::int64_t steadyNow_ns() { return read(CLOCK_MONOTONIC); }
std::int64_t wallNow_ns() { return read(CLOCK_REALTIME); }

void sleepUntil(std::int64_t due_ns) {
    const timespec due{due_ns / NS_PER_SECOND, due_ns % NS_PER_SECOND};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, nullptr);
}

} // namespace program
