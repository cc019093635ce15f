// SPDX-License-Identifier: MIT
#include "TileFolder.h"

#include "program/OutputFile.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace ig {

namespace {

constexpr const char* HEAD = "imagery 1"; ///< first line of an index

/// Empty when it can't be read.
std::string readAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) return {};
    std::string bytes(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file ? bytes : std::string();
}

bool writeAll(const std::string& path, const std::string& bytes) {
    program::OutputFile file;
    return file.open(path, program::OutputFile::Kind::whole) && file.write(bytes) && file.close();
}

} // namespace

std::string TileFolder::getPath(const ImageTile& tile) const {
    return m_folder + '/' + std::to_string(tile.level) + '/' + std::to_string(tile.row) + '_' +
           std::to_string(tile.column) + ".jpg";
}

std::string TileFolder::read(const ImageTile& tile) const { return readAll(getPath(tile)); }

bool TileFolder::has(const ImageTile& tile) const {
    std::error_code error;
    return std::filesystem::exists(getPath(tile), error);
}

bool TileFolder::write(const ImageTile& tile, const std::string& bytes) {
    const std::string path = getPath(tile);
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    return !bytes.empty() && writeAll(path, bytes);
}

bool TileFolder::writeIndex(const Imagery::Layout& layout,
                            const std::vector<ImageTile>& tiles) const {
    std::ostringstream text;
    text.precision(17);
    text << HEAD << '\n'
         << layout.west << ' ' << layout.north << ' ' << layout.tile_width << ' '
         << layout.tile_height << ' ' << layout.columns << ' ' << layout.rows << '\n'
         << tiles.size() << '\n';
    for (const ImageTile& tile : tiles)
        text << tile.level << ' ' << tile.column << ' ' << tile.row << '\n';
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    return writeAll(getIndexPath(), text.str());
}

bool TileFolder::readIndex(Imagery::Layout& layout, std::set<ImageTile>& tiles) const {
    std::istringstream text(readAll(getIndexPath()));
    std::string head;
    std::size_t count = 0;
    std::getline(text, head);
    text >> layout.west >> layout.north >> layout.tile_width >> layout.tile_height >>
        layout.columns >> layout.rows >> count;
    ImageTile tile;
    while (tiles.size() < count && text >> tile.level >> tile.column >> tile.row)
        tiles.insert(tile);
    return head == HEAD && text && layout.tile_width > 0 && layout.tile_height > 0 &&
           tiles.size() == count;
}

} // namespace ig
