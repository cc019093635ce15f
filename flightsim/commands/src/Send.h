// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "common/wire/WireField.h"
#include "flightsim/link/HostLink.h"

#include <cstdint>
#include <string>
#include <vector>

namespace flightsim {

/// The field of either direction's datagram that has this name; null with `message`, which names
/// the nearest one, when there is none.
const WireField* findFieldOrNearest(bool feedback, const std::string& name, std::string& message);

struct SendOptions {
    std::vector<std::string> values; ///< "FIELD=VALUE"
    LinkOptions link;                ///< without a rate only `to` counts
    std::string base;                ///< recording that what is not given comes from; empty: none
    std::int64_t base_record = 0;    ///< its record
    double rate = 0;                 ///< records a second; 0: one record, once
    double seconds = -1;             ///< of sending at that rate; negative: until stopped
};

/// Sends a record whose fields were named: one, or a steady stream of the same. What is not given
/// is fair weather and a helicopter on the pad of the demo world, or a record of a recording. A
/// command is sent once, in the first record. Created by the command line or a test, which opens it
/// and runs it once.
class Send {
public:
    /// False with `message` when a field, a value, the recording, an address or a port can't be
    /// used.
    bool open(const SendOptions& options, std::string& message);
    /// Not empty: values that the field holds, but that mean nothing to the channel.
    const std::string& getWarning() const { return m_warning; }
    const HostLink& getLink() const { return m_link; }
    const UdpRecvData& getRecord() const { return m_record; }
    /// Sends. False with `message` when the one record can't be sent, or a file fails.
    bool run(const StopFlag& stop, std::string& message);

private:
    bool takeBase(std::string& message);
    bool setField(const std::string& text, std::string& message);
    bool sendOnce(std::string& message);

    SendOptions m_options;
    UdpRecvData m_record{};
    std::vector<const WireField*> m_given;
    std::string m_warning;
    HostLink m_link;
};

} // namespace flightsim
