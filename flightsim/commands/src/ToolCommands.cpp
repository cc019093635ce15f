// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Send.h"
#include "flightsim/capture/Convert.h"
#include "flightsim/commands/Commands.h"
#include "flightsim/recording/FieldTools.h"
#include "flightsim/recording/RecordingTools.h"
#include "program/DataFolder.h"
#include "program/Process.h"

#include <memory>

namespace flightsim {

namespace {

int runInfo(const std::string& path, bool fields) {
    std::string warning, message;
    const bool good = printInfo(path, stdout, warning, message) &&
                      (!fields || printFieldSummary(path, stdout, message)) &&
                      program::endOutput(message);
    printWarning("info", warning);
    return good ? 0 : printFailure("info", message);
}

/// The options that name a part of a recording.
struct PartOptions {
    double from = 0;
    double seconds = -1;
    std::int64_t record = 0;
    std::int64_t count = -1;

    Selection getSelection() const {
        Selection selection = Selection::ofSeconds(from, seconds);
        selection.from_number = record;
        if (count >= 0) selection.until_number = record + count;
        return selection;
    }
};

void addPartOptions(CLI::App& sub, PartOptions& part) {
    addSeconds(sub, "--from", part.from, "Second of the recording to begin with");
    addSeconds(sub, "--seconds", part.seconds, "Seconds of it (default: to the end)");
    sub.add_option("--record", part.record, "Number of the first record, counted from 0")
        ->type_name("N")
        ->check(numberBetween(0, 1e15));
    sub.add_option("--count", part.count, "Number of records (default: to the end)")
        ->type_name("N")
        ->check(numberBetween(1, 1e15));
}

struct CutCommandOptions {
    CutOptions cut;
    PartOptions part;
    bool compact = false;
};

int runCut(const CutCommandOptions& options) {
    CutOptions cut = options.cut;
    cut.selection = options.part.getSelection();
    cut.format = options.compact ? RecordingFormat::compact : RecordingFormat::whole;
    CutResult result;
    std::string message;
    if (!cutRecording(cut, result, message)) return printFailure("cut", message);
    printWarning("cut", result.warning);
    std::printf("%lld records, %lld bytes\n", static_cast<long long>(result.records),
                static_cast<long long>(result.bytes));
    return program::endOutput(message) ? 0 : printFailure("cut", message);
}

struct DumpCommandOptions {
    DumpOptions dump;
    PartOptions part;
    std::vector<std::string> fields;
};

int runDump(const DumpCommandOptions& options) {
    DumpOptions dump = options.dump;
    dump.selection = options.part.getSelection();
    std::string warning, message;
    for (const std::string& name : options.fields) {
        dump.fields.push_back(findFieldOrNearest(dump.feedback, name, message));
        if (!dump.fields.back()) return printFailure("dump", message);
    }
    const bool good = dumpRecording(dump, stdout, warning, message) && program::endOutput(message);
    printWarning("dump", warning);
    return good ? 0 : printFailure("dump", message);
}

int runConvert(const ConvertOptions& options) {
    ConvertResult result;
    std::string message;
    const bool good = convert(options, result, message);
    printWarning("convert", result.warning);
    if (!good) return printFailure("convert", message);
    std::printf("%lld datagrams, %lld bytes, a %s\n", static_cast<long long>(result.datagrams),
                static_cast<long long>(result.bytes), result.to_capture ? "capture" : "recording");
    return program::endOutput(message) ? 0 : printFailure("convert", message);
}

} // namespace

void addInfo(CLI::App& app, Command& command) {
    const auto path = std::make_shared<std::string>();
    const auto fields = std::make_shared<bool>(false);
    CLI::App* sub = app.add_subcommand("info", "Tell what a recording holds");
    sub->footer(
        "Prints span, rate, intervals between datagrams, sizes, positions, commands other than 0,\n"
        "and the first and the last record. Records are numbered from 0. Of a frame log of the "
        "channel\n"
        "it tells the program, its options and the number of frames too.");
    sub->add_option("FILE", *path, "The recording, or a frame log")->required();
    sub->add_flag("--fields", *fields,
                  "Then a row for each field: first and last value, range, changes");
    sub->callback([path, fields, &command] {
        *path = program::findShippedFile(*path);
        command = [path, fields] { return runInfo(*path, *fields); };
    });
}

void addCut(CLI::App& app, Command& command) {
    const auto options = std::make_shared<CutCommandOptions>();
    CLI::App* sub = app.add_subcommand("cut", "Write a part of a recording to another file");
    sub->footer("The part is named by time, by record number, or by both: what lies in both.\n"
                "Without any it converts the whole recording.\n"
                "\n"
                "Examples:\n"
                "  flight_sim cut flight.hrec takeoff.hrec --from 12 --seconds 20\n"
                "  flight_sim cut flight.hrec one.hrec --record 311 --count 1\n"
                "  flight_sim cut flight.hrec small.hrec --compact");
    sub->add_option("IN", options->cut.in, "The recording, or a frame log, to cut from")
        ->required();
    sub->add_option("OUT", options->cut.out, "The recording to write; an existing file is replaced")
        ->required();
    addPartOptions(*sub, options->part);
    sub->add_flag("--compact", options->compact,
                  "Store differences between datagrams: a tenth of the size, nothing lost");
    sub->callback([options, &command] {
        options->cut.in = program::findShippedFile(options->cut.in);
        command = [options] { return runCut(*options); };
    });
}

void addDump(CLI::App& app, Command& command) {
    const auto options = std::make_shared<DumpCommandOptions>();
    CLI::App* sub = app.add_subcommand("dump", "Print a recording field by field");
    sub->footer("The part is named by time, by record number, or by both: what lies in both.\n"
                "docs/connect.md tells what the fields mean.\n"
                "\n"
                "Examples:\n"
                "  flight_sim dump flight.hrec --record 311 --count 1\n"
                "  flight_sim dump flight.hrec --changes --fields command,weather_type,sea_code\n"
                "  flight_sim dump flight.hrec --csv > flight.csv");
    sub->add_option("FILE", options->dump.in, "The recording, or a frame log")->required();
    addPartOptions(*sub, options->part);
    sub->add_option("--fields", options->fields,
                    "Only these; reserved ones are shown when they are named")
        ->type_name("FIELD,...")
        ->delimiter(',');
    sub->add_flag("--feedback", options->dump.feedback,
                  "Feedback datagrams, told by their size, in place of the records");
    auto* csv = sub->add_flag("--csv", options->dump.csv,
                              "A line for each, all digits of every value, for spreadsheets");
    sub->add_flag("--changes", options->dump.changes,
                  "Behind the first only what differs from the one before")
        ->excludes(csv);
    sub->callback([options, &command] {
        options->dump.in = program::findShippedFile(options->dump.in);
        command = [options] { return runDump(*options); };
    });
}

void addConvert(CLI::App& app, Command& command) {
    const auto options = std::make_shared<ConvertOptions>();
    const auto compact = std::make_shared<bool>(false);
    CLI::App* sub = app.add_subcommand("convert", "Make a packet capture of a recording, or back");
    sub->footer(
        "A recording or a frame log becomes a capture (pcap, nanoseconds), which any packet tool\n"
        "reads; a capture (pcap or pcapng, from tcpdump, Wireshark and the like) becomes a\n"
        "recording of the datagrams to one port. Fragments are put together. A recording knows no\n"
        "addresses: in its capture both ends are 127.0.0.1, records go to --port and datagrams\n"
        "of the feedback's size to --feedback-port.\n"
        "\n"
        "Examples:\n"
        "  flight_sim convert flight.hrec flight.pcap\n"
        "  flight_sim convert captured.pcapng flight.hrec --port 10004\n"
        "  flight_sim convert captured.pcapng feedback.hrec --port 10005");
    sub->add_option("IN", options->in, "The recording, frame log or capture")->required();
    sub->add_option("OUT", options->out, "The file to write; an existing one is replaced")
        ->required();
    sub->add_option("--port", options->port,
                    "Port of the records; of a capture, the one whose datagrams are taken")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(numberBetween(1, 65535));
    sub->add_option("--feedback-port", options->feedback_port, "Port of the feedback")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(numberBetween(1, 65535));
    sub->add_flag("--compact", *compact, "Write a compact recording");
    sub->callback([options, compact, &command] {
        options->in = program::findShippedFile(options->in);
        if (*compact) options->format = RecordingFormat::compact;
        command = [options] { return runConvert(*options); };
    });
}

} // namespace flightsim
