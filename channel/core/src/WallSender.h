// SPDX-License-Identifier: MIT
#pragma once

#include "WallLink.h"
#include "frames/FrameLog.h"

#include <vector>

/// What the first channel of a wall tells its displays: the log of its run, as it is made.
class WallSender {
public:
    /// False, with one log line, when there is no such wall.
    bool open(const Options& options, const frames::LogHead& head);
    bool isOpen() const { return m_publisher != nullptr; }
    /// Before the frame runs, so that displays run it at the same time.
    void append(const frames::FrameInput& input);
    /// Of the scene as the frame told last leaves it.
    void append(const std::vector<frames::PartDigest>& digests);
    /// The run has ended in order.
    void close();
    const wall::Wall& getWall() const { return m_link.getWall(); }
    wall::WallNetwork* getNetwork() { return m_link.getNetwork(); }

private:
    void send(bool made);

    WallLink m_link;
    std::unique_ptr<wall::Publisher> m_publisher; ///< goes before the link
    frames::LogEncoder m_encoder;
    frames::LogEncoder::Bytes m_bytes;
    int m_displays = 0; ///< that were told of last
};
