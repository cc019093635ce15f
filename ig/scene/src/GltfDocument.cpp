// SPDX-License-Identifier: MIT
#include "GltfDocument.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <initializer_list>

namespace ig {

namespace {

// The importer takes some 2 kB for the smallest thing in braces, and 16 bytes for any value.
constexpr std::size_t MOST_THINGS = std::size_t{1} << 18, MOST_VALUES = std::size_t{1} << 23;

/// Walks over the text and hands on what it meets by the keys that lead there. No recursion, and no
/// tree of its own: the text may be hostile.
class Walk {
public:
    Walk(std::string_view text, GltfDocument& document) : m_text(text), m_document(document) {}

    std::string run(std::size_t deepest) {
        std::size_t things = 0, values = 0;
        for (; m_at < m_text.size(); m_at++) {
            const char c = m_text[m_at];
            things += c == '{';
            values += c == ',' || c == '[';
            if (things > MOST_THINGS || values > MOST_VALUES)
                return "it lists more than " + std::to_string(MOST_THINGS) + " things or " +
                       std::to_string(MOST_VALUES) + " values: export fewer, or in parts";
            if (c == '"') {
                takeText(readString());
            } else if (c == '{' || c == '[') {
                if (m_path.size() >= deepest)
                    return "brackets are nested more than " + std::to_string(deepest) + " deep";
                open(c == '[');
            } else if (c == '}' || c == ']') {
                if (!m_path.empty()) m_path.pop_back();
                m_key.clear();
            } else if (c == ',') {
                m_key.clear();
            } else if (c == '-' || std::isdigit(static_cast<unsigned char>(c))) {
                takeNumber(readNumber());
            }
        }
        return {};
    }

private:
    struct Step {
        std::string key; ///< of the bracket; what stands in a list has none
        bool is_list;
    };

    /// Whether the open brackets have these keys.
    bool isIn(std::initializer_list<std::string_view> keys) const {
        return std::ranges::equal(keys, m_path, {}, {}, &Step::key);
    }

    void open(bool is_list) {
        m_path.push_back({std::exchange(m_key, {}), is_list});
        if (is_list || m_path.size() < 3) return;
        GltfDocument& d = m_document;
        if (isIn({"", "nodes", ""})) d.children.emplace_back();
        if (isIn({"", "buffers", ""})) d.buffers.push_back(GltfDocument::NONE);
        if (isIn({"", "bufferViews", ""})) d.views.emplace_back();
        if (isIn({"", "accessors", ""})) d.accessors.emplace_back();
        if (isIn({"", "accessors", "", "sparse"})) d.accessors.back().has_sparse = true;
        if (isIn({"", "meshes", "", "primitives", ""})) d.primitives.emplace_back();
        if (isIn({"", "skins", ""})) d.skins.emplace_back();
    }

    void takeText(std::string text) {
        const bool is_key = !m_path.empty() && !m_path.back().is_list && m_key.empty();
        if (isIn({"", "extensionsRequired"}) && m_path.back().is_list)
            m_document.required.push_back(text);
        if (isIn({"", "accessors", ""}) && m_key == "type" &&
            m_document.accessors.back().type.empty())
            m_document.accessors.back().type = text;
        if (is_key) m_key = std::move(text);
    }

    void takeNumber(std::uint64_t number) {
        GltfDocument& d = m_document;
        const auto keep = [&](std::string_view key, std::uint64_t& value) {
            if (m_key == key && value == GltfDocument::NONE) value = number;
        };
        if (isIn({"", "nodes", "", "children"})) d.children.back().push_back(number);
        if (isIn({"", "scenes", "", "nodes"})) d.roots.push_back(number);
        if (isIn({"", "skins", "", "joints"})) d.skins.back().joints++;
        if (isIn({"", "skins", ""})) keep("inverseBindMatrices", d.skins.back().matrices);
        if (isIn({"", "buffers", ""})) keep("byteLength", d.buffers.back());
        if (isIn({"", "images", ""}) && m_key == "bufferView") d.images.push_back(number);
        if (isIn({"", "bufferViews", ""})) {
            keep("buffer", d.views.back().buffer);
            keep("byteOffset", d.views.back().byteOffset);
            keep("byteLength", d.views.back().byteLength);
            keep("byteStride", d.views.back().byteStride);
        }
        if (isIn({"", "accessors", ""})) {
            keep("bufferView", d.accessors.back().bufferView);
            keep("byteOffset", d.accessors.back().byteOffset);
            keep("count", d.accessors.back().count);
            keep("componentType", d.accessors.back().componentType);
        }
        if (isIn({"", "meshes", "", "primitives", ""})) {
            keep("mode", d.primitives.back().mode);
            keep("indices", d.primitives.back().indices);
        }
        if (isIn({"", "meshes", "", "primitives", "", "attributes"}))
            d.primitives.back().attributes.emplace_back(m_key, number);
    }

    /// With what escapes of single bytes stand for: the importer finds keys by that too.
    std::string readString() {
        std::string text;
        for (m_at++; m_at < m_text.size() && m_text[m_at] != '"'; m_at++) {
            if (m_text[m_at] != '\\') {
                text += m_text[m_at];
                continue;
            }
            const std::string_view rest = m_text.substr(m_at + 1, 5);
            if (rest.starts_with("u00") && rest.size() == 5) {
                text += static_cast<char>(
                    std::strtol(std::string(rest.substr(3)).c_str(), nullptr, 16));
                m_at += 5;
            } else {
                text += rest.substr(0, 1);
                m_at++;
            }
        }
        return text;
    }

    /// Whole numbers; one that is none counts as one that nothing has.
    std::uint64_t readNumber() {
        const std::size_t begin = m_at;
        while (m_at < m_text.size() &&
               (std::isalnum(static_cast<unsigned char>(m_text[m_at])) || m_text[m_at] == '.' ||
                m_text[m_at] == '-' || m_text[m_at] == '+'))
            m_at++;
        const std::string_view token = m_text.substr(begin, m_at-- - begin);
        std::uint64_t number = 0;
        constexpr std::uint64_t LARGE = std::uint64_t{1} << 53;
        for (const char c : token) {
            if (!std::isdigit(static_cast<unsigned char>(c))) return LARGE;
            number = std::min(number * 10 + static_cast<std::uint64_t>(c - '0'), LARGE);
        }
        return number;
    }

    std::string_view m_text;
    GltfDocument& m_document;
    std::size_t m_at = 0;
    std::string m_key; ///< of what comes next
    std::vector<Step> m_path;
};

} // namespace

std::string readGltf(std::string_view text, std::size_t deepest, GltfDocument& document) {
    return Walk(text, document).run(deepest);
}

} // namespace ig
