// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Probe.h"
#include "flightsim/commands/Commands.h"

#include <memory>

namespace flightsim {

namespace {

int runProbe(const ProbeOptions& options) {
    Probe probe;
    std::string message;
    if (!probe.open(options, message)) return printFailure("probe", message);
    const StopFlag& stop = stopOnSignals(); // until here a signal ends it at once
    printLink(probe.getLink());
    if (!probe.run(stop, message)) return printFailure("probe", message);
    const DelayReport report = probe.getReport();
    std::printf("%s", report.text().c_str());
    if (!program::endOutput(message)) return printFailure("probe", message);
    return report.isKept() ? 0 : printFailure("probe", "the delay's p99 is beyond the limit");
}

} // namespace

void addProbe(CLI::App& app, Command& command) {
    const auto options = std::make_shared<ProbeOptions>();
    options->link.quiet = true;
    CLI::App* sub = app.add_subcommand("probe", "Measure the transport delay of a running channel");
    sub->footer(
        "Sends records in the place of the host and steps the helicopter's altitude; the delay of\n"
        "a step is the time from sending it to the feedback that reports the other height. It is\n"
        "told in milliseconds and in frames of the channel, and p99 is held against the limit:\n"
        "beyond it the exit status is 1. Rules for training devices allow 100 ms. The picture\n"
        "follows the feedback by what drawing and display take.\n"
        "\n"
        "The helicopter is put over the pad of the demo world; a world that lies elsewhere needs\n"
        "a place over its ground or sea. The host must not send meanwhile.\n"
        "\n"
        "Examples:\n"
        "  flight_sim probe\n"
        "  flight_sim probe --steps 1000 --plot delay.svg\n"
        "  flight_sim probe --to 10.0.0.5:10004 --latitude 54.3 --longitude 10.1");
    sub->add_option("--to", options->link.to, "Where the channel receives")
        ->type_name("HOST:PORT")
        ->capture_default_str();
    sub->add_option("--listen", options->link.listen,
                    "Port of the channel's feedback; 0: any free one")
        ->type_name("PORT")
        ->capture_default_str()
        ->check(numberBetween(0, 65535));
    sub->add_option("--steps", options->steps, "Number of steps")
        ->type_name("N")
        ->capture_default_str()
        ->check(numberBetween(1, 1e6));
    sub->add_option("--rate", options->rate, "Records a second between the steps")
        ->type_name("HZ")
        ->capture_default_str()
        ->check(numberBetween(1, 1000));
    sub->add_option("--limit", options->limit_ms, "What p99 may be")
        ->type_name("MS")
        ->capture_default_str()
        ->check(numberBetween(1, 2000));
    sub->add_option("--wait", options->wait, "How long to wait for the channel at most")
        ->type_name("S")
        ->capture_default_str()
        ->check(numberBetween(1, 3600));
    sub->add_option("--plot", options->plot, "Draw the distribution of the delays into this file")
        ->type_name("FILE.svg");
    const auto place = [&](const char* name, double& to, const char* help, double least,
                           double greatest) {
        sub->add_option(name, to, help)
            ->capture_default_str()
            ->check(numberBetween(least, greatest));
    };
    place("--latitude", options->latitude, "Of the place, degrees", -90, 90);
    place("--longitude", options->longitude, "Of the place, degrees", -180, 180);
    place("--altitude", options->altitude, "Of the lower end of a step, metres", -500, 20'000);
    place("--step", options->step, "Height of a step, metres: more than waves and slopes there", 5,
          5000);
    sub->callback([options, &command] { command = [options] { return runProbe(*options); }; });
}

} // namespace flightsim
