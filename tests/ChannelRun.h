// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "testkit/Program.h"
#include "testkit/TempFolder.h"
#include "testkit/UdpPeer.h"

#include <string>
#include <vector>

/// The visual channel as a process of its own in a folder of its own, with the project's data and a
/// configuration for free ports. Change the folder before `start`.
class ChannelRun {
public:
    ChannelRun();

    /// Starts the program and waits until it listens. False when it ended before.
    bool start(const std::string& options);
    /// Ends it as an operator would and returns its exit status; `output` gets what it printed.
    int stop();

    void send(const void* data, std::size_t size) const { peer.send(data, size, receive_port); }

    /// A line of the trace file.
    struct Frame {
        int number;
        double time, begin; ///< seconds; `begin` on the steady clock
        int records;        ///< applied so far
        double longitude, latitude, altitude, heading, pitch, roll;
        double shown; ///< s on the steady clock
        int late;
        double age; ///< of the newest record when shown, s; 0 before there is one
    };
    /// Reads "trace.csv".
    std::vector<Frame> readTrace() const;

    TempFolder folder;
    UdpPeer peer;
    int receive_port = UdpPeer::freePort();
    std::unique_ptr<Program> program;
    std::string beginning; ///< what it printed until it listened
    std::string output;

private:
    void waitForHandlers() const;
};

/// How often `text` holds a part.
long countOf(const std::string& text, const std::string& part);
