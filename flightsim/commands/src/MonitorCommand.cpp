// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Monitor.h"
#include "flightsim/commands/Commands.h"

#include <memory>
#include <unistd.h>

namespace flightsim {

namespace {

int runMonitor(const MonitorOptions& options) {
    return runUntilStopped<Monitor>("monitor", options, [](const Monitor& monitor) {
        std::printf("records: %s; feedback: %s\n", monitor.describe(false).c_str(),
                    monitor.describe(true).c_str());
        std::fflush(stdout);
    });
}

CLI::Option* addPort(CLI::App& sub, const char* name, int& port, const char* help) {
    return sub.add_option(name, port, help)
        ->type_name("PORT")
        ->capture_default_str()
        ->check(numberBetween(0, 65535));
}

} // namespace

void addMonitor(CLI::App& app, Command& command) {
    const auto options = std::make_shared<MonitorOptions>();
    CLI::App* sub =
        app.add_subcommand("monitor", "Show what passes between host and channel, live");
    sub->footer(
        "Once a second a table of both directions: every field, rates, gaps, who sends. On a\n"
        "terminal it stays in its place. A port has one receiver, so:\n"
        "\n"
        "  instead of a channel   flight_sim monitor --no-feedback\n"
        "  instead of a host      flight_sim monitor --no-records\n"
        "  between the two        flight_sim monitor --port 10014 --forward 127.0.0.1:10004 \\\n"
        "                           --feedback-port 10015 --forward-feedback 127.0.0.1:10005\n"
        "\n"
        "Between the two the host sends to port 10014, and the channel's configuration sends its\n"
        "feedback to port 10015 (send_to_flightSimulation_port); one direction alone needs only\n"
        "its half. Everything is passed on at once and unchanged. A value that is not plausible\n"
        "is marked with !. Ctrl-C ends it with a table of the whole time.");
    auto* port = addPort(*sub, "--port", options->records.port, "Port of the records");
    auto* forward = sub->add_option("--forward", options->records.forward,
                                    "Pass every record on to this address")
                        ->type_name("HOST:PORT");
    auto* no_records = sub->add_flag_callback(
                              "--no-records", [options] { options->records.enabled = false; },
                              "Leave the records alone")
                           ->excludes(port)
                           ->excludes(forward);
    auto* feedback_port =
        addPort(*sub, "--feedback-port", options->feedback.port, "Port of the feedback");
    auto* forward_feedback = sub->add_option("--forward-feedback", options->feedback.forward,
                                             "Pass every feedback datagram on to this address")
                                 ->type_name("HOST:PORT");
    sub->add_flag_callback(
           "--no-feedback", [options] { options->feedback.enabled = false; },
           "Leave the feedback alone")
        ->excludes(feedback_port)
        ->excludes(forward_feedback)
        ->excludes(no_records); // nothing would be left to show
    sub->add_option("--interval", options->interval, "Between two tables")
        ->type_name("S")
        ->capture_default_str()
        ->check(numberBetween(0.1, 3600));
    addSeconds(*sub, "--seconds", options->seconds, "Stop after so long (default: when stopped)");
    sub->callback([options, &command] {
        options->redraw = isatty(STDOUT_FILENO) == 1;
        command = [options] { return runMonitor(*options); };
    });
}

} // namespace flightsim
