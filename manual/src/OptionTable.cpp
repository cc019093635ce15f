// SPDX-License-Identifier: MIT
#include "OptionTable.h"

#include <CLI/CLI.hpp>

namespace manual {

namespace {

Value findOffer(const Entry& entry) {
    if (entry.type.empty()) return Value::none;
    if (!entry.words.empty()) return Value::words;
    if (entry.type == "FOLDER") return Value::folder;
    // A positional text is a file in all of our programs.
    if (entry.type == "FILE" || (entry.positional && entry.type == "TEXT")) return Value::file;
    return Value::other;
}

/// "TEXT:auto|gl|null": the type, and what its checks say of it.
void readType(const std::string& type, Entry& entry) {
    const std::size_t colon = type.find(':');
    const bool port = type == "HOST:PORT"; // a name of its own
    entry.type = type.substr(0, port ? std::string::npos : colon);
    if (port || colon == std::string::npos) return;
    entry.range = type.substr(colon + 1);
    if (entry.range.find('|') == std::string::npos) return;
    entry.words = CLI::detail::split(entry.range, '|');
    entry.range.clear();
}

Entry readOption(const CLI::Option& option) {
    Entry entry;
    entry.positional = option.get_positional();
    if (entry.positional) entry.names.push_back(option.get_name(true));
    for (const std::string& name : option.get_snames())
        entry.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        entry.names.push_back("--" + name);
    entry.required = option.get_required();
    entry.group = option.get_group();
    entry.text = option.get_description();
    if (option.get_expected_min() > 0) {
        readType(option.get_type_name(), entry);
        entry.value = option.get_default_str();
        if (entry.value == "[]") entry.value.clear();
    }
    entry.offers = findOffer(entry);
    return entry;
}

} // namespace

Table readTable(const CLI::App& app) {
    Table table;
    table.name = app.get_name();
    table.text = app.get_description();
    table.footer = app.get_footer();
    table.needs_command = app.get_require_subcommand_min() > 0;
    for (const CLI::Option* option : app.get_options())
        if (!option->get_group().empty()) table.entries.push_back(readOption(*option));
    for (const CLI::App* command : app.get_subcommands({}))
        if (!command->get_group().empty()) table.commands.push_back(readTable(*command));
    return table;
}

} // namespace manual
