// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/BuildStage.h"
#include "plugins/terrain/TerrainSources.h"

#include <functional>
#include <memory>

namespace ig {

/// Makes a built world: a folder that holds a terrain's sources in the form in which flying reads
/// them, a piece at a time. A run that was stopped, or killed, is taken up again by the next one
/// with the same sources: what it has finished stands in `building.txt` in the folder. The last
/// file is `terrain.yaml`, which says what the world was made of. A world that is flown over must
/// not be built: its tiles are read when they are wanted.
class WorldBuilder {
public:
    enum class Result {
        built,
        up_to_date, ///< nothing was to be done
        stopped,
        failed
    };
    /// Told after each step, and at the beginning of each stage. False: enough for now.
    using Tell = std::function<bool(const char* stage, int done, int steps)>;

    /// Into the folder that the sources name, with the stages that they ask for.
    explicit WorldBuilder(const TerrainSources& sources);
    /// One more, after those that there are.
    void add(std::unique_ptr<BuildStage> stage) { m_stages.push_back(std::move(stage)); }

    /// `failure`: cause, place and remedy, when it failed.
    Result build(const Tell& tell, std::string& failure);

private:
    bool prepareFolder(std::string& failure) const;
    void clear() const;
    Result runStage(BuildStage& stage, const Tell& tell, std::string& failure);
    bool describe(const std::string& fingerprint, std::string& failure) const;

    TerrainSources m_sources;
    std::string m_folder;
    std::vector<std::unique_ptr<BuildStage>> m_stages;
    class Notes;
    Notes* m_notes = nullptr; ///< while it builds
};

} // namespace ig
