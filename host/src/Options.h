// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// What the command line asks for. The defaults are those of a user who gives nothing.
struct Options {
    std::string logic;                ///< library of the scene logic; empty: the one that we ship
    std::vector<std::string> plugins; ///< further engine plug-ins, loaded before the logic
    std::string directory;            ///< to work in; empty: the present one
    double frame_rate = 60;           ///< frames per second in real time; 0: as fast as possible
    double step = 0; ///< seconds that every frame advances the scene; 0: the time that has passed
    double seconds = 0;             ///< of scene time until the end; 0: until stopped
    int frames = 0;                 ///< until the end; 0: until stopped
    int width = 1280, height = 720; ///< of the picture
    std::string allow_sender;       ///< whose records are taken; empty: anybody's
    std::string trace;              ///< CSV file with a line per frame; empty: none
    bool quiet = false;             ///< no status line
};

/// Reads the command line. False when the program is to end at once with `exit_status`: after
/// --help, or after a mistake, which has been explained.
bool parseOptions(int argc, char** argv, Options& options, int& exit_status);
