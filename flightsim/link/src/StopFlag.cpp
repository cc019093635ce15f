// SPDX-License-Identifier: MIT
#include "flightsim/link/StopFlag.h"

#include "common/program/Process.h"

namespace flightsim {

namespace {

StopFlag g_stop = false;
static_assert(StopFlag::is_always_lock_free, "set in a signal handler");

} // namespace

const StopFlag& stopOnSignals() {
    program::onStopSignal([] { g_stop = true; });
    return g_stop;
}

} // namespace flightsim
