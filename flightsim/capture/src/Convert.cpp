// SPDX-License-Identifier: MIT
#include "flightsim/capture/Convert.h"

#include "common/wire/UdpSendData.h"
#include "flightsim/capture/Capture.h"
#include "program/Clock.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdint>
#include <filesystem>
#include <map>

namespace flightsim {

namespace {

using program::NS_PER_SECOND;

/// Adds a part of a warning.
void add(std::string& warning, const std::string& part) {
    warning += (warning.empty() ? "" : "; ") + part;
}

std::uint16_t portOf(int port) { return static_cast<std::uint16_t>(port); }

bool toCapture(const ConvertOptions& options, ConvertResult& result, std::string& message) {
    constexpr std::int64_t END_NS = (std::int64_t{1} << 32) * NS_PER_SECOND;
    RecordingReader reader;
    Survey found;
    if (!reader.open(options.in)) {
        message = reader.getMessage();
        return false;
    }
    if (!survey(reader, options.in, {}, found, message)) return false;
    result.warning = found.warning;
    const std::int64_t start_ns = reader.getStartWall_ns();
    if (start_ns < 0 || start_ns >= END_NS - found.last_ns) {
        message = "\"" + options.in +
                  "\" was begun before 1970 or after 2105, it says: no capture "
                  "can tell that";
        return false;
    }
    CaptureWriter writer;
    Record record;
    bool good = writer.open(options.out);
    while (good && reader.next(record) == ReadStatus::record) {
        const Endpoint host{record.from_address ? record.from_address : htonl(INADDR_LOOPBACK),
                            record.from_port ? record.from_port : portOf(options.feedback_port)};
        const Endpoint channel{htonl(INADDR_LOOPBACK), portOf(options.port)};
        const bool is_feedback = record.datagram.size() == sizeof(UdpSendData);
        good = writer.append({start_ns + record.time_ns, is_feedback ? channel : host,
                              is_feedback ? host : channel, record.datagram});
    }
    good = good && writer.close();
    message = writer.getMessage();
    result.to_capture = true;
    result.datagrams = found.records;
    result.bytes = writer.getSize();
    return good;
}

/// What one pass over a capture finds.
struct Found {
    std::int64_t wanted = 0;   ///< datagrams to the port that was asked for
    std::int64_t first_ns = 0; ///< time of the first of these, Unix time
    std::int64_t latest_ns = 0;
    std::int64_t backward = 0; ///< how many go back in time
    std::map<std::uint16_t, std::int64_t> other_ports;
    CaptureStatus status = CaptureStatus::end;
};

/// "3 to port 10005, 1 to port 53": those with the most first.
std::string listPorts(const std::map<std::uint16_t, std::int64_t>& ports) {
    constexpr std::size_t SHOWN = 5;
    std::multimap<std::int64_t, std::uint16_t, std::greater<>> by_count;
    for (const auto& [port, count] : ports)
        by_count.emplace(count, port);
    std::string text;
    std::size_t shown = 0;
    for (const auto& [count, port] : by_count) {
        if (shown++ == SHOWN) break;
        text +=
            (text.empty() ? "" : ", ") + std::to_string(count) + " to port " + std::to_string(port);
    }
    return ports.size() > SHOWN
               ? text + ", and " + std::to_string(ports.size() - SHOWN) + " more ports"
               : text;
}

/// Tells what was left out. Other ports and a broken end are in the message when nothing is there.
void warn(const CaptureReader& reader, const Found& found, std::string& warning) {
    const CaptureStats& stats = reader.getStats();
    const auto count = [&](std::int64_t n, const char* what) {
        if (n > 0) add(warning, std::to_string(n) + what);
    };
    const bool any = found.wanted > 0;
    if (any && found.status == CaptureStatus::truncated) add(warning, reader.getMessage());
    if (any && !found.other_ports.empty()) add(warning, "left out " + listPorts(found.other_ports));
    count(stats.other, " packets are no UDP over IPv4");
    count(stats.cut, " packets were captured only in part (capture with -s 0)");
    count(stats.malformed, " packets are malformed");
    count(stats.incomplete, " datagrams lack a fragment");
    count(found.backward, " times go back and count as those before");
}

/// Checks a capture from end to end, so that a fault shows before anything is written.
bool surveyCapture(CaptureReader& reader, const ConvertOptions& options, Found& found,
                   std::string& message) {
    CapturedDatagram datagram;
    while ((found.status = reader.next(datagram)) == CaptureStatus::datagram) {
        if (datagram.to.port != options.port) {
            found.other_ports[datagram.to.port]++;
            continue;
        }
        if (found.wanted++ == 0) found.first_ns = found.latest_ns = datagram.wall_ns;
        if (datagram.wall_ns < found.latest_ns) found.backward++;
        found.latest_ns = std::max(found.latest_ns, datagram.wall_ns);
    }
    const std::string broken =
        found.status == CaptureStatus::truncated ? "; " + reader.getMessage() : "";
    const std::string port = "to port " + std::to_string(options.port);
    if (found.status == CaptureStatus::malformed)
        message = reader.getMessage();
    else if (found.wanted == 0)
        message =
            "\"" + options.in + "\" holds no datagram " + port +
            (found.other_ports.empty() ? ""
                                       : ", but " + listPorts(found.other_ports) + ": see --port") +
            broken;
    else if (found.latest_ns - found.first_ns > MAX_RECORD_TIME_NS)
        message = "\"" + options.in + "\": the datagrams " + port +
                  " span more than a year, which no recording does";
    return message.empty();
}

bool toRecording(const ConvertOptions& options, ConvertResult& result, std::string& message) {
    CaptureReader reader;
    Found found;
    if (!reader.open(options.in)) {
        message = reader.getMessage();
        return false;
    }
    const bool usable = surveyCapture(reader, options, found, message);
    warn(reader, found, result.warning);
    if (!usable) return false;
    RecordingWriter writer;
    CapturedDatagram datagram;
    bool good = reader.open(options.in) && writer.open(options.out, options.format, found.first_ns);
    while (good && reader.next(datagram) == CaptureStatus::datagram)
        if (datagram.to.port == options.port)
            good = writer.append(datagram.wall_ns - found.first_ns, datagram.bytes);
    good = good && writer.close();
    if (!good) {
        message = writer.getMessage().empty() ? reader.getMessage() : writer.getMessage();
        writer.discard();
    }
    result.datagrams = found.wanted;
    result.bytes = writer.getSize();
    return good;
}

} // namespace

bool convert(const ConvertOptions& options, ConvertResult& result, std::string& message) {
    std::error_code error;
    result = {};
    message.clear();
    if (std::filesystem::equivalent(options.in, options.out, error)) {
        message = "\"" + options.out + "\" is the file to convert";
        return false;
    }
    return CaptureReader::isCapture(options.in) ? toRecording(options, result, message)
                                                : toCapture(options, result, message);
}

} // namespace flightsim
