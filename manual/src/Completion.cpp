// SPDX-License-Identifier: MIT

// A completion script is the table in the shell's words. A command's options are offered once it
// stands on the line. Values that are words or files are offered as such; of others nothing is.

#include "OptionTable.h"
#include "manual/Manual.h"

#include <algorithm>
#include <sstream>

namespace manual {

namespace {

std::string joinWords(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string namesOf(const Table& table) {
    std::vector<std::string> names;
    for (const Entry& entry : table.entries)
        if (!entry.positional) names.insert(names.end(), entry.names.begin(), entry.names.end());
    return joinWords(names);
}

std::string commandsOf(const Table& table) {
    std::vector<std::string> names;
    for (const Table& command : table.commands)
        names.push_back(command.name);
    return joinWords(names);
}

/// The program itself or one of its commands, with the words that lead there.
struct Part {
    const Table* table;
    std::vector<std::string> path; ///< empty: the program itself
};

/// The program itself, its commands, and theirs.
std::vector<Part> listParts(const Table& table, const std::vector<std::string>& path = {}) {
    std::vector<Part> parts = {{&table, path}};
    for (const Table& command : table.commands) {
        std::vector<std::string> way = path;
        way.push_back(command.name);
        const std::vector<Part> below = listParts(command, way);
        parts.insert(parts.end(), below.begin(), below.end());
    }
    return parts;
}

/// As one word of a shell, in single quotes; `quote` stands for one of those in the text.
std::string quoteWord(const std::string& text, const char* quote) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? quote : std::string(1, c);
    return quoted + '\'';
}

// ------------------------------------------------------------------ bash

const char* const BASH_HEAD =
    R"(    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= word
    if [[ $current == = ]]; then
        current=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD-2]}
    fi
)";

const char* findBashOffer(const Entry& entry) {
    switch (entry.offers) {
    case Value::file:
        return "return ;; # its default: files\n";
    case Value::folder:
        return "compopt -o dirnames +o default +o bashdefault; return ;;\n";
    default:
        return "compopt +o default +o bashdefault; return ;;\n";
    }
}

void writeBashValues(const Table& table, const std::string& command, std::ostream& out) {
    for (const Entry& entry : table.entries) {
        if (entry.positional || entry.offers == Value::none) continue;
        std::string pattern;
        for (const std::string& name : entry.names)
            pattern += (pattern.empty() ? "'" : " | '") + command + ' ' + name + '\'';
        out << "    " << pattern << ") ";
        if (entry.offers == Value::words)
            out << "COMPREPLY=($(compgen -W '" << joinWords(entry.words)
                << "' -- \"$current\")); return ;;\n";
        else
            out << findBashOffer(entry);
    }
}

// ------------------------------------------------------------------ zsh

