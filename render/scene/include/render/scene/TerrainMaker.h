// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/LandShares.h"
#include "render/scene/TerrainMesh.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

namespace ig {

/// Makes the meshes of a terrain's squares, with what covers them, beside the frames, on a thread
/// of its own, so that none of them waits for a file. Owned by the pass that draws them; all
/// operations are called on its thread. The thread begins with the first wish, and gets no signals.
class TerrainMaker {
public:
    TerrainMaker() = default;
    TerrainMaker(const TerrainMaker&) = delete;
    TerrainMaker& operator=(const TerrainMaker&) = delete;
    ~TerrainMaker() = default;

    /// Forgets all wishes and what has been made for them: from now on they are for squares of this
    /// grid. `owner` keeps its samples while they are read; `cover` may be null.
    void adopt(const TerrainGrid& grid, std::shared_ptr<const void> owner,
               std::shared_ptr<const LandCover> cover);
    /// The square is made soon, unless nobody wishes for it again in the next `FORGOTTEN` frames;
    /// the lowest rank first. `frame` counts pictures.
    void wish(const TerrainSquare& square, double rank, int frame);
    static constexpr int FORGOTTEN = 8;

    struct Made {
        TerrainSquare square;
        TerrainMesh mesh;
        std::vector<LandShares> shares; ///< none without a land cover
    };
    /// On the caller's thread. Only these cells are left out.
    static Made make(const TerrainGrid& grid, const LandCover* cover, const TerrainSquare& square,
                     const std::vector<TerrainGrid::Cells>& replaced = {});
    /// At most so many of those that are made, in the order in which they were.
    std::vector<Made> take(std::size_t most);

private:
    struct Wish {
        TerrainSquare square;
        double rank;
        int frame;
        bool is_taken; ///< by the thread, or made and not fetched
    };
    bool start();
    void run(const std::stop_token& stop);
    Wish* choose();

    std::mutex m_mutex; ///< of all that follows
    std::condition_variable_any m_changed;
    TerrainGrid m_grid;
    std::shared_ptr<const void> m_owner;
    std::shared_ptr<const LandCover> m_cover;
    int m_grid_count = 0; ///< tells what was made of a former grid
    int m_frame = 0;
    std::unordered_map<std::uint64_t, Wish> m_wishes;
    std::vector<Made> m_made;
    std::jthread m_thread; ///< ends first
};

} // namespace ig
