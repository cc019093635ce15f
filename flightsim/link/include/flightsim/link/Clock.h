// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

namespace flightsim {

inline constexpr std::int64_t NS_PER_SECOND = 1'000'000'000;
inline constexpr std::int64_t NS_PER_MS = 1'000'000;

/// Nanoseconds on the clock that never jumps. Every deadline is on it.
std::int64_t steadyNow();
/// Nanoseconds of Unix time, for stamps in files.
std::int64_t wallNow();

/// Waits until `due_ns` on the steady clock: asleep until 200 µs before, since that is about what
/// waking up may take, then awake. Returns within a few microseconds of it on an idle machine.
void sleepUntil(std::int64_t due_ns);

/// Set by the operator's interrupt; everything that waits looks at it several times a second.
using StopFlag = std::atomic<bool>;

/// Makes SIGINT, SIGTERM and SIGHUP set the flag that it returns, so that files and tables end in
/// order (`program::onStopSignal`).
const StopFlag& stopOnSignals();

} // namespace flightsim