/// In zsh's descriptions of options brackets and colons have a meaning.
std::string quoteZsh(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string describeZshValue(const Entry& entry) {
    const std::string type = ':' + quoteZsh(entry.type) + ':';
    switch (entry.offers) {
    case Value::none:
        return "";
    case Value::words:
        return type + '(' + joinWords(entry.words) + ')';
    case Value::file:
        return type + "_files";
    case Value::folder:
        return type + "_files -/";
    case Value::other:
        break;
    }
    return type;
}

void writeZshEntries(const Table& table, const char* indent, std::ostream& out) {
    out << indent << "_arguments";
    int place = 0;
    for (const Entry& entry : table.entries) {
        if (entry.positional)
            out << " \\\n"
                << indent << "  "
                << quoteWord(std::to_string(++place) + describeZshValue(entry), "'\\''");
        else
            for (const std::string& name : entry.names)
                out << " \\\n"
                    << indent << "  "
                    << quoteWord(name + '[' + quoteZsh(entry.text) + ']' + describeZshValue(entry),
                                 "'\\''");
    }
}

/// What follows a command's name is a line of its own to zsh.
void writeZsh(const Table& table, const std::string& indent, std::ostream& out) {
    writeZshEntries(table, indent.c_str(), out);
    if (table.commands.empty()) {
        out << '\n';
        return;
    }
    out << " \\\n"
        << indent << "  '1:COMMAND:(" << commandsOf(table)
        << ")' '*::argument:->arguments' && return\n"
        << indent << "case $line[1] in\n";
    for (const Table& command : table.commands) {
        out << indent << command.name << ")\n";
        writeZsh(command, indent + "  ", out);
        out << indent << " ;;\n";
    }
    out << indent << "esac\n";
}

// ------------------------------------------------------------------ fish

/// The condition under which what the part takes is offered: its words stand on the line, and none
/// of its commands.
std::string whenFish(const Part& part) {
    std::string when;
    for (const std::string& word : part.path)
        when += (when.empty() ? "" : "; and ") + ("__fish_seen_subcommand_from " + word);
    const std::string commands = commandsOf(*part.table);
    if (!commands.empty())
        when += std::string(when.empty() ? "" : "; and ") + "not __fish_seen_subcommand_from " +
                commands;
    return when.empty() ? when : " -n '" + when + '\'';
}

void writeFishEntry(const std::string& begin, const Entry& entry, std::ostream& out) {
    out << begin;
    for (const std::string& name : entry.names)
        out << (name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1));
    if (entry.offers == Value::file) out << " -rF";
    if (entry.offers == Value::folder) out << " -xa '(__fish_complete_directories)'";
    if (entry.offers == Value::words) out << " -xa " << quoteWord(joinWords(entry.words), "\\'");
    if (entry.offers == Value::other) out << " -x";
    out << " -d " << quoteWord(entry.text, "\\'") << '\n';
}

} // namespace

std::string makeBashCompletion(const CLI::App& app) {
    const Table table = readTable(app);
    const std::vector<Part> parts = listParts(table);
    std::ostringstream out;
    out << "# bash completion of " << table.name << '\n'
        << '_' << table.name << "() {\n"
        << BASH_HEAD << "    COMPREPLY=()\n";
    if (parts.size() > 1) {
        std::string pattern;
        for (const Part& part : parts)
            if (!part.path.empty())
                pattern += (pattern.empty() ? "'" : " | '") +
                           std::string(part.path.size() > 1 ? "" : " ") + joinWords(part.path) +
                           '\'';
        out << "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
            << "        case \"$command $word\" in " << pattern
            << ") command=${command:+$command }$word ;; esac\n"
            << "    done\n";
    }
    out << "    case \"$command $before\" in\n";
    for (const Part& part : parts)
        writeBashValues(*part.table, joinWords(part.path), out);
    out << "    esac\n    case \"$command $current\" in\n";
    for (const Part& part : parts)
        out << "    '" << joinWords(part.path) << " -'*) COMPREPLY=($(compgen -W '"
            << namesOf(*part.table) << "' -- \"$current\")) ;;\n";
    for (const Part& part : parts)
        if (!part.table->commands.empty())
            out << "    '" << joinWords(part.path) << " '*) COMPREPLY=($(compgen -W '"
                << commandsOf(*part.table)
                << "' -- \"$current\")); compopt +o default +o bashdefault ;;\n";
    out << "    esac\n}\ncomplete -o bashdefault -o default -F _" << table.name << ' ' << table.name
        << '\n';
    return out.str();
}

std::string makeZshCompletion(const CLI::App& app) {
    const Table table = readTable(app);
    std::ostringstream out;
    out << "#compdef " << table.name << '\n';
    if (!table.commands.empty())
        out << "local context state state_descr line\ntypeset -A opt_args\n";
    writeZsh(table, "", out);
    return out.str();
}

std::string makeFishCompletion(const CLI::App& app) {
    const Table table = readTable(app);
    const std::string begin = "complete -c " + table.name;
    std::ostringstream out;
    out << "# fish completion of " << table.name << '\n' << begin << " -f\n";
    for (const Part& part : listParts(table)) {
        const std::string when = whenFish(part);
        for (const Table& command : part.table->commands)
            out << begin << when << " -a " << command.name << " -d "
                << quoteWord(command.text, "\\'") << '\n';
        for (const Entry& entry : part.table->entries)
            if (entry.positional)
                out << begin << when << " -F\n";
            else
                writeFishEntry(begin + when, entry, out);
    }
    return out.str();
}

} // namespace manual
