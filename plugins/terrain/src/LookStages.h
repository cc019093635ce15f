// SPDX-License-Identifier: MIT
#pragma once

#include "ImageryMaker.h"
#include "LandFile.h"
#include "LandRaster.h"
#include "TileFolder.h"
#include "plugins/terrain/BuildStage.h"

#include <optional>

namespace ig {

/// Writes the tiles of a built world's imagery into `imagery/`, one a step, and their list. After
/// the heights, whose ground it covers. A tile takes some 60 KB.
class ImageryStage : public BuildStage {
public:
    explicit ImageryStage(const std::vector<jString>& pictures) : m_pictures(pictures) {}

    const char* getName() const override { return "imagery"; }
    std::vector<std::string> getSources() const override;
    bool open(const std::string& folder, std::string& failure) override;
    int getNumSteps() const override { return static_cast<int>(m_maker.getTiles().size()); }
    bool isThere(int step) const override;
    bool make(int step, std::string& failure) override;
    bool close(std::string& failure) override;

private:
    std::vector<jString> m_pictures;
    ImageryMaker m_maker;
    std::optional<TileFolder> m_tiles;
};

/// Writes a built world's land cover, as `LandHeader` has it, some rows a step. After the heights,
/// whose ground it covers. It takes a byte a pixel.
class LandStage : public BuildStage {
public:
    explicit LandStage(const TerrainSources::LandCover& source) : m_source(source) {}

    const char* getName() const override { return "land_cover"; }
    std::vector<std::string> getSources() const override { return {m_source.raster.c_str()}; }
    bool open(const std::string& folder, std::string& failure) override;
    int getNumSteps() const override;
    bool isThere(int step) const override;
    bool make(int step, std::string& failure) override;
    bool close(std::string& failure) override;

private:
    std::uint64_t getEnd(int step) const;

    TerrainSources::LandCover m_source;
    std::string m_path;
    LandRaster m_raster;
    LandHeader m_header;
};

} // namespace ig
