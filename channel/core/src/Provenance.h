// SPDX-License-Identifier: MIT
#pragma once

#include "Settings.h"
#include "frames/FrameLog.h"

struct Options;

/// What a log says of the run that it is of: program, options, picture, and every file below
/// config/ and data/ with its digest, links followed. Of files of more than 1 MiB the digest is
/// that of their size and of their first and last 64 KiB; a folder with more than 500 files in it
/// and below stands as one entry, "folder/". The settings file is left out: what holds of it is
/// among the options.
frames::LogHead describeRun(const Options& options, float density);

/// The compiler, and the libraries that frames depend on, each with its version.
std::vector<std::string> listLibraries();

/// Logs where this run has another program or other files than the one that a log is of: a line for
/// the program, the font and each of the two folders. `name`: of that log.
void tellDifferences(const frames::LogHead& log, const frames::LogHead& now, const char* name);

/// What a log's head says in place of a settings file: picture size and density go into the
/// options, the rest is answered, as of that `place`.
std::vector<Setting> takeLogOptions(const frames::LogHead& head, const std::string& place,
                                    Options& options);
