// SPDX-License-Identifier: MIT
#pragma once

/// The whole of `visual_channel`: reads the command line, loads logic and world, runs the frames
/// and ends in order. The result is the exit status: 0 after an orderly end, 1 when something
/// needed is missing, could not be done or not be written, 2 for a wrong command line; each has
/// been explained.
int runChannel(int argc, char** argv);
