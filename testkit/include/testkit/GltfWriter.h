// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

/// Puts a glTF file together as exporters do: data goes into one buffer, and the rest of the
/// document is the test's own text.
class GltfWriter {
public:
    /// Returns the number of the buffer view.
    int addBytes(const std::string& bytes) {
        m_binary.resize((m_binary.size() + 3) / 4 * 4);
        add(m_views, R"({"buffer":0,"byteOffset":)" + std::to_string(m_binary.size()) +
                         R"(,"byteLength":)" + std::to_string(bytes.size()) + "}");
        m_binary += bytes;
        return m_num_views++;
    }
    /// Vectors of 2 to 4 numbers, or single ones. Returns the number of the accessor.
    template <class T>
    int addNumbers(const std::vector<T>& values, unsigned components, const char* more = "") {
        constexpr bool whole = std::is_integral_v<T>;
        constexpr int TYPE = sizeof(T) == 1 ? 5121 : sizeof(T) == 2 ? 5123 : whole ? 5125 : 5126;
        constexpr const char* KINDS[] = {"", "SCALAR", "VEC2", "VEC3", "VEC4"};
        std::string bytes(values.size() * sizeof(T), '\0');
        std::memcpy(bytes.data(), values.data(), bytes.size());
        add(m_accessors, R"({"bufferView":)" + std::to_string(addBytes(bytes)) +
                             R"(,"componentType":)" + std::to_string(TYPE) + R"(,"count":)" +
                             std::to_string(values.size() / components) + R"(,"type":")" +
                             KINDS[components] + "\"" + more + "}");
        return m_num_accessors++;
    }
    /// A square of 6 m that faces up, its picture's left to −X and top to −Z. Returns the primitive
    /// without its material: `"attributes":{...},"indices":n`, with `more` attributes.
    std::string addCard(const std::string& more = "") {
        const auto number = [](const char* name, int accessor) {
            return std::string(name) + std::to_string(accessor);
        };
        std::string card = number(R"("attributes":{"POSITION":)",
                                  addNumbers<float>({-3, 0, 3, 3, 0, 3, 3, 0, -3, -3, 0, -3}, 3,
                                                    R"(,"min":[-3,0,-3],"max":[3,0,3])"));
        card += number(R"(,"NORMAL":)", addNumbers<float>({0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0}, 3));
        card += number(R"(,"TEXCOORD_0":)", addNumbers<float>({0, 1, 1, 1, 1, 0, 0, 0}, 2)) + more;
        return card + number(R"(},"indices":)", addNumbers<std::uint16_t>({0, 1, 2, 0, 2, 3}, 1));
    }

    /// Places and normals that lie in turns, six numbers for a corner: `"attributes":{...`, to be
    /// closed.
    std::string addWoven(const std::vector<std::array<float, 6>>& corners) {
        std::string bytes(corners.size() * sizeof corners[0], '\0');
        std::memcpy(bytes.data(), corners.data(), bytes.size());
        const std::string view = std::to_string(addBytes(bytes));
        m_views.insert(m_views.size() - 1, R"(,"byteStride":24)");
        for (const char* begin : {"0", "12"})
            add(m_accessors, R"({"bufferView":)" + view + R"(,"byteOffset":)" + begin +
                                 R"(,"componentType":5126,"type":"VEC3","count":)" +
                                 std::to_string(corners.size()) + "}");
        m_num_accessors += 2;
        return R"("attributes":{"POSITION":)" + std::to_string(m_num_accessors - 2) +
               R"(,"NORMAL":)" + std::to_string(m_num_accessors - 1);
    }

    const std::string& getBinary() const { return m_binary; }
    /// `rest`: what else the document has, scenes and all. `uri`: of the buffer, empty in a binary
    /// file.
    std::string makeText(const std::string& rest, const std::string& uri) const {
        return R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":)" +
               std::to_string(m_binary.size()) + (uri.empty() ? "" : R"(,"uri":")" + uri + "\"") +
               R"(}],"bufferViews":[)" + m_views + R"(],"accessors":[)" + m_accessors + "]," +
               rest + "}";
    }
    std::string makeBinary(const std::string& rest) const {
        std::string text = makeText(rest, ""), binary = m_binary;
        text.resize((text.size() + 3) / 4 * 4, ' ');
        binary.resize((binary.size() + 3) / 4 * 4);
        const auto size = static_cast<std::uint32_t>(28 + text.size() + binary.size());
        return "glTF" + word(2) + word(size) + word(static_cast<std::uint32_t>(text.size())) +
               "JSON" + text + word(static_cast<std::uint32_t>(binary.size())) +
               std::string("BIN\0", 4) + binary;
    }

private:
    static void add(std::string& list, const std::string& item) {
        list += (list.empty() ? "" : ",") + item;
    }
    static std::string word(std::uint32_t value) {
        std::string bytes(4, '\0');
        std::memcpy(bytes.data(), &value, 4);
        return bytes;
    }

    std::string m_binary, m_views, m_accessors;
    int m_num_views = 0, m_num_accessors = 0;
};
