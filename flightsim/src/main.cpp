// SPDX-License-Identifier: MIT
#include "flightsim/commands/Commands.h"
#include "manual/Manual.h"
#include "manual/Version.h"
#include "program/Process.h"

#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
    program::fillStandardStreams();
    program::letWritesFail();
    CLI::App app(
        "The flight simulation's side of the link to the visual channel: missions are flown, "
        "flights are sent, recorded and examined.",
        "flight_sim");
    app.footer(
        "'flight_sim COMMAND --help' tells more. Exit status: 0 done, 1 failed, 2 wrong use.");
    app.set_version_flag("--version", "flight_sim " + manual::getVersion(),
                         "Tell the version and exit");
    manual::addOptions(app, {.summary = "flight simulation's side of a visual channel's link",
                             .version = "flight_sim " VERSION,
                             .see = "visual_channel(1)"});
    app.require_subcommand(1);
    flightsim::Command command;
    flightsim::addFly(app, command);
    flightsim::addReplay(app, command);
    flightsim::addSend(app, command);
    flightsim::addMonitor(app, command);
    flightsim::addRecord(app, command);
    flightsim::addInfo(app, command);
    flightsim::addCut(app, command);
    flightsim::addDump(app, command);
    flightsim::addConvert(app, command);
    flightsim::addProbe(app, command);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return command();
}
