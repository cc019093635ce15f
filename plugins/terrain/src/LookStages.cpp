// SPDX-License-Identifier: MIT
#include "LookStages.h"

#include "HeightFile.h"
#include "HeightStage.h"
#include "PlacedFile.h"

#include <algorithm>

namespace ig {

namespace {

constexpr int STRIP = 256; ///< rows in a step

/// What the heights that have been built cover.
std::optional<LonLatBox> findGround(const std::string& folder, std::string& failure) {
    const std::string path = HeightStage::getPath(folder, 0);
    const auto heights = HeightFile::open(path, failure);
    if (heights) return LonLatBox::of(heights->getShape());
    failure = '"' + path + "\" " + failure;
    return {};
}

} // namespace

// ------------------------------------------------------------------ imagery

std::vector<std::string> ImageryStage::getSources() const {
    std::vector<std::string> files;
    for (const jString& picture : m_pictures)
        files.emplace_back(picture.c_str());
    return files;
}

bool ImageryStage::open(const std::string& folder, std::string& failure) {
    const auto ground = findGround(folder, failure);
    m_tiles.emplace(folder);
    return ground && m_maker.open(m_pictures, *ground, failure);
}

bool ImageryStage::isThere(int step) const {
    return m_tiles->has(m_maker.getTiles()[static_cast<std::size_t>(step)]);
}

bool ImageryStage::make(int step, std::string& failure) {
    return m_maker.make(m_maker.getTiles()[static_cast<std::size_t>(step)], *m_tiles, failure);
}

bool ImageryStage::close(std::string& failure) {
    if (m_tiles->writeIndex(m_maker.getLayout(), m_maker.getTiles())) return true;
    failure = "cannot write the list of tiles: is there room on the disk?";
    return false;
}

// ------------------------------------------------------------------ land cover

bool LandStage::open(const std::string& folder, std::string& failure) {
    const auto ground = findGround(folder, failure);
    if (!ground) return false;
    m_path = LandHeader::getPath(folder);
    const QuietErrors quiet;
    if (!m_raster.open(m_source, *ground, failure)) {
        failure = std::string("\"") + m_source.raster.c_str() + "\" " + failure;
        return false;
    }
    const LonLatPixels& pixels = m_raster.getPixels();
    m_header.columns = pixels.columns;
    m_header.rows = pixels.rows;
    m_header.west = pixels.west;
    m_header.north = pixels.north;
    m_header.spacing_longitude = pixels.spacing_longitude;
    m_header.spacing_latitude = pixels.spacing_latitude;
    return true;
}

int LandStage::getNumSteps() const { return (m_header.rows + STRIP - 1) / STRIP; }

std::uint64_t LandStage::getEnd(int step) const {
    const int rows = std::min((step + 1) * STRIP, m_header.rows);
    return LandHeader::LENGTH +
           static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(m_header.columns);
}

bool LandStage::isThere(int step) const { return PlacedFile::getSize(m_path) >= getEnd(step); }

bool LandStage::make(int step, std::string& failure) {
    const int first = step * STRIP, rows = std::min(STRIP, m_header.rows - first);
    std::vector<LandClass> classes(static_cast<std::size_t>(rows) *
                                   static_cast<std::size_t>(m_header.columns));
    const QuietErrors quiet;
    if (!m_raster.read(first, classes)) {
        failure =
            std::string("\"") + m_source.raster.c_str() + "\" " + getLastError("cannot be read");
        return false;
    }
    return PlacedFile(m_path).write(classes.data(), classes.size(), getEnd(step) - classes.size(),
                                    failure);
}

bool LandStage::close(std::string& failure) {
    m_raster.tellUnknown(m_source.raster);
    if (PlacedFile::isFinished(m_path)) return true; // by an earlier run
    PlacedFile file(m_path);
    return file.write(&m_header, sizeof m_header, 0, failure) &&
           file.finish(m_header.getSize(), failure);
}

} // namespace ig
