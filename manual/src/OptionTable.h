// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace manual {

/// What a shell can offer as an option's value.
enum class Value { none, words, file, folder, other };

/// An option, or what stands on the command line without a name.
struct Entry {
    std::vector<std::string> names; ///< with their dashes; of a positional one its only name
    bool positional = false;
    bool required = false;
    std::string group; ///< heading in the program's help
    std::string type;  ///< what stands for the value, such as HZ or NUMBER; empty: none
    std::string range; ///< what it may be, as the program tells it; empty: anything
    std::string text;  ///< what it is for
    std::string value; ///< by default; empty: none
    Value offers = Value::none;
    std::vector<std::string> words; ///< that it may be
};

/// What is known of a program or of one of its commands.
struct Table {
    std::string name; ///< of the command; of the program
    std::string text, footer;
    std::vector<Entry> entries; ///< in the order of help
    std::vector<Table> commands;
    bool needs_command = false;
};

Table readTable(const CLI::App& app);

} // namespace manual
