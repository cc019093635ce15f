// SPDX-License-Identifier: MIT
#include "HeightStage.h"

#include "PlacedFile.h"
#include "makeGround.h"

namespace ig {

namespace {

constexpr std::uint64_t STEP_BYTES = 4 << 20; ///< written in one step

} // namespace

std::string HeightStage::getPath(const std::string& folder, std::size_t grid) {
    return folder + "/heights_" + std::to_string(grid) + ".f32";
}

std::vector<std::string> HeightStage::getSources() const {
    std::vector<std::string> files;
    for (const jString& raster : m_sources.rasters)
        files.emplace_back(raster.c_str());
    if (!m_sources.geoid.empty()) files.emplace_back(m_sources.geoid.c_str());
    return files;
}

bool HeightStage::open(const std::string& folder, std::string& failure) {
    m_folder = folder;
    MadeGround ground = makeGround(m_sources);
    if (!ground.faults.empty()) {
        failure = ground.faults.front();
        return false;
    }
    m_fields = std::move(ground.fields);
    for (std::size_t grid = 0; grid < m_fields.size(); grid++)
        divide(grid);
    return true;
}

void HeightStage::divide(std::size_t grid) {
    const TerrainGrid& shape = m_fields[grid]->getGrid();
    const HeightLayout layout(shape.columns, shape.rows);
    const auto add = [&](const HeightLayout::Part& part, int shift, int level, std::size_t size) {
        const std::uint64_t row_bytes = size * static_cast<std::uint64_t>(part.columns);
        const int rows = static_cast<int>(std::max<std::uint64_t>(STEP_BYTES / row_bytes, 1));
        for (int row = 0; row < part.rows; row += rows)
            m_steps.push_back({grid, part, shift, level, row, std::min(rows, part.rows - row)});
    };
    add(layout.samples, 0, -1, sizeof(float));
    for (std::size_t i = 0; i < layout.copies.size(); i++)
        add(layout.copies[i], static_cast<int>(i) + 1, -1, sizeof(float));
    for (std::size_t i = 0; i < layout.blocks.size(); i++)
        add(layout.blocks[i], 0, static_cast<int>(i), sizeof(HeightRange));
}

std::uint64_t HeightStage::getEnd(const Step& step) const {
    const std::uint64_t size = step.level < 0 ? sizeof(float) : sizeof(HeightRange);
    return step.part.begin + size * static_cast<std::uint64_t>(step.part.columns) *
                                 static_cast<std::uint64_t>(step.row + step.rows);
}

bool HeightStage::isThere(int step) const {
    const Step& done = m_steps[static_cast<std::size_t>(step)];
    return PlacedFile::getSize(getPath(m_folder, done.grid)) >= getEnd(done);
}

bool HeightStage::make(int step, std::string& failure) {
    const Step& s = m_steps[static_cast<std::size_t>(step)];
    const HeightField& field = *m_fields[s.grid];
    const auto width = static_cast<std::size_t>(s.part.columns);
    PlacedFile file(getPath(m_folder, s.grid));
    const auto put = [&](const void* data, std::size_t size) {
        const std::uint64_t bytes = size * width * static_cast<std::size_t>(s.rows);
        return file.write(data, bytes, getEnd(s) - bytes, failure);
    };
    const auto first = static_cast<std::size_t>(s.row) * width;
    if (s.level >= 0)
        return put(field.getLevels()[static_cast<std::size_t>(s.level)].blocks + first,
                   sizeof(HeightRange));
    if (s.shift == 0) return put(field.getGrid().heights + first, sizeof(float));
    std::vector<float> copy;
    for (int row = s.row; row < s.row + s.rows; row++)
        for (int column = 0; column < s.part.columns; column++)
            copy.push_back(field.getGrid().getHeight(column << s.shift, row << s.shift));
    return put(copy.data(), sizeof(float));
}

bool HeightStage::close(std::string& failure) {
    for (std::size_t grid = 0; grid < m_fields.size(); grid++) {
        const HeightHeader header = HeightHeader::of(m_fields[grid]->getGrid());
        const std::string path = getPath(m_folder, grid);
        if (PlacedFile::isFinished(path)) continue; // by an earlier run
        PlacedFile file(path);
        if (!file.write(&header, sizeof header, 0, failure) || !file.finish(header.size, failure))
            return false;
    }
    m_num_grids = m_fields.size();
    m_fields.clear(); // the next stages want the memory
    return true;
}

std::vector<std::string> HeightStage::describe() const {
    return {"grids: " + std::to_string(m_num_grids)};
}

} // namespace ig
