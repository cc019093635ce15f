// SPDX-License-Identifier: MIT
#pragma once

#include "ig/physics/BodyRope.h"
#include "ig/scene/LightSector.h"
#include "ig/scene/Object.h"

#include <cmath>
#include <utility>
#include <vector>

namespace ig {

/// A particle emitter as the scene describes it; surface 0 carries the particles' material. The
/// emitter's data is fixed by its file.
///
/// An emitter may name the surface that it throws its particles up from; it is silent while the
/// other one lies below it. The surface is what segment queries meet.
///
/// An emitter runs from the beginning, and again from each `play`, for its duration; whether it
/// runs doesn't depend on its being drawn. Effects last as long as their longest use and spawn only
/// during their burst, so that an effect that is kept running doesn't start over.
class ObjectParticles : public Object {
public:
    ObjectParticles() : Object(OBJECT_PARTICLES) { setNumSurfaces(1); }

    float getLife() const { return m_life; } ///< mean life of a particle, s
    void setLife(float life) { m_life = life; }
    float getLifeSpread() const { return m_life_spread; } ///< ± s
    void setLifeSpread(float spread) { m_life_spread = spread; }
    float getLinearVelocity() const { return m_velocity; } ///< m/s along the emitter's Z
    void setLinearVelocity(float velocity) { m_velocity = velocity; }
    float getLinearVelocitySpread() const { return m_velocity_spread; } ///< ± m/s
    void setLinearVelocitySpread(float spread) { m_velocity_spread = spread; }
    float getSpawnRate() const { return m_spawn_rate; } ///< particles per second
    void setSpawnRate(float rate) { m_spawn_rate = rate; }

    float getDuration() const { return m_duration; } ///< s that it runs; 0: until stopped
    void setDuration(float duration) { m_duration = duration; }
    void setBurst(float burst) { m_burst = burst; } ///< s of them in which it spawns; 0: all

    /// Whether it belongs to the picture of one display, with the emitters among its children, as
    /// rain around that display's eye does: where it is and how it works then tells nothing of the
    /// scene, and what it does changes no other emitter. Default: it is the scene's.
    bool isOfDisplay() const { return m_of_display; }
    void setOfDisplay(bool of_display);

    /// What it works over.
    Ground::Kind getSurface() const { return m_surface; }
    void setSurface(Ground::Kind surface) { m_surface = surface; }
    /// What is lifted off the ground below, as `Ground::lifted`. Particles take it on when their
    /// material has a "ground_tint".
    const vec4& getGround() const { return m_ground; }
    /// The world tells it what lies below, of the kind `any` when it found nothing; the ground's
    /// colour follows within a second.
    void passOver(const Ground& below, float dt);

    /// Runs from the beginning, with the emitters among its children.
    void play();
    /// Spawns no more, nor do the emitters among its children; what lives lives on.
    void stop();
    bool isEmitterEnabled() const { return m_running; }
    /// Removes the particles that live, its own and those of the emitters among its children.
    void clearParticles();
    /// Changes with every `clearParticles`: whoever keeps the particles then drops them.
    unsigned getNumCleared() const { return m_cleared; }
    /// For how many of the last `dt` seconds it spawned: none while something lies below it that it
    /// doesn't work over, as the world found at the last step; a burst that is over gave all it had
    /// to the steps that it fell into, however long they were.
    float getSpawnTime(float dt) const;
    /// Advances the running time by `dt` seconds, of this emitter alone.
    void advance(float dt);
    /// Half the box that the particles start in, along the emitter's axes; default: a point.
    const vec3& getSpread() const { return m_spread; }
    void setSpread(const vec3& spread) { m_spread = spread; }
    /// Particles start between two circles about the emitter's Z instead of in the box's X and Y,
    /// and fly outwards: inner and outer radius (m; 0, 0: no ring), speed (m/s).
    const vec2& getRing() const { return m_ring; }
    float getOutflow() const { return m_outflow; }
    void setRing(const vec2& ring, float outflow) {
        m_ring = ring;
        m_outflow = outflow;
    }
    /// Holds every place that a particle of its present settings can reach from the emitter's
    /// present place.
    WorldBoundBox getWorldBoundBox() const;

