// SPDX-License-Identifier: MIT
#include "render/scene/TerrainMaker.h"

#include "program/Process.h"

namespace ig {

void TerrainMaker::adopt(const TerrainGrid& grid, std::shared_ptr<const void> owner,
                         std::shared_ptr<const LandCover> cover) {
    const std::lock_guard lock(m_mutex);
    m_grid = grid;
    m_owner = std::move(owner);
    m_cover = std::move(cover);
    m_grid_count++;
    m_wishes.clear();
    m_made.clear();
}

void TerrainMaker::wish(const TerrainSquare& square, double rank, int frame) {
    const std::lock_guard lock(m_mutex);
    const auto [entry, is_new] =
        m_wishes.try_emplace(square.getKey(), Wish{square, rank, frame, false});
    entry->second.rank = rank;
    entry->second.frame = m_frame = frame;
    if (!is_new) return;
    if (start())
        m_changed.notify_all();
    else { // a system without threads to spare makes the caller wait
        m_made.push_back(make(m_grid, m_cover.get(), square));
        entry->second.is_taken = true;
    }
}

std::vector<TerrainMaker::Made> TerrainMaker::take(std::size_t most) {
    const std::lock_guard lock(m_mutex);
    const auto end = m_made.begin() + static_cast<std::ptrdiff_t>(std::min(most, m_made.size()));
    std::vector<Made> taken(std::move_iterator(m_made.begin()), std::move_iterator(end));
    m_made.erase(m_made.begin(), end);
    for (const Made& made : taken)
        m_wishes.erase(made.square.getKey());
    return taken;
}

TerrainMaker::Made TerrainMaker::make(const TerrainGrid& grid, const LandCover* cover,
                                      const TerrainSquare& square,
                                      const std::vector<TerrainGrid::Cells>& replaced) {
    Made made{square, TerrainMesh(grid, square, replaced), {}};
    if (cover) made.shares = getLandShares(*cover, grid, square.column, square.row, square.step);
    return made;
}

bool TerrainMaker::start() {
    return program::beginThread(m_thread, [this](const std::stop_token& stop) { run(stop); });
}

/// The wish of the lowest rank; null when there is none. Those that nobody has any more go.
TerrainMaker::Wish* TerrainMaker::choose() {
    Wish* best = nullptr;
    std::erase_if(m_wishes, [this](const auto& entry) {
        return !entry.second.is_taken && entry.second.frame < m_frame - FORGOTTEN;
    });
    for (auto& entry : m_wishes)
        if (!entry.second.is_taken && (!best || entry.second.rank < best->rank))
            best = &entry.second;
    return best;
}

void TerrainMaker::run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    Wish* wish = nullptr;
    while (m_changed.wait(lock, stop, [&] { return (wish = choose()) != nullptr; }) &&
           !stop.stop_requested()) {
        wish->is_taken = true;
        const TerrainSquare square = wish->square;
        const TerrainGrid grid = m_grid;
        const std::shared_ptr<const void> owner = m_owner;
        const std::shared_ptr<const LandCover> cover = m_cover;
        const int grid_count = m_grid_count;
        lock.unlock();
        Made made = make(grid, cover.get(), square);
        lock.lock();
        if (grid_count == m_grid_count) m_made.push_back(std::move(made));
    }
}

} // namespace ig
