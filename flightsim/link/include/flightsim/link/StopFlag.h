// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

namespace flightsim {

/// Set by the operator's interrupt; everything that waits looks at it several times a second.
using StopFlag = std::atomic<bool>;

/// Makes SIGINT, SIGTERM and SIGHUP set the flag that it returns, so that files and tables end in
/// order (`program::onStopSignal`).
const StopFlag& stopOnSignals();

} // namespace flightsim
