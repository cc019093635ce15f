// SPDX-License-Identifier: MIT
#pragma once

struct Options;

/// Where nobody named the folder to work in and the present one isn't it: the one that was
/// installed or checked out with the program, with one line that tells it. What the user names by
/// relative paths stays in the folder that he is in; so do the pictures that he takes. To be called
/// when all options are read, and before anything is opened. Without such a folder nothing changes:
/// the world will be missed.
void settlePaths(Options& options);
