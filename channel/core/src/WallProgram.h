// SPDX-License-Identifier: MIT
#pragma once

struct Options;

/// A display of a wall: shows one run of the first channel after the other, until it is stopped or
/// closed. Answers the exit status. `options` are those of a command line that names the display.
int runDisplay(int argc, char** argv, const Options& options);
