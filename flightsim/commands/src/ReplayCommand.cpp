// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Replay.h"
#include "flightsim/commands/Commands.h"
#include "program/DataFolder.h"

#include <memory>

namespace flightsim {

namespace {

int runReplay(const ReplayOptions& options) {
    return runUntilStopped<Replay>("replay", options, [](const Replay& replay) {
        printWarning("replay", replay.getWarning());
        printLink(replay.getLink());
    });
}

} // namespace

void addReplay(CLI::App& app, Command& command) {
    const auto options = std::make_shared<ReplayOptions>();
    CLI::App* sub = app.add_subcommand("replay", "Send a recorded flight to the channel");
    sub->footer(
        "Datagrams leave as they were recorded, byte for byte and on time. Once a second a row\n"
        "shows what the channel reports back: its frame number, frames skipped and repeated,\n"
        "the ground below the helicopter (degrees, metres) and the wheels' heading/pitch/roll.\n"
        "\n"
        "A frame log of the channel is replayed too: what had come to it then.\n"
        "\n"
        "Examples:\n"
        "  flight_sim replay data/recordings/helicopter_flight.hrec\n"
        "  flight_sim replay flight.hrec --from 20 --seconds 10 --loop\n"
        "  flight_sim replay flight.hrec --hold 1500 --seconds 5 --feedback feedback.csv\n"
        "Ctrl-C ends it in order, with the summary.");
    sub->add_option("FILE", options->file, "The recording, or a frame log")->required();
    addLinkOptions(*sub, options, options->link);
    sub->add_option("--speed", options->speed, "2: twice as fast, 0.5: at half speed")
        ->type_name("X")
        ->capture_default_str()
        ->check(numberBetween(0.01, 1000));
    auto* loop = sub->add_flag("--loop", options->loop, "Begin anew at the end, until stopped");
    auto* from = addSeconds(*sub, "--from", options->from, "Second of the recording to begin with");
    addSeconds(*sub, "--seconds", options->seconds,
               "Seconds of the recording to send (default: all)");
    sub->add_option("--hold", options->hold,
                    "Send only record N (from 0), over and over at the recording's mean rate")
        ->type_name("N")
        ->excludes(loop)
        ->excludes(from);
    sub->callback([options, &command] {
        options->file = program::findShippedFile(options->file);
        command = [options] { return runReplay(*options); };
    });
}

} // namespace flightsim
