// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Fly.h"
#include "flightsim/commands/Commands.h"
#include "program/DataFolder.h"
#include "program/Process.h"

#include <memory>

namespace flightsim {

namespace {

void printPlan(const Fly& fly) {
    const std::string& name = fly.getMission().name;
    std::printf("mission   %s, %zu legs, %.1f s\n",
                name.empty() ? fly.getMission().path.c_str() : name.c_str(),
                fly.getPlan().legs.size(), fly.getPlan().seconds);
    std::fflush(stdout);
}

int runFly(const FlyOptions& options, bool dry_run) {
    Fly fly;
    std::string message;
    const bool opened = dry_run ? fly.openMission(options, message) : fly.open(options, message);
    if (!opened) return printFailure("fly", message);
    printWarning("fly", fly.getPlan().warning);
    printPlan(fly);
    if (dry_run)
        return fly.printProfile(stdout, message) && program::endOutput(message)
                   ? 0
                   : printFailure("fly", message);
    const StopFlag& stop = stopOnSignals(); // until here a signal ends it at once
    printLink(fly.getLink());
    return fly.run(stop, message) ? 0 : printFailure("fly", message);
}

} // namespace

void addFly(CLI::App& app, Command& command) {
    const auto options = std::make_shared<FlyOptions>();
    const auto dry_run = std::make_shared<bool>(false);
    CLI::App* sub = app.add_subcommand("fly", "Fly a mission");
    sub->footer(
        "Flies the legs of a mission file with a helicopter that has mass, lags and limits, sends\n"
        "the host data records as it goes, and shows once a second what the channel reports back.\n"
        "docs/flight_sim.md describes the mission file.\n"
        "\n"
        "Examples:\n"
        "  flight_sim fly data/missions/demo.yaml\n"
        "  flight_sim fly data/missions/demo.yaml --duration 40 --record flight.hrec\n"
        "  flight_sim fly data/missions/demo.yaml --dry-run\n"
        "Ctrl-C ends it in order, with the summary.");
    sub->add_option("MISSION", options->file, "The mission file")->required();
    addLinkOptions(*sub, options, options->link);
    sub->add_option("--rate", options->rate, "Records a second")
        ->type_name("HZ")
        ->capture_default_str()
        ->check(numberBetween(1, 1000));
    sub->add_option("--speed", options->speed, "2: the helicopter flies twice as fast as life")
        ->type_name("X")
        ->capture_default_str()
        ->check(numberBetween(0.1, 20));
    addSeconds(*sub, "--seconds", options->seconds, "Seconds of flight (default: to the end)");
    sub->add_option("--duration", options->duration,
                    "Let the mission take so long: optional legs are left out, hovers stretched")
        ->type_name("S")
        ->check(numberBetween(1, 86'400));
    sub->add_flag_callback(
        "--no-reset", [options] { options->reset = false; }, "Don't reset the scene at the start");
    sub->add_option("--wait", options->wait,
                    "Begin when the channel's first feedback comes, at the latest after S seconds")
        ->type_name("S")
        ->check(numberBetween(0, 3600));
    sub->add_flag("--loop", options->loop, "Begin anew at the end, until stopped");
    sub->add_option("--record", options->record, "Write the records that are sent to this file")
        ->type_name("FILE");
    sub->add_flag("--dry-run", *dry_run, "Send nothing, print the flown profile");
    sub->callback([options, dry_run, &command] {
        options->file = program::findShippedFile(options->file);
        command = [options, dry_run] { return runFly(*options, *dry_run); };
    });
}

} // namespace flightsim
