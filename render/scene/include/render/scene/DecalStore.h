// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/SceneList.h"

#include <map>
#include <memory>

namespace ig {

/// Pictures laid down onto what lies below their nodes: soot, oil, tyre marks. When a decal first
/// comes into view its rectangle is let down along the node's −Z, point by point, onto what segment
/// queries meet; the sheet that results moves with the node from then on, as the deck or the ground
/// that it lies on does.
class DecalStore {
public:
    static constexpr double REACH =
        2; ///< m below the node; where nothing is met the sheet has a hole

    /// Adds the sheets of the list's pictures to what it draws, lays one that is missing. In a
    /// rehearsal a level sheet stands in for all of them.
    void gather(const World& world, const FrameView& view, SceneList& list);

private:
    struct Sheet {
        std::shared_ptr<const Mesh> mesh; ///< in the node's frame; null: nothing below
        vec2 size;
        int last_used = 0;
    };
    static std::shared_ptr<const Mesh> makeLevel();
    static std::shared_ptr<const Mesh> lay(const World& world, const DecalOrtho& decal);
    void purge();

    std::map<const DecalOrtho*, Sheet> m_sheets;
    std::shared_ptr<const Mesh> m_level; ///< of a rehearsal
    int m_frame = 0;
};

} // namespace ig
