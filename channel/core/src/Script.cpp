// SPDX-License-Identifier: MIT
#include "Script.h"

#include "ig/ui/KeyCode.h"
#include "program/InputFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <yaml-cpp/yaml.h>

/// The file is walked once from the top; the first fault is thrown up to `parseScript` and leaves
/// it as a message.
namespace {

using Kind = ScriptCommand::Kind;

struct Fault {
    int line, column; ///< from 0
    std::string what;
};

[[noreturn]] void fail(const YAML::Mark& mark, const std::string& what) {
    throw Fault{mark.line, mark.column, what};
}

constexpr double LONGEST = 86400;  ///< s
constexpr double FARTHEST = 10000; ///< pixels
constexpr double MOST_NOTCHES = 100;

double readNumber(const YAML::Node& node, const std::string& what, double least, double greatest) {
    double value = 0;
    if (node.IsScalar() && YAML::convert<double>::decode(node, value) && value >= least &&
        value <= greatest)
        return value;
    std::array<char, 64> range;
    std::snprintf(range.data(), range.size(), " must be a number from %g to %g", least, greatest);
    fail(node.Mark(), what + range.data());
}

std::string readText(const YAML::Node& node, const std::string& what) {
    if (!node.IsScalar() || node.Scalar().empty()) fail(node.Mark(), what + " needs a text");
    return node.Scalar();
}

int keyOf(const std::string& name) {
    static const std::pair<const char*, int> NAMES[] = {{"Space", ig::KEY_SPACE},
                                                        {"Escape", ig::KEY_ESCAPE},
                                                        {"Tab", ig::KEY_TAB},
                                                        {"Return", ig::KEY_RETURN},
                                                        {"Backspace", ig::KEY_BACKSPACE},
                                                        {"Delete", ig::KEY_DELETE},
                                                        {"Home", ig::KEY_HOME},
                                                        {"End", ig::KEY_END},
                                                        {"Left", ig::KEY_LEFT},
                                                        {"Right", ig::KEY_RIGHT},
                                                        {"Up", ig::KEY_UP},
                                                        {"Down", ig::KEY_DOWN},
                                                        {"Shift", ig::KEY_SHIFT},
                                                        {"Ctrl", ig::KEY_CTRL},
                                                        {"Alt", ig::KEY_ALT}};
    for (const auto& [known, key] : NAMES)
        if (name == known) return key;
    for (int i = 0; i < 12; i++)
        if (name[0] == 'F' && name.substr(1) == std::to_string(i + 1)) return ig::KEY_F1 + i;
    const bool plain = name.size() == 1 && name[0] > ' ' && name[0] <= '~' &&
                       (name[0] < 'A' || name[0] > 'Z'); // those are Shift and a small letter
    return plain ? name[0] : -1;
}

/// "g", "F1", "Shift+t".
std::vector<int> readKeys(const YAML::Node& node) {
    const std::string text = readText(node, "key");
    std::vector<int> keys;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('+', begin + 1), text.size());
        const std::string name = text.substr(begin, end - begin);
        keys.push_back(keyOf(name));
        if (keys.back() < 0)
            fail(node.Mark(), "there is no key \"" + name +
                                  "\": a small letter, digit or sign, F1 to F12, Return, Escape, "
                                  "Tab, Space, Backspace, Delete, Home, End, Left, Right, Up, "
                                  "Down, and Shift+, Ctrl+ or Alt+ before one");
        begin = end + 1;
    }
    return keys;
}

void readWay(const YAML::Node& node, ScriptCommand& command) {
    if (!node.IsSequence() || node.size() != 2)
        fail(node.Mark(), "drag needs [right, down] in pixels");
    command.x = static_cast<float>(readNumber(node[0], "drag", -FARTHEST, FARTHEST));
    command.y = static_cast<float>(readNumber(node[1], "drag", -FARTHEST, FARTHEST));
}

int readNotches(const YAML::Node& node) {
    const double notches = readNumber(node, "wheel", -MOST_NOTCHES, MOST_NOTCHES);
    const int whole = static_cast<int>(notches);
    if (whole == 0 || whole != notches) fail(node.Mark(), "wheel needs whole notches, up positive");
    return whole;
}

/// The picture's name becomes that of a file beside the others.
std::string readName(const YAML::Node& node) {
    std::string name = readText(node, "screenshot");
    if (name.find('/') != std::string::npos || name[0] == '.')
        fail(node.Mark(), "screenshot needs a plain name, without folder");
    return name;
}

int readButton(const YAML::Node& node) {
    const std::string name = readText(node, "button");
    if (name != "left" && name != "right") fail(node.Mark(), "button must be left or right");
    return name == "right";
}

constexpr std::pair<const char*, Kind> KINDS[] = {
    {"click", Kind::click}, {"key", Kind::key},     {"type", Kind::type},
    {"drag", Kind::drag},   {"wheel", Kind::wheel}, {"screenshot", Kind::screenshot},
    {"quit", Kind::quit}};

