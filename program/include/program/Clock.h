// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The clock that never jumps, which all processes of the machine share, and the calendar's.
namespace program {

inline constexpr std::int64_t NS_PER_SECOND = 1'000'000'000;
inline constexpr std::int64_t NS_PER_MS = 1'000'000;

inline double inSeconds(std::int64_t ns) { return double(ns) / double(NS_PER_SECOND); }

/// Nanoseconds on the steady clock. A signal handler may ask too.
std::int64_t steadyNow_ns();
/// The same in seconds.
inline double steadyNow() { return inSeconds(steadyNow_ns()); }
/// Nanoseconds of Unix time, for stamps in files.
std::int64_t wallNow_ns();

/// Sleeps until the steady clock shows `due_ns`. A signal may end it before, and waking up may take
/// 200 µs longer.
void sleepUntil(std::int64_t due_ns);

} // namespace program
