// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Mesh.h"
#include "render/scene/FrameView.h"
#include "render/scene/LevelChoice.h"
#include "render/scene/ShadowCasters.h"
#include "render/scene/SurfaceLook.h"

#include <memory>
#include <vector>

namespace ig {

class DecalOrtho;
class Node;
class NodeDowndraught;
class NodeField;
class ObjectLight;
class ObjectMesh;
class ObjectOcean;
class ObjectParticles;
class ObjectRope;
class ObjectScenery;
class ObjectTerrain;
class World;

/// What lies on a pane around the eye.
enum class PaneCover { nothing, rain, snow };

/// One surface of a mesh to be drawn.
struct MeshItem {
    const std::shared_ptr<const Mesh>* mesh; ///< the object's own; valid in this frame
    int surface;
    mat4 transform; ///< mesh to E
    float distance; ///< of the object's middle from the eye, m
    SurfaceLook look;
    vec4 bounds;                          ///< sphere of the object in E; w: radius, m
    PaneCover cover = PaneCover::nothing; ///< of those in `SceneList::panes`
    int order = 0; ///< in which it came into its list; settles what else would be any
};

/// A wiper's blade, which turns about a fixed axis and lies on the glass.
struct BladeItem {
    const Node* node;
    vec3 pivot;         ///< E
    vec3 ahead, aside;  ///< E, unit: where it points at angle 0 and after a quarter of a turn
    float angle;        ///< rad
    float inner, outer; ///< where it begins and ends, m from the pivot
};

/// A lamp that shines towards the eye, and isn't a fire's.
struct LampItem {
    vec3 position; ///< E
    vec3 color;
    float power; ///< towards the eye, however far that is
    float glow;  ///< as bright as it looks from there; 0: it isn't seen itself
    float size;  ///< half the edge of its glow, m
};

/// A lamp, or a fire, that lights what is around it.
struct LightItem {
    vec3 position, axis; ///< E; the axis of its cone, unit length
    vec3 color;          ///< cd
    float reach;         ///< m
    vec2 cone;           ///< cosines of the half angles to which all, and beyond which none is lit
    float beam, flicker; ///< 0 to 1
    int number;          ///< the node's, as long as it lives: no two flicker alike
    const ObjectParticles* emitter; ///< whose living particles it shines for; null: for itself
};

/// A piece of a cable too thin for triangles.
struct CableItem {
    vec3 middle, half; ///< E; from the middle to the end
    vec3 color;
    float radius; ///< m
};

/// What of the scene is to be drawn in a frame: gathered from the world by one walk over its
/// enabled nodes, without the graphics device. One list is used over and over and keeps its memory.
class SceneList {
public:
    /// How far the sea mirrors lamps, m: their paths of glitter show where they don't themselves.
    static constexpr float MIRRORED = 5000;

    /// Meshes outside the view are left out, but for the shadows that they cast into the maps:
    /// those go by their places alone, so that they keep while the eye turns. Without `shadows`
    /// there is no light that casts any.
    void gather(const World& world, const FrameView& view, const ShadowPlace* shadows);

    /// What another world holds too; after `gather`.
    void add(const World& world);

    /// Brings batches together, and what lets light through, blades and downdraughts into order;
    /// after all has been added.
    void sort();

    // Set before `gather`.
    double time = 0;                ///< the scene's, by which lamps flash, s
    const Node* left_out = nullptr; ///< with all below it; null: none
    /// What it carries casts into the first shadow map alone, which goes with it.
    const Node* focus = nullptr;
    bool snow_on_glass = false; ///< of panes around the eye

    std::vector<MeshItem> opaque;      ///< equal mesh, surface, look adjoin, as they came
    std::vector<MeshItem> transparent; ///< far to near
    std::vector<MeshItem> panes;       ///< glass that rain falls on, around the eye, far to near
    std::vector<BladeItem> blades;     ///< of wipers; nearest first
    std::vector<CasterItem> casters;   ///< opaque ones, in the scene's order
    std::vector<LampItem> lamps;       ///< that are seen, or within `MIRRORED`
    std::vector<LightItem>
        lights; ///< whose reach comes into view, where they are themselves or not
    std::vector<CableItem> cables;           ///< too thin for triangles; thicker ones are meshes
    std::vector<const DecalOrtho*> decals;   ///< without texture: of wakes
    std::vector<const DecalOrtho*> pictures; ///< decals with one
    std::vector<const NodeField*> fields;
    std::vector<vec4> downdraughts; ///< x and y in E, radius, strength above 0; nearest first
    const ObjectOcean* ocean = nullptr;
    const ObjectTerrain* terrain = nullptr;
    const ObjectScenery* scenery = nullptr;

private:
    void visit(const Node& node);
    void addDecal(const DecalOrtho& decal);
    void addCable(const ObjectRope& rope);
    void addMesh(const Node& node);
    void addSurfaces(const ObjectMesh& object, MeshItem item, bool seen);
    void addTransparent(MeshItem item);
    void addBlade(const ObjectMesh& object, const Mesh::Surface& surface);
    void addCaster(const ObjectMesh& object, CasterItem item);
    void addLamp(const ObjectLight& light);
    void addDowndraught(const NodeDowndraught& wind);

    const FrameView* m_view = nullptr;
    const ShadowPlace* m_shadows = nullptr;
    LevelChoice m_levels;
    bool m_in_focus = false; ///< the node is carried by the focus
};

} // namespace ig
