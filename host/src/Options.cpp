// SPDX-License-Identifier: MIT
#include "Options.h"

#include <CLI/CLI.hpp>

bool parseOptions(int argc, char** argv, Options& options, int& exit_status) {
    CLI::App app{"The visual channel: loads a scene logic and its world, takes the flight "
                 "simulation's records over UDP, and answers every frame with what lies below the "
                 "helicopter. Ports and addresses stand in config/Logic_Nerith_Heli_Final.cfg."};
    app.option_defaults()->always_capture_default();
    app.add_option("--logic", options.logic, "Library of the scene logic")
        ->default_str("the one shipped with this program");
    app.add_option("--plugin", options.plugins, "Further engine plug-in library; may be repeated");
    app.add_option("--directory", options.directory,
                   "Folder that holds config/ and data/, to which all other paths are "
                   "relative; default: the present one");
    app.add_option("--fps", options.frame_rate,
                   "Frames per second in real time; 0: as fast as possible")
        ->check(CLI::Range(0.0, 10000.0));
    app.add_option("--step", options.step,
                   "Advance every frame by this many seconds instead of the time that has passed")
        ->check(CLI::Range(0.0, 1.0));
    app.add_option("--seconds", options.seconds, "End after this scene time; 0: run until stopped")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--frames", options.frames, "End after this many frames; 0: run until stopped")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--width", options.width, "Width of the picture, pixels")
        ->check(CLI::Range(16, 16384));
    app.add_option("--height", options.height, "Height of the picture, pixels")
        ->check(CLI::Range(16, 16384));
    app.add_option("--allow-sender", options.allow_sender,
                   "Take records from this IPv4 address only");
    app.add_option("--trace", options.trace, "Write a CSV line per frame to this file");
    app.add_flag("--quiet", options.quiet, "No status line every second");
    app.footer("Stop with Ctrl-C. Exit status: 0 after an orderly end, 1 when the logic, the world "
               "or its start marker is missing, 2 for a wrong command line.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exit_status = app.exit(error) == 0 ? 0 : 2;
        return false;
    }
    return true;
}
