// SPDX-License-Identifier: MIT
#include "ObjCheck.h"

#include <algorithm>
#include <fstream>
#include <vector>

namespace ig {

namespace {

constexpr std::streamoff MOST_BYTES = std::streamoff{1} << 28;
constexpr std::size_t MOST_FACES = std::size_t{1} << 22; ///< triangles, mostly
constexpr std::size_t MOST_CORNERS = 1000;               ///< of one face

/// Counts faces and the corners of each, however long the lines are.
class FaceCount {
public:
    void take(char c) {
        const bool is_space = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        if (is_space) {
            if (m_in_word) endWord();
            if (c == '\n' && !m_goes_on) m_words = 0, m_is_face = false;
        } else {
            if (!m_in_word) m_is_face |= m_words == 0 && (c == 'f' || c == 'l' || c == 'p');
            m_in_word = true;
        }
        if (c != '\r') m_goes_on = c == '\\'; // a line's end after it is none
    }
    std::size_t getFaces() const { return m_faces; }
    std::size_t getMostCorners() const { return m_most_corners; }

private:
    void endWord() {
        m_in_word = false;
        if (m_words++ == 0) m_faces += m_is_face;
        if (m_is_face) m_most_corners = std::max(m_most_corners, m_words - 1);
    }

    bool m_in_word = false, m_is_face = false, m_goes_on = false;
    std::size_t m_words = 0, m_faces = 0, m_most_corners = 0;
};

} // namespace

std::string whyUnfitObj(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (file.tellg() > MOST_BYTES)
        return "an OBJ file of more than 256 MiB is not read: export it as .glb, or in parts";
    file.seekg(0);
    FaceCount count;
    std::vector<char> bytes(1 << 16);
    while (file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())) ||
           file.gcount() > 0) {
        std::for_each_n(bytes.begin(), file.gcount(), [&](char c) { count.take(c); });
        if (count.getFaces() > MOST_FACES)
            return "an OBJ file of more than " + std::to_string(MOST_FACES) +
                   " faces is not read: export it as .glb, or in parts";
        if (count.getMostCorners() > MOST_CORNERS)
            return "a face of more than " + std::to_string(MOST_CORNERS) +
                   " corners is not read: export triangles";
    }
    return {};
}

} // namespace ig
