// SPDX-License-Identifier: MIT
#include "GltfTree.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

namespace ig {

namespace {

constexpr std::size_t DEEPEST = 500;     ///< brackets, nodes below nodes
constexpr double MOST_NODES = 1'000'000; ///< copies included

/// What the file says of its nodes, by their numbers.
struct Tree {
    std::vector<std::vector<std::size_t>> children;
    std::vector<std::size_t> roots; ///< of all its scenes
};

/// The text of a glTF file; of a binary one its first chunk.
std::string readText(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::size_t begin = 0, size = file ? static_cast<std::size_t>(file.tellg()) : 0;
    char head[20] = {};
    if (size >= sizeof head) {
        file.seekg(0);
        file.read(head, sizeof head);
    }
    if (std::memcmp(head, "glTF", 4) == 0) {
        std::uint32_t length = 0;
        std::memcpy(&length, head + 12, sizeof length);
        begin = sizeof head;
        size = std::min<std::size_t>(length, size - begin);
    }
    std::string text(size, '\0');
    file.seekg(begin);
    file.read(text.data(), size);
    return text;
}

/// Walks over the file's text and gathers `nodes[i].children[]` and `scenes[i].nodes[]`. Anything
/// else, and whether the text is well formed, is the importer's business.
class Walk {
public:
    explicit Walk(std::string_view text) : m_text(text) {}

    /// False when brackets are nested too deep.
    bool run(Tree& tree) {
        for (; m_at < m_text.size(); m_at++) {
            const char c = m_text[m_at];
            if (c == '"') {
                m_key = takeString();
            } else if (c == '{' || c == '[') {
                if (m_path.size() >= DEEPEST) return false;
                m_path.push_back(m_key);
                m_key = {};
                if (isIn({"", "nodes", ""})) tree.children.emplace_back();
            } else if (c == '}' || c == ']') {
                if (!m_path.empty()) m_path.pop_back();
                m_key = {};
            } else if (c == ',') {
                m_key = {};
            } else if (std::isdigit(static_cast<unsigned char>(c))) {
                const std::size_t number = takeNumber();
                if (isIn({"", "nodes", "", "children"})) tree.children.back().push_back(number);
                if (isIn({"", "scenes", "", "nodes"})) tree.roots.push_back(number);
            }
        }
        return true;
    }

private:
    /// Whether the open brackets have these keys; what stands in a list has none.
    bool isIn(std::initializer_list<std::string_view> keys) const {
        return std::ranges::equal(keys, m_path);
    }
    std::string_view takeString() {
        const std::size_t begin = ++m_at;
        while (m_at < m_text.size() && m_text[m_at] != '"')
            m_at += m_text[m_at] == '\\' ? 2 : 1;
        return m_text.substr(std::min(begin, m_text.size()), m_at - begin);
    }
    std::size_t takeNumber() {
        std::size_t number = 0;
        for (; m_at < m_text.size() && std::isdigit(static_cast<unsigned char>(m_text[m_at]));
             m_at++)
            number = std::min<std::size_t>(number * 10 + (m_text[m_at] - '0'), UINT32_MAX);
        m_at--;
        return number;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::string_view m_key;               ///< read last, of what comes next
    std::vector<std::string_view> m_path; ///< keys of the open brackets
};

/// Depth and size of each node's tree, children before parents, without recursion.
std::string whyUnfit(const Tree& tree) {
    const auto& children = tree.children;
    enum class State { fresh, open, done };
    std::vector<State> states(children.size(), State::fresh);
    std::vector<std::size_t> depth(children.size(), 1);
    std::vector<double> total(children.size(), 1);
    std::vector<std::pair<std::size_t, std::size_t>> open; // node, next of its children
    for (std::size_t root = 0; root < children.size(); root++) {
        if (states[root] == State::fresh) open.emplace_back(root, 0);
        while (!open.empty()) {
            auto& [node, next] = open.back();
            states[node] = State::open;
            if (next < children[node].size()) {
                const std::size_t child = children[node][next++];
                if (child >= children.size()) continue;
                if (states[child] == State::open)
                    return "node " + std::to_string(child) + " is below itself";
                if (states[child] == State::fresh) open.emplace_back(child, 0);
                continue;
            }
            for (const std::size_t child : children[node]) {
                if (child >= children.size()) continue;
                depth[node] = std::max(depth[node], depth[child] + 1);
                total[node] += total[child];
            }
            if (depth[node] > DEEPEST)
                return "nodes below nodes are nested more than " + std::to_string(DEEPEST) +
                       " deep";
            states[node] = State::done;
            open.pop_back();
        }
    }
    double all = 0;
    for (const std::size_t root : tree.roots)
        if (root < total.size()) all += total[root];
    return all > MOST_NODES ? "nodes that share their children make more than a million" : "";
}

} // namespace

std::string whyUnfit(const std::string& path) {
    const std::string text = readText(path);
    Tree tree;
    if (!Walk(text).run(tree))
        return "brackets are nested more than " + std::to_string(DEEPEST) + " deep";
    return whyUnfit(tree);
}

} // namespace ig
