// SPDX-License-Identifier: MIT
#include "OptionTable.h"
#include "manual/Manual.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace manual {

namespace {

/// Text as it stands: a backslash is none of ours, a dash is one that can be copied, and no line
/// begins with what would be a request.
std::string escape(const std::string& text) {
    std::string escaped;
    for (std::size_t i = 0; i < text.size(); i++) {
        if ((text[i] == '.' || text[i] == '\'') && (i == 0 || text[i - 1] == '\n'))
            escaped += "\\&";
        if (text[i] == '\\')
            escaped += "\\e";
        else
            escaped += text[i] == '-' ? "\\-" : std::string(1, text[i]);
    }
    return escaped;
}

std::string bold(const std::string& text) { return "\\fB" + escape(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escape(text) + "\\fR"; }

std::string capitals(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string join(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

/// Lines that are set in are examples, and stay as they are.
void writeFooter(const std::string& footer, std::ostream& out) {
    std::istringstream lines(footer);
    bool example = false;
    for (std::string line; std::getline(lines, line);) {
        const bool is_example = line.starts_with(' ');
        if (is_example != example) out << (is_example ? ".nf\n" : ".fi\n");
        example = is_example;
        out << (line.empty() ? ".PP" : escape(line)) << '\n';
    }
    if (example) out << ".fi\n";
}

void writeEntry(const Entry& entry, std::ostream& out) {
    std::vector<std::string> names;
    for (const std::string& name : entry.names)
        names.push_back(entry.positional ? italic(name) : bold(name));
    const std::string type =
        entry.words.empty() ? italic(entry.type) : bold(join(entry.words, "|"));
    out << ".TP\n" << join(names, ", ");
    if (!entry.positional && !entry.type.empty()) out << ' ' << type;
    out << '\n' << escape(entry.text);
    if (!entry.range.empty()) out << " (" << escape(entry.range) << ')';
    if (!entry.value.empty()) out << ". Default: " << escape(entry.value);
    out << ".\n";
}

void writeEntries(const Table& table, const char* macro, std::ostream& out) {
    std::string group;
    for (const Entry& entry : table.entries) {
        if (!entry.positional && entry.group != group && *macro)
            out << macro << ' ' << escape(capitals(entry.group)) << '\n';
        if (!entry.positional) group = entry.group;
        writeEntry(entry, out);
    }
}

void writeUse(const Table& table, std::ostream& out) {
    out << '[' << italic("OPTION") << "]...";
    for (const Entry& entry : table.entries)
        if (entry.positional && entry.required)
            out << ' ' << italic(entry.names[0]);
        else if (entry.positional)
            out << " [" << italic(entry.names[0]) << ']';
    out << '\n';
}

/// A command; of one that only holds others, these.
void writeCommand(const Table& command, const std::string& before, std::ostream& out) {
    const std::string name = before + ' ' + command.name;
    for (const Table& part : command.commands)
        writeCommand(part, name, out);
    if (!command.commands.empty()) return;
    out << ".SS " << bold(name) << ' ';
    writeUse(command, out);
    out << escape(command.text) << ".\n";
    writeEntries(command, "", out);
    out << ".PP\n";
    writeFooter(command.footer, out);
}

} // namespace

std::string makePage(const CLI::App& app, const Page& page) {
    const Table table = readTable(app);
    std::ostringstream out;
    out << ".TH " << escape(capitals(table.name)) << " 1 \"\" \"" << escape(page.version) << "\"\n"
        << ".SH NAME\n"
        << escape(table.name) << " \\- " << escape(page.summary) << "\n.SH SYNOPSIS\n"
        << bold(table.name) << ' ';
    if (!table.commands.empty())
        out << (table.needs_command ? italic("COMMAND") : '[' + italic("COMMAND") + ']') << ' ';
    writeUse(table, out);
    out << ".SH DESCRIPTION\n" << escape(table.text) << '\n';
    writeEntries(table, ".SH", out);
    if (!table.commands.empty()) out << ".SH COMMANDS\n";
    for (const Table& command : table.commands)
        writeCommand(command, table.name, out);
    out << ".SH NOTES\n";
    writeFooter(table.footer, out);
    if (!page.see.empty()) out << ".SH SEE ALSO\n" << escape(page.see) << '\n';
    return out.str();
}

} // namespace manual
