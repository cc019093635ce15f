// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/Imagery.h"

namespace ig {

/// Tiles as files of a built world: `imagery/LEVEL/ROW_COLUMN.jpg` in its folder, and a list of
/// all, `imagery/index`, which is written last.
class TileFolder : public Imagery::Store {
public:
    explicit TileFolder(const std::string& folder) : m_folder(folder + "/imagery") {}

    std::string read(const ImageTile& tile) const override;
    bool write(const ImageTile& tile, const std::string& bytes) override;
    bool has(const ImageTile& tile) const override;

    bool writeIndex(const Imagery::Layout& layout, const std::vector<ImageTile>& tiles) const;
    bool readIndex(Imagery::Layout& layout, std::set<ImageTile>& tiles) const;

private:
    std::string getPath(const ImageTile& tile) const;
    std::string getIndexPath() const { return m_folder + "/index"; }

    std::string m_folder;
};

} // namespace ig
