// SPDX-License-Identifier: MIT
#include "LogHead.h"

#include <charconv>
#include <cstdio>
#include <sstream>
#include <string_view>

namespace frames {

namespace {

std::string escaped(const std::string& value) {
    std::string text;
    for (const char c : value)
        text += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : std::string(1, c);
    return text;
}

std::string unescaped(std::string_view text) {
    std::string value;
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text[i] != '\\' || ++i == text.size())
            value += text[std::min(i, text.size() - 1)];
        else
            value += text[i] == 'n' ? '\n' : text[i];
    }
    return value;
}

/// A terminal acts on control characters, and what a head says is told there.
bool hasControl(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); i++) {
        const auto c = static_cast<unsigned char>(text[i]);
        const auto before = static_cast<unsigned char>(i > 0 ? text[i - 1] : 0);
        if (c < 0x20 || c == 0x7f || (before == 0xc2 && c < 0xa0)) return true; // U+0080 to U+009F
    }
    return false;
}

/// Takes a number from the front of a text, and the space behind it.
template <class T>
bool takeNumber(std::string_view& text, T& value, auto... format) {
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, format...);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (text.starts_with(' ')) text.remove_prefix(1);
    return true;
}

bool readLine(std::string_view key, std::string_view value, LogHead& head) {
    if (key == "program")
        head.program = unescaped(value);
    else if (key == "start")
        return takeNumber(value, head.start_wall_ns) && value.empty();
    else if (key == "size")
        return takeNumber(value, head.width) && takeNumber(value, head.height) && value.empty() &&
               isPicture(head.width, head.height, 1);
    else if (key == "density")
        return takeNumber(value, head.density) && value.empty() && isPicture(1, 1, head.density);
    else if (key == "option")
        head.options.push_back(unescaped(value));
    else if (key == "library")
        head.libraries.push_back(unescaped(value));
    else if (key == "file") {
        LoggedFile& file = head.files.emplace_back();
        if (!takeNumber(value, file.digest, 16)) return false;
        file.path = unescaped(value);
    } else
        return false;
    return true;
}

} // namespace

std::string writeHead(const LogHead& head) {
    char number[64];
    std::string text = LOG_MAGIC + std::to_string(LOG_VERSION) + '\n';
    const auto line = [&text](const char* key, const std::string& value) {
        text += key + (": " + escaped(value) + '\n');
    };
    line("program", head.program);
    line("start", std::to_string(head.start_wall_ns));
    line("size", std::to_string(head.width) + ' ' + std::to_string(head.height));
    std::snprintf(number, sizeof number, "%.9g", static_cast<double>(head.density));
    line("density", number);
    for (const std::string& option : head.options)
        line("option", option);
    for (const LoggedFile& file : head.files) {
        std::snprintf(number, sizeof number, "%016llx ",
                      static_cast<unsigned long long>(file.digest));
        line("file", number + file.path);
    }
    for (const std::string& library : head.libraries)
        line("library", library);
    return text + '\n';
}

bool readHead(const std::string& text, LogHead& head, std::string& message) {
    head = {};
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line) && !line.empty(); number++) {
        if (hasControl(unescaped(line))) {
            message = "line " + std::to_string(number) + " of the head holds a control character";
            return false;
        }
        if (number == 1) {
            if (line == LOG_MAGIC + std::to_string(LOG_VERSION)) continue;
            message = "is of version " + line.substr(sizeof LOG_MAGIC - 1) +
                      ", of which this program knows nothing: it reads version " +
                      std::to_string(LOG_VERSION);
            return false;
        }
        const std::size_t colon = line.find(": ");
        if (colon != std::string::npos &&
            readLine(line.substr(0, colon), std::string_view(line).substr(colon + 2), head))
            continue;
        message = "line " + std::to_string(number) + " of the head, \"" + line.substr(0, 80) +
                  "\", is none that a head has";
        return false;
    }
    return true;
}

} // namespace frames