void readKind(const YAML::Node& node, Kind kind, ScriptCommand& command) {
    command.kind = kind;
    switch (kind) {
    case Kind::click:
    case Kind::type:
        command.text = readText(node, kind == Kind::click ? "click" : "type");
        break;
    case Kind::key:
        command.keys = readKeys(node);
        break;
    case Kind::drag:
        readWay(node, command);
        break;
    case Kind::wheel:
        command.notches = readNotches(node);
        break;
    case Kind::screenshot:
        command.text = readName(node);
        break;
    case Kind::quit:
        break;
    }
}

ScriptCommand readCommand(const YAML::Node& node) {
    if (!node.IsMap()) fail(node.Mark(), "a command must be a map such as {at: 2, key: F1}");
    ScriptCommand command;
    command.line = node.Mark().line + 1;
    std::set<std::string> seen;
    int kinds = 0;
    for (const auto& entry : node) {
        const std::string name = entry.first.IsScalar() ? entry.first.Scalar() : "";
        const YAML::Node& value = entry.second;
        if (!seen.insert(name).second) fail(entry.first.Mark(), "\"" + name + "\" is given twice");
        const auto* kind = std::find_if(std::begin(KINDS), std::end(KINDS),
                                        [&](const auto& k) { return name == k.first; });
        if (kind != std::end(KINDS)) {
            kinds++;
            readKind(value, kind->second, command);
        } else if (name == "at") {
            command.at = readNumber(value, name, 0, LONGEST);
        } else if (name == "hold" || name == "over") {
            command.duration = readNumber(value, name, 0, LONGEST);
        } else if (name == "button") {
            command.button = readButton(value);
        } else {
            fail(entry.first.Mark(), "a command has no key \"" + name +
                                         "\": at; click, key, type, drag, wheel, screenshot or "
                                         "quit; hold; over, button");
        }
    }
    if (!seen.contains("at")) fail(node.Mark(), "a command needs \"at\", its time in seconds");
    if (kinds != 1)
        fail(node.Mark(), "a command does one thing: click, key, type, drag, wheel, "
                          "screenshot or quit");
    const bool holds = command.kind == Kind::click || command.kind == Kind::key;
    const bool drags = command.kind == Kind::drag;
    if ((seen.contains("hold") && !holds) ||
        ((seen.contains("over") || seen.contains("button")) && !drags))
        fail(node.Mark(), "hold belongs to click and key, over and button belong to drag");
    return command;
}

/// An operator has one mouse.
void checkMouse(const Script& script) {
    constexpr double ROUNDING = 1e-9;
    double busy_until = 0;
    int busy_line = 0;
    for (const ScriptCommand& command : script.commands) {
        if (!command.usesMouse()) continue;
        if (command.at < busy_until - ROUNDING)
            throw Fault{command.line - 1, 0,
                        "the mouse is still held by the command in line " +
                            std::to_string(busy_line)};
        busy_until = command.at + (command.kind == Kind::wheel ? 0 : command.duration);
        busy_line = command.line;
    }
}

Script readDocument(const YAML::Node& root) {
    if (!root.IsMap()) fail(root.Mark(), "a script must be a map with \"commands\"");
    Script script;
    YAML::Node commands;
    for (const auto& entry : root) {
        const std::string name = entry.first.IsScalar() ? entry.first.Scalar() : "";
        if (name == "commands") {
            commands.reset(entry.second);
        } else if (name == "from") {
            const std::string from = readText(entry.second, name);
            if (from != "start" && from != "record")
                fail(entry.second.Mark(), "from must be start or record");
            script.from_start = from == "start";
        } else {
            fail(entry.first.Mark(), "a script has no key \"" + name + "\": from, commands");
        }
    }
    if (!commands.IsSequence()) fail(root.Mark(), "a script needs a list of \"commands\"");
    for (const YAML::Node& command : commands)
        script.commands.push_back(readCommand(command));
    std::ranges::stable_sort(script.commands, {}, &ScriptCommand::at);
    checkMouse(script);
    return script;
}

/// An empty file has a mark of its own that is nowhere; the beginning stands for it.
std::string messageAt(const std::string& path, const Fault& fault) {
    return path + ":" + std::to_string(std::max(fault.line, 0) + 1) + ":" +
           std::to_string(std::max(fault.column, 0) + 1) + ": " + fault.what;
}

} // namespace

bool readScript(const std::string& path, Script& script, std::string& message) {
    constexpr std::size_t LARGEST = 1 << 20; // bytes
    const std::string why = program::whyUnreadable(path);
    if (!why.empty()) {
        message = "\"" + path + "\": " + why;
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    std::string content(LARGEST + 1, '\0');
    file.read(content.data(), content.size());
    if (file.bad() || (!file.eof() && file.fail())) {
        message = "\"" + path + "\": " + std::strerror(errno);
        return false;
    }
    content.resize(file.gcount());
    if (content.size() <= LARGEST) return parseScript(content, path, script, message);
    message = "\"" + path + "\" is larger than a script may be: 1 MiB";
    return false;
}

bool parseScript(const std::string& content, const std::string& path, Script& script,
                 std::string& message) {
    try {
        script = readDocument(YAML::Load(content));
        script.path = path;
        return true;
    } catch (const Fault& fault) {
        message = messageAt(path, fault);
    } catch (const YAML::Exception& error) {
        message = messageAt(path, {error.mark.line, error.mark.column, error.msg});
    }
    return false;
}
