// SPDX-License-Identifier: MIT
#pragma once

#include "wall/Wall.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// What carries a wall's stream between computers: made by a library of its own, which is loaded
/// only when there is a wall.
///
/// The stream of a run is a sequence of bytes, from its first to the present one, of which each
/// display gets all. A run has a number; a greater one is a later run.
namespace wall {

/// The first channel's end. All calls are the frame's thread's, and none waits for a display.
class Publisher {
public:
    virtual ~Publisher() = default;
    /// The stream goes on with these bytes, those of one frame. They leave at once.
    virtual void append(std::span<const std::uint8_t> bytes) = 0;
    /// Displays that hear of it at present.
    virtual int getDisplays() const = 0;
    /// Of the stream so far, kept for displays that come late, bytes.
    virtual std::uint64_t getSize() const = 0;
    /// What went wrong since the last call; empty: nothing. Said once per change of state.
    virtual std::string takeComplaint() = 0;
};

/// A display's end.
class Subscriber {
public:
    virtual ~Subscriber() = default;
    /// Waits until there is something to take, or that many seconds have passed.
    virtual void wait(double seconds) = 0;
    /// What has come of the stream since the last call, in its order; empty: nothing. Of a run that
    /// isn't the latest nothing more comes.
    virtual std::vector<std::uint8_t> take() = 0;
    /// The run that `take` gives bytes of; 0: none yet. Changes in `take` only.
    virtual std::uint64_t getRun() const = 0;
    /// From now on `take` gives the present run's bytes again from the first one.
    virtual void restart() = 0;
    /// Bytes of the run that the first channel is known to have sent.
    virtual std::uint64_t getSize() const = 0;
    /// The first channel is there, as far as the network knows.
    virtual bool isConnected() const = 0;
};

/// Where displays, and a first channel that shows pictures, wait for each other. Nobody is waited
/// for who has not been heard of for a second, or is at another run.
class Barrier {
public:
    virtual ~Barrier() = default;
    /// This one's picture of the frame is ready. Waits until those of all others are, or that many
    /// seconds have passed: false then.
    virtual bool wait(std::uint64_t run, std::uint64_t frame, double seconds) = 0;
};

/// One for the process, which outlives what it makes.
class WallNetwork {
public:
    virtual ~WallNetwork() = default;
    /// Null with `message` when the network can't be had.
    virtual std::unique_ptr<Publisher> publish(std::uint64_t run, std::string& message) = 0;
    virtual std::unique_ptr<Subscriber> subscribe(std::string& message) = 0;
    virtual std::unique_ptr<Barrier> join(const std::string& name, std::string& message) = 0;
};

/// Exported by the library as `CreateWallNetwork`. Null with `message` (cause, place, remedy), for
/// example when there is no such interface.
using CreateWallNetworkFunction = WallNetwork* (*)(const Network& network, std::string& message);

} // namespace wall
