// SPDX-License-Identifier: MIT
#pragma once

#include "program/Process.h"

#include <atomic>

namespace flightsim {

/// Set by the operator's interrupt; everything that waits looks at it several times a second.
using StopFlag = std::atomic<bool>;

/// Makes SIGINT, SIGTERM and SIGHUP set the flag that it returns, so that files and tables end in
/// order (`program::onStopSignal`).
inline const StopFlag& stopOnSignals() {
    static_assert(StopFlag::is_always_lock_free, "set in a signal handler");
    static StopFlag stop = false;
    program::onStopSignal([] { stop = true; });
    return stop;
}

} // namespace flightsim