    /// Deflectors remove the particles in their column, which reaches without end along the
    /// deflector's own Z axis: it leans with what it shelters. World transforms.
    int getNumDeflectors() const { return m_deflectors.size(); }
    void setNumDeflectors(int count) { m_deflectors.resize(count); }
    const dmat4& getDeflectorTransform(int i) const { return m_deflectors[i]; }
    void setDeflectorTransform(int i, const dmat4& transform) { m_deflectors[i] = transform; }
    /// Half the column's size along the deflector's X and Y, m, for deflectors without scale.
    const vec2& getDeflectorSize() const { return m_deflector_size; }
    void setDeflectorSize(const vec2& size) { m_deflector_size = size; }

private:
    float m_life = 1, m_life_spread = 0;
    float m_velocity = 0, m_velocity_spread = 0;
    float m_spawn_rate = 0;
    vec3 m_spread;
    vec2 m_ring;
    float m_outflow = 0;
    vec4 m_ground{1, 1, 1, 1};
    bool m_ground_known = false;
    float m_duration = 0, m_burst = 0;
    float m_elapsed = 0;
    bool m_running = true;
    bool m_of_display = false;
    Ground::Kind m_surface = Ground::Kind::any;
    bool m_silent = false;
    unsigned m_cleared = 0;
    jVector<dmat4> m_deflectors;
    vec2 m_deflector_size{2.5f, 2.5f};
};

/// A cable: an object with a rope body that shows it. Each segment is a child mesh, stretched from
/// one point of the cable to the next whenever the physics has moved it.
class ObjectRope : public Object {
public:
    /// `radius` of the drawn cable, m; `material` of all segments, may be null.
    ObjectRope(float radius, Material* material);
    float getRadius() const { return m_radius; }
    void followBody() override;

private:
    float m_radius;
    ObjectMesh* m_segments[BodyRope::SEGMENTS]; ///< children
};

/// A picture laid down onto what lies below it, straight along −Z; surface 0 carries the material.
class DecalOrtho : public Object {
public:
    DecalOrtho() : Object(DECAL_ORTHO) {
        setNumSurfaces(1);
        setIntersection(0, false);
    }
    float getWidth() const { return m_width; } ///< along X, m
    void setWidth(float width) { m_width = width; }
    float getHeight() const { return m_height; } ///< along Y, m
    void setHeight(float height) { m_height = height; }

private:
    float m_width = 1, m_height = 1;
};

/// A lamp: it is seen itself, and with an intensity it lights what is around it. How bright both
/// are goes by the slider "density" and the value "diffuse_color" of the material on surface 0.
/// Below an emitter it isn't seen itself, and shines as much as the emitter's particles do. What it
/// lights, and how, is fixed by its file; nothing of the scene depends on it.
class ObjectLight : public Object {
public:
    static constexpr vec2 ALL_ROUND{180, 180};
    /// Where by default it counts for nothing any more, lx: a fifth of a full moon's light.
    static constexpr float FAINTEST = 0.05f;

    ObjectLight() : Object(OBJECT_LIGHT) {
        setNumSurfaces(1);
        setIntersection(0, false);
    }
    /// At density 1, cd; below an emitter that of one newborn particle. 0: it lights nothing.
    float getIntensity() const { return m_intensity; }
    /// Beyond it nothing is lit, m.
    float getReach() const { return m_reach; }
    /// `reach` 0: as far as makes sense of the intensity.
    void setIntensity(float candela, float reach = 0) {
        m_intensity = candela;
        m_reach = reach > 0 ? reach : std::sqrt(candela / FAINTEST);
    }
    /// Half angles about the node's Y, degrees, 0 to 180: full light within the first, none beyond
    /// the second, which is not smaller.
    const vec2& getCone() const { return m_cone; }
    void setCone(const vec2& cone) { m_cone = cone; }
    float getBeam() const { return m_beam; } ///< how much of it shows in haze and rain, 0 to 1
    void setBeam(float beam) { m_beam = beam; }
    float getFlicker() const { return m_flicker; } ///< 0 steady to 1, a fire's
    void setFlicker(float flicker) { m_flicker = flicker; }

    /// Directions in which it is seen in a light of their own, and in no other; empty: in all.
    const std::vector<LightSector>& getSectors() const { return m_sectors; }
    void setSectors(std::vector<LightSector> sectors) { m_sectors = std::move(sectors); }
    /// At which it is just seen on a clear night, m; 0: it looks as bright however far.
    float getNominalRange() const { return m_nominal_range; }
    void setNominalRange(float range) { m_nominal_range = range; }
    /// How long one flash and the darkness after it take, and the flash of that, s; zeros: steady.
    void setFlash(const vec2& period_and_lit) { m_flash = period_and_lit; }
    bool isLit(double time) const; ///< at that time of the scene
    /// Hung so that pitch and roll of the parent don't reach it.
    void setStabilized(bool stabilized) { m_stabilized = stabilized; }
    /// The pose of the lamp itself in the world: the node's; a stabilised one's is what it were if
    /// its parent stood level in its place, on its heading.
    dmat4 getLampTransform() const;

private:
    float m_intensity = 0, m_reach = 0;
    vec2 m_cone = ALL_ROUND;
    float m_beam = 0, m_flicker = 0;
    std::vector<LightSector> m_sectors;
    float m_nominal_range = 0;
    vec2 m_flash;
    bool m_stabilized = false;
};

/// Wind that makes the grass around it flutter.
class NodeField : public Node {
public:
    static constexpr vec2 REACH{13, 25};
    /// `reach`: how far from the field its force is down to a third, and how high above the ground
    /// the field has none, m.
    explicit NodeField(const vec2& reach = REACH) : Node(NODE_FIELD), m_reach(reach) {}
    /// How far blades lean away, how much they shiver, how much they are pressed down, 0 to 1 each;
    /// i from 0 to 2.
    float getParameter(int i) const { return m_parameters[i]; }
    void setParameter(int i, float value) { m_parameters[i] = value; }
    const vec2& getReach() const { return m_reach; }

private:
    float m_parameters[3] = {};
    vec2 m_reach;
};

/// Wind of a rotor, or of whatever else blows down: where it meets the sea, rings run outwards and
/// foam is torn off while the node can be seen. It comes from the place of the prefab that the node
/// belongs to, without one from its own; the node itself may lie on the surface, among the emitters
/// of the same wind.
class NodeDowndraught : public Node {
public:
    /// `radius` of the rotor, m; `fades`: altitudes of its place from and to which the wind's force
    /// goes from 1 to 0.
    NodeDowndraught(float radius, const vec2& fades)
        : Node(NODE_DOWNDRAUGHT), m_radius(radius), m_fades(fades) {}
    float getRadius() const { return m_radius; }
    const vec2& getFades() const { return m_fades; }

private:
    float m_radius;
    vec2 m_fades;
};

} // namespace ig
