// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/link/HostLink.h"
#include "flightsim/link/StopFlag.h"
#include "program/Process.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <string>

/// What the subcommands share: checked numbers, the link's options and the form of a message.
namespace flightsim {

/// Accepts numbers from `least` to `greatest`; unlike the library's own range it refuses "nan".
inline CLI::Validator numberBetween(double least, double greatest) {
    const auto check = [least, greatest](std::string& text) -> std::string {
        double value = 0;
        if (CLI::detail::lexical_cast(text, value) && value >= least && value <= greatest)
            return {};
        return text + " is not a number from " + CLI::detail::to_string(least) + " to " +
               CLI::detail::to_string(greatest);
    };
    return CLI::Validator(check, "");
}

inline constexpr double MAX_SECONDS = 366.0 * 86400; ///< as long as a recording may be

/// An option of seconds, such as `--seconds` and `--from`.
inline CLI::Option* addSeconds(CLI::App& sub, const char* name, double& seconds, const char* help) {
    return sub.add_option(name, seconds, help)
        ->type_name("S")
        ->check(numberBetween(0, MAX_SECONDS));
}

/// The options of a subcommand that sends records. `owner` keeps `link` alive.
inline void addLinkOptions(CLI::App& sub, const std::shared_ptr<void>& owner, LinkOptions& link) {
    sub.add_option("--to", link.to, "Where to send the records")
        ->type_name("HOST:PORT")
        ->capture_default_str();
    auto* listen =
        sub.add_option("--listen", link.listen, "Port of the channel's feedback; 0: any free one")
            ->type_name("PORT")
            ->capture_default_str()
            ->check(numberBetween(0, 65535));
    auto* no_feedback = sub.add_flag_callback(
        "--no-feedback", [owner, &link] { link.feedback = false; }, "Receive no feedback");
    no_feedback->excludes(listen);
    sub.add_option("--feedback", link.feedback_csv,
                   "Write every feedback datagram to this CSV file")
        ->type_name("FILE")
        ->excludes(no_feedback);
    sub.add_flag("--quiet", link.quiet, "No table, only the summary");
}

/// Tells where records go, before the first one.
inline void printLink(const HostLink& link) {
    std::printf("sending to %s", link.getDestination().c_str());
    if (link.getListenPort() != 0) std::printf(", feedback on port %d", link.getListenPort());
    std::printf("\n");
    std::fflush(stdout);
}

inline void printWarning(const char* command, const std::string& warning) {
    if (!warning.empty())
        std::fprintf(stderr, "flight_sim %s: warning: %s\n", command, warning.c_str());
}

/// Prints what failed and answers the exit status for it.
inline int printFailure(const char* command, const std::string& message) {
    std::fprintf(stderr, "flight_sim %s: %s\n", command, message.c_str());
    return 1;
}

/// Opens what the command is for, lets `announce` tell about it, and runs it until it ends or is
/// stopped. The exit status.
template <class Task, class Options, class Announce>
int runUntilStopped(const char* command, const Options& options, const Announce& announce) {
    Task task;
    std::string message;
    if (!task.open(options, message)) return printFailure(command, message);
    const StopFlag& stop = stopOnSignals(); // until here a signal ends it at once
    announce(task);
    const bool good = task.run(stop, message) && program::endOutput(message);
    return good ? 0 : printFailure(command, message);
}

} // namespace flightsim
