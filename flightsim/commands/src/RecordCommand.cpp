// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Recorder.h"
#include "flightsim/commands/Commands.h"

#include <memory>

namespace flightsim {

namespace {

int runRecord(const RecorderOptions& options) {
    return runUntilStopped<Recorder>("record", options, [&](const Recorder& recorder) {
        std::printf("recording port %d into %s\n", recorder.getPort(), options.file.c_str());
        std::fflush(stdout);
    });
}

} // namespace

void addRecord(CLI::App& app, Command& command) {
    const auto options = std::make_shared<RecorderOptions>();
    CLI::App* sub = app.add_subcommand("record", "Record what a flight simulation sends");
    sub->footer(
        "Writes the datagrams that come in at a port, whatever their size, with their times of\n"
        "arrival. With --forward it sits between a flight simulation and its channel. The file\n"
        "can be read at any moment, up to the second before. Ctrl-C ends it in order.\n"
        "\n"
        "Examples:\n"
        "  flight_sim record flight.hrec --seconds 60\n"
        "  flight_sim record flight.hrec --port 10014 --forward 127.0.0.1:10004");
    sub->add_option("FILE", options->file, "The recording; an existing file is replaced")
        ->required();
    sub->add_option("--port", options->port, "Port to record; 0: any free one")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(numberBetween(0, 65535));
    sub->add_option("--forward", options->forward, "Pass every datagram on to this address")
        ->type_name("HOST:PORT");
    addSeconds(*sub, "--seconds", options->seconds, "Stop after so long (default: when stopped)");
    sub->add_option("--size-limit", options->size_limit_mb,
                    "Stop before the file grows beyond this (default: no limit)")
        ->type_name("MB")
        ->check(numberBetween(1, 1e6));
    sub->add_flag("--quiet", options->quiet, "No line a second, only the summary");
    sub->callback([options, &command] { command = [options] { return runRecord(*options); }; });
}

} // namespace flightsim
