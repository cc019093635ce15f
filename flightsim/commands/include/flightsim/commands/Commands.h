// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace flightsim {

/// The subcommand that the command line asks for, ready to run; its result is the exit status:
/// 0 done, 1 failed with one message on standard error.
using Command = std::function<int()>;

/// Each adds a subcommand with its options and help to `app`. Parsing that subcommand sets
/// `command`, which must outlive the parsing.
void addFly(CLI::App& app, Command& command);
void addReplay(CLI::App& app, Command& command);
void addSend(CLI::App& app, Command& command);
void addMonitor(CLI::App& app, Command& command);
void addRecord(CLI::App& app, Command& command);
void addInfo(CLI::App& app, Command& command);
void addCut(CLI::App& app, Command& command);
void addDump(CLI::App& app, Command& command);
void addConvert(CLI::App& app, Command& command);
void addProbe(CLI::App& app, Command& command);

} // namespace flightsim
