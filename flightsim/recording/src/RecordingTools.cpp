// SPDX-License-Identifier: MIT
#include "flightsim/recording/RecordingTools.h"

#include "common/wire/UdpRecvData.h"
#include "program/Clock.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <limits>
#include <map>
#include <vector>

namespace flightsim {

namespace {

/// The least and the greatest of finite values.
struct Bounds {
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();

    void add(double value) {
        if (!std::isfinite(value)) return;
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }
    bool empty() const { return least > greatest; }
};

/// A run of records that carry the same command other than 0.
struct CommandRun {
    std::int64_t first;
    std::int64_t last;
    std::uint32_t command;
};

struct DecodedRecord {
    std::int64_t number;
    std::int64_t time_ns;
    UdpRecvData data;
};

/// What one pass over a recording gathers for its description.
struct Contents {
    std::vector<double> intervals_ms;
    std::int64_t last_time_ns = -1;
    std::map<std::size_t, std::int64_t> sizes;
    Bounds latitude, longitude, altitude;
    std::vector<CommandRun> commands;
    std::vector<DecodedRecord> ends; ///< first and last decoded record

    void add(const Record& record);
    void decode(const Record& record);
};

void Contents::add(const Record& record) {
    if (last_time_ns >= 0) intervals_ms.push_back(double(record.time_ns - last_time_ns) * 1e-6);
    last_time_ns = record.time_ns;
    sizes[record.datagram.size()]++;
    if (record.datagram.size() >= sizeof(UdpRecvData)) decode(record);
}

void Contents::decode(const Record& record) {
    DecodedRecord decoded{record.number, record.time_ns, {}};
    std::memcpy(&decoded.data, record.datagram.data(), sizeof decoded.data);
    const UdpRecvData& d = decoded.data;
    latitude.add(d.latitude);
    longitude.add(d.longitude);
    altitude.add(double(d.altitude));
    if (d.command != 0) {
        if (!commands.empty() && commands.back().command == d.command &&
            commands.back().last == record.number - 1)
            commands.back().last++;
        else
            commands.push_back({record.number, record.number, d.command});
    }
    if (ends.size() == 2) ends.pop_back();
    ends.push_back(decoded);
}

long long printable(std::int64_t value) { return value; }

std::string utc(std::int64_t wall_ns) {
    const std::time_t seconds = wall_ns / program::NS_PER_SECOND;
    std::tm parts{};
    char text[64] = "unknown";
    if (gmtime_r(&seconds, &parts))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &parts);
    return text;
}

void printIntervals(std::vector<double> ms, std::FILE* out) {
    if (ms.empty()) return;
    double sum = 0, squares = 0;
    for (const double x : ms)
        sum += x;
    const double mean = sum / double(ms.size());
    for (const double x : ms)
        squares += (x - mean) * (x - mean);
    std::sort(ms.begin(), ms.end());
    // Nearest rank: the smallest value that the given part of all values doesn't exceed.
    const auto rank = [&](double part) {
        const auto n = static_cast<std::size_t>(std::ceil(part * double(ms.size())));
        return ms[std::max<std::size_t>(n, 1) - 1];
    };
    std::fprintf(out, "intervals mean %.2f, sd %.2f, p50 %.2f, p99 %.2f, max %.2f ms\n", mean,
                 std::sqrt(squares / double(ms.size())), rank(0.5), rank(0.99), ms.back());
}

void printCommands(const std::vector<CommandRun>& commands, std::FILE* out) {
    constexpr std::size_t SHOWN = 20;
    std::fprintf(out, "commands ");
    if (commands.empty()) std::fprintf(out, " none");
    for (std::size_t i = 0; i < std::min(SHOWN, commands.size()); i++) {
        const CommandRun& run = commands[i];
        std::fprintf(out, "%s%u in record %lld", i ? ", " : " ", run.command, printable(run.first));
        if (run.last > run.first) std::fprintf(out, " to %lld", printable(run.last));
    }
    if (commands.size() > SHOWN) std::fprintf(out, ", and %zu more", commands.size() - SHOWN);
    std::fprintf(out, "\n");
}

void printRecord(const char* title, const DecodedRecord& record, std::FILE* out) {
    const UdpRecvData& d = record.data;
    std::fprintf(out,
                 "%-9s record %lld at %.3f s: latitude %.7f longitude %.7f altitude %.2f m, "
                 "heading %.2f pitch %.2f roll %.2f, rotor %.1f\n",
                 title, printable(record.number), double(record.time_ns) * 1e-9, d.latitude,
                 d.longitude, double(d.altitude), double(d.heading), double(d.pitch),
                 double(d.roll), double(d.rotor_speed));
}

void printLog(const frames::LogReader& log, std::FILE* out) {
    const frames::LogHead& head = log.getHead();
    std::fprintf(out, "log       of %s: %lld frames, picture %d x %d, options",
                 head.program.c_str(), printable(log.getFrames()), head.width, head.height);
    for (const std::string& option : head.options)
        std::fprintf(out, option.find(' ') == std::string::npos ? " %s" : " \"%s\"",
                     option.c_str());
    std::fprintf(out, head.options.empty() ? " none\n" : "\n");
}

void printContents(const Contents& contents, std::FILE* out) {
    printIntervals(contents.intervals_ms, out);
    std::fprintf(out, "sizes    ");
    const char* separator = " ";
    for (const auto& [size, count] : contents.sizes) {
        std::fprintf(out, "%s%lld of %zu bytes", separator, printable(count), size);
        separator = ", ";
    }
    std::fprintf(out, "\n");
    if (contents.ends.empty()) {
        std::fprintf(out, "positions none: no datagram holds a whole host data record\n");
        return;
    }
    if (contents.latitude.empty() || contents.longitude.empty() || contents.altitude.empty())
        std::fprintf(out, "positions none: no finite ones\n");
    else
        std::fprintf(out,
                     "positions latitude %.7f to %.7f, longitude %.7f to %.7f, "
                     "altitude %.2f to %.2f m\n",
                     contents.latitude.least, contents.latitude.greatest, contents.longitude.least,
                     contents.longitude.greatest, contents.altitude.least,
                     contents.altitude.greatest);
    printCommands(contents.commands, out);
    printRecord("first", contents.ends.front(), out);
    printRecord("last", contents.ends.back(), out);
}

} // namespace

