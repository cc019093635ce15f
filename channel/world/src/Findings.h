// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace world_commands {

/// What is wrong with a world, in the order in which it was found; each once.
class Findings {
public:
    /// A line of the log, without the operation that says it.
    void addLine(std::string_view line);
    void add(std::string text);
    enum class Where { anywhere, beginning };
    /// Puts the place, PATH:LINE, before those that hold the text there and name no place in a
    /// file.
    void locate(const std::string& text, const std::string& place, Where where = Where::anywhere);
    /// Takes one out that says more elsewhere.
    void drop(const std::string& finding) { std::erase(m_texts, finding); }
    /// Whether one of them holds the text.
    bool mention(std::string_view text) const;
    const std::vector<std::string>& get() const { return m_texts; }

private:
    std::vector<std::string> m_texts;
};

} // namespace world_commands
