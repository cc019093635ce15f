// SPDX-License-Identifier: MIT
#include "Findings.h"

#include <algorithm>
#include <regex>

namespace world_commands {

void Findings::addLine(std::string_view line) {
    static const std::regex OPERATION("^[A-Za-z_]+(::[A-Za-z_]+)*: ?");
    add(std::regex_replace(std::string(line), OPERATION, "",
                           std::regex_constants::format_first_only));
}

void Findings::add(std::string text) {
    if (std::ranges::find(m_texts, text) == m_texts.end()) m_texts.push_back(std::move(text));
}

void Findings::locate(const std::string& text, const std::string& place, Where where) {
    static const std::regex PLACED(":[0-9]+(:|\\)| )");
    for (std::string& finding : m_texts) {
        const std::size_t at = finding.find(text);
        if (at == std::string::npos || (where == Where::beginning && at > 0)) continue;
        if (!std::regex_search(finding, PLACED)) finding = place + ": " + finding;
    }
}

bool Findings::mention(std::string_view text) const {
    return std::ranges::any_of(m_texts, [text](const std::string& finding) {
        return finding.find(text) != std::string::npos;
    });
}

} // namespace world_commands