bool printInfo(const std::string& path, std::FILE* out, std::string& warning,
               std::string& message) {
    RecordingReader reader;
    Survey found;
    if (!reader.open(path)) {
        message = reader.getMessage();
        return false;
    }
    if (!survey(reader, path, {}, found, message)) return false;
    warning = found.warning;
    Contents contents;
    Record record;
    while (reader.next(record) == ReadStatus::record)
        contents.add(record);
    const double span_s = double(found.last_ns - found.first_ns) * 1e-9;
    std::fprintf(out, "recording %s, %s, %lld bytes, begun %s\n", path.c_str(),
                 reader.getLog()                                  ? "frame log"
                 : reader.getFormat() == RecordingFormat::compact ? "compact"
                                                                  : "whole",
                 printable(reader.getOffset()), utc(reader.getStartWall_ns()).c_str());
    if (reader.getLog()) printLog(*reader.getLog(), out);
    std::fprintf(out, "records   %lld over %.2f s", printable(found.records), span_s);
    if (span_s > 0) std::fprintf(out, ", %.2f Hz", double(found.records - 1) / span_s);
    std::fprintf(out, "\n");
    printContents(contents, out);
    return true;
}

bool cutRecording(const CutOptions& options, CutResult& result, std::string& message) {
    RecordingReader reader;
    Survey found;
    std::error_code error;
    if (!reader.open(options.in)) {
        message = reader.getMessage();
        return false;
    }
    if (std::filesystem::equivalent(options.in, options.out, error)) {
        message = "\"" + options.out + "\" is the recording to cut from";
        return false;
    }
    if (!survey(reader, options.in, options.selection, found, message)) return false;
    RecordingWriter writer;
    Record record;
    // Unsigned, because a damaged header may hold any start.
    const auto start_wall_ns = static_cast<std::uint64_t>(reader.getStartWall_ns()) +
                               static_cast<std::uint64_t>(found.first_ns);
    bool good = writer.open(options.out, options.format, static_cast<std::int64_t>(start_wall_ns));
    while (good && reader.next(record) == ReadStatus::record)
        if (options.selection.contains(record))
            good = writer.append(record.time_ns - found.first_ns, record.datagram);
    good = good && writer.close();
    if (!good) {
        message = writer.getMessage();
        writer.discard();
    }
    result = {found.selected, writer.getSize(), found.warning};
    return good;
}

} // namespace flightsim
