// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/PictureRect.h"
#include "render/scene/ShadowPlace.h"

#include <memory>
#include <span>
#include <vector>

namespace ig {

class Mesh;

/// What casts a shadow: a mesh, or one surface of it.
struct CasterItem {
    const std::shared_ptr<const Mesh>* mesh; ///< the object's own; valid in this frame
    int surface;                             ///< −1: all
    const dmat4* pose;                       ///< mesh to world; valid in this frame
    dvec3 center;                            ///< of its sphere, world
    double radius;
    unsigned maps; ///< into which it may cast, a bit each
};

/// The part of the picture where the shadows of such things may be seen to lie on the sea. `light`:
/// towards it, E; `crest`: height of the waves, m.
PictureRect findOnSea(const std::vector<CasterItem>& casters, const FrameView& view,
                      const ShadowPlace& place, const vec3& light, float crest);

/// Decides in each frame which shadow maps are drawn, and with what: as little as gives the same
/// picture. What a map shows is kept until something in it has moved by a part of a texel, the
/// map's place or the light's direction has changed.
///
/// The first map has two layers: what rests is drawn once into a map of its own; of that, what the
/// moving ones cover is copied, and they are drawn on top. Of the other maps at most one is drawn
/// in a frame, in turn, unless the light has turned.
///
/// One for all frames; it keeps its memory. No graphics device is needed.
class ShadowCasters {
public:
    struct Item {
        const std::shared_ptr<const Mesh>* mesh;
        int surface;    ///< −1: all
        mat4 transform; ///< mesh to the map's unit cube
    };
    /// One drawing into a map, in order.
    struct Job {
        enum Before { CLEAR, RESTORE }; ///< makes the part empty, or what rests
        int map;
        bool resting; ///< into the first map's layer of what rests, not into the map itself
        Before before;
        int x, y, width, height; ///< the part that changes, texels
        int first, count;        ///< items
    };

    /// Before the frame's draws; maps that are drawn are settled.
    void plan(const std::vector<CasterItem>& casters, ShadowPlace& place);
    /// Instead, in a frame without shadows: nothing is drawn.
    void rest();
    /// The next plan draws everything anew.
    void forget();

    std::span<const Job> getJobs() const { return m_jobs; }
    std::span<const Item> getItems() const { return m_items; }

private:
    struct Shown { ///< an item that a map shows
        const std::shared_ptr<const Mesh>* object;
        const Mesh* mesh;
        int surface;
        dmat4 pose;
        // Of the first map alone:
        bool rests = false; ///< is in the layer of what rests
        int still = 0;      ///< frames since it moved
        vec3 texels;        ///< where in the map it is: middle, half the edge
    };
    static bool isSame(const Shown& shown, const CasterItem& item);
    static Shown show(const CasterItem& item, const ShadowPlace& place);

    void planFirst(const std::vector<CasterItem>& casters, ShadowPlace& place);
    void match(const std::vector<CasterItem>& casters, const ShadowPlace& place, bool anew);
    void include(const Shown& shown);
    void drawResting(const ShadowPlace& place);
    void drawMoving(const ShadowPlace& place, bool whole);
    void planOther(int map, const std::vector<CasterItem>& casters, ShadowPlace& place);
    bool hasChanged(int map, const std::vector<CasterItem>& casters,
                    const ShadowPlace& place) const;
    void begin(int map, bool resting, Job::Before before, int size);
    void add(const Shown& shown, int map, const ShadowPlace& place);
    void end();

    std::vector<Shown> m_shown[NUM_SHADOW_MAPS]; ///< in the order of the scene
    std::vector<Shown> m_next;                   ///< becomes the first map's
    bool m_rest_changed = false, m_moved = false, m_rest_is_empty = true;
    float m_low_x = 0, m_low_y = 0, m_high_x = 0, m_high_y = 0; ///< texels that the moving change
    int m_turn = 1;                                             ///< of the other maps
    std::vector<Job> m_jobs;
    std::vector<Item> m_items;
};

} // namespace ig
