// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// What has passed over all sockets of the process, that is over the logic's link, so far.
struct LinkState {
    std::uint64_t received = 0, sent = 0, truncated = 0, filtered = 0, empty = 0, failed = 0;
    double last_received = 0; ///< steady clock, s; 0 before the first

    static LinkState read();
    /// Seconds since the last record; negative before the first.
    double age() const;
};
