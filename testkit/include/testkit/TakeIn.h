// SPDX-License-Identifier: MIT
#pragma once

#include "ig/net/SocketUDP.h"

/// What the application does before a frame: gives what waits in the sockets to their readers.
/// Answers what that was.
inline frames::FrameInput takeIn() {
    frames::FrameInput input;
    ig::SocketUDP::collect(input);
    ig::SocketUDP::deliver(input);
    return input;
}
