// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>

/// What the subcommands share: checked numbers and the form of a message.
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

inline constexpr double max_seconds = 366.0 * 86400; ///< as long as a recording may be

inline void printWarning(const char* command, const std::string& warning) {
    if (!warning.empty())
        std::fprintf(stderr, "flight_sim %s: warning: %s\n", command, warning.c_str());
}

/// Prints what failed and answers the exit status for it.
inline int printFailure(const char* command, const std::string& message) {
    std::fprintf(stderr, "flight_sim %s: %s\n", command, message.c_str());
    return 1;
}

} // namespace flightsim
