// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/Scenery.h"
#include "render/scene/SceneList.h"

#include <memory>
#include <vector>

namespace ig {

class ObjectScenery;

/// A tree from afar: a square that faces the eye, with a picture of it.
struct CardItem {
    vec4 place;  ///< of its middle, E; w: half its edge, m
    float layer; ///< of `CardPictures`, the first of the kind
    float whole; ///< 0 to 1: how much of it has grown out of its core
    float tone;  ///< 0 to 1: no two trees are equally bright
    float ice;   ///< of the material, 0 to 1
};

/// Cards that stand together, so that one look tells haze and sun for all of them.
struct CardGroup {
    vec3 middle; ///< E
    int first, count;
};

/// What of a world's trees and houses is to be drawn. Houses and the trees nearby join the meshes
/// of the list; of a tree that is small in the picture there is a card, which grows over the model
/// before that goes. Far off ever fewer trees stand for all.
///
/// Cells of the scenery are planted as the eye comes near them, the nearest first, so many a frame;
/// all at once for a scenery that is new. One for all frames; it keeps its memory. No graphics
/// device is needed.
class SceneryList {
public:
    static constexpr float CARD_PIXELS = 28; ///< height in the picture below which trees are cards

    /// Adds to a list that has been gathered; `shadows` as there.
    void gather(const FrameView& view, const ShadowPlace* shadows, SceneList& list);

    std::vector<CardItem> cards;
    std::vector<CardGroup> groups; ///< of all cards, in order

private:
    using Cell = std::shared_ptr<const SceneryCell>;

    void follow(const FrameView& view);
    void rehearse(SceneList& list);
    void addCell(const SceneryCell& cell, const FrameView& view, const ShadowPlace* shadows,
                 SceneList& list);
    void addThing(const SceneryThing& thing, const mat4& to_eye, const FrameView& view,
                  SceneList& list);
    void addMesh(const SceneryThing& thing, const mat4& pose, const vec4& bounds, float distance,
                 SceneList& list);
    void addCard(const SceneryThing& thing, const vec4& bounds, float pixels, float distance);
    void addCasters(const SceneryCell& cell, const ShadowPlace& shadows, unsigned reached);

    const ObjectScenery* m_scenery = nullptr; ///< only to be compared between frames
    SceneryCellId m_at;                       ///< where the eye is
    std::vector<Cell> m_cells;                ///< around it, with things on them
    std::vector<SceneryCellId> m_missing;     ///< the farthest first
    std::vector<SurfaceLook> m_looks;         ///< of all surfaces, kind by kind
    std::vector<std::size_t> m_first_look;    ///< by kind
    std::vector<float> m_ices;                ///< by kind
    std::vector<CasterItem> m_casters;        ///< whose poses stand in `m_poses`
    std::vector<dmat4> m_poses;
};

} // namespace ig
