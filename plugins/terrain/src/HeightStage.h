// SPDX-License-Identifier: MIT
#pragma once

#include "HeightField.h"
#include "HeightFile.h"
#include "plugins/terrain/BuildStage.h"
#include "plugins/terrain/TerrainSources.h"

namespace ig {

/// Writes the heights of a built world: for each of its grids a file `heights_N.f32`, coarse to
/// fine, as `HeightLayout` has it. Until they are whole they are called `heights_N.part.f32`. The
/// samples are held in memory meanwhile, as by a world that is not built.
class HeightStage : public BuildStage {
public:
    explicit HeightStage(const TerrainSources& sources) : m_sources(sources) {}

    static std::string getPath(const std::string& folder, std::size_t grid);

    const char* getName() const override { return "heights"; }
    std::vector<std::string> getSources() const override;
    bool open(const std::string& folder, std::string& failure) override;
    int getNumSteps() const override { return static_cast<int>(m_steps.size()); }
    bool isThere(int step) const override;
    bool make(int step, std::string& failure) override;
    bool close(std::string& failure) override;
    std::vector<std::string> describe() const override;

private:
    /// Some rows of a part of a file.
    struct Step {
        std::size_t grid;
        HeightLayout::Part part;
        int shift;     ///< of copies of every 2^shift-th sample
        int level;     ///< of blocks; −1: samples or copies of them
        int row, rows; ///< of the part
    };
    void divide(std::size_t grid);
    std::uint64_t getEnd(const Step& step) const;

    TerrainSources m_sources;
    std::string m_folder;
    std::vector<std::unique_ptr<const HeightField>> m_fields;
    std::vector<Step> m_steps;
    std::size_t m_num_grids = 0; ///< once they are whole
};

} // namespace ig
