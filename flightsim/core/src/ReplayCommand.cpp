// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "flightsim/Commands.h"
#include "flightsim/Replay.h"

#include <memory>

namespace flightsim {

namespace {

int runReplay(const ReplayOptions& options) {
    const StopFlag& stop = stopOnSignals();
    Replay replay;
    std::string message;
    if (!replay.open(options, message)) return printFailure("replay", message);
    printWarning("replay", replay.warning());
    std::printf("sending to %s", replay.link().destination().c_str());
    if (options.link.feedback) std::printf(", feedback on port %d", replay.link().listenPort());
    std::printf("\n");
    std::fflush(stdout);
    return replay.run(stop, message) ? 0 : printFailure("replay", message);
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
        "Examples:\n"
        "  flight_sim replay data/recordings/helicopter_flight.hrec\n"
        "  flight_sim replay flight.hrec --from 20 --seconds 10 --loop\n"
        "  flight_sim replay flight.hrec --hold 1500 --seconds 5 --feedback feedback.csv\n"
        "Ctrl-C ends it in order, with the summary.");
    sub->add_option("FILE", options->file, "The recording")->required();
    sub->add_option("--to", options->link.to, "Where to send the records")
        ->type_name("HOST:PORT")
        ->capture_default_str();
    auto* listen = sub->add_option("--listen", options->link.listen,
                                   "Port of the channel's feedback; 0: any free one")
                       ->type_name("PORT")
                       ->capture_default_str()
                       ->check(numberBetween(0, 65535));
    auto* no_feedback = sub->add_flag_callback(
        "--no-feedback", [options] { options->link.feedback = false; }, "Receive no feedback");
    no_feedback->excludes(listen);
    sub->add_option("--feedback", options->link.feedback_csv,
                    "Write every feedback datagram to this CSV file")
        ->type_name("FILE")
        ->excludes(no_feedback);
    sub->add_option("--speed", options->speed, "2: twice as fast, 0.5: at half speed")
        ->type_name("X")
        ->capture_default_str()
        ->check(numberBetween(0.01, 1000));
    auto* loop = sub->add_flag("--loop", options->loop, "Begin anew at the end, until stopped");
    auto* from = sub->add_option("--from", options->from, "Second of the recording to begin with")
                     ->type_name("S")
                     ->check(numberBetween(0, max_seconds));
    sub->add_option("--seconds", options->seconds,
                    "Seconds of the recording to send (default: all)")
        ->type_name("S")
        ->check(numberBetween(0, max_seconds));
    sub->add_option("--hold", options->hold,
                    "Send only record N (from 0), over and over at the recording's mean rate")
        ->type_name("N")
        ->excludes(loop)
        ->excludes(from);
    sub->add_flag("--quiet", options->link.quiet, "No table, only the summary");
    sub->callback([options, &command] { command = [options] { return runReplay(*options); }; });
}

} // namespace flightsim
