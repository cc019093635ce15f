// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jLog.h"
#include "ig/scene/Object.h"
#include "plugins/ocean/OceanFrame.h"

#include <memory>

namespace ig {

class WaveField;
class World;

/// The sea: one surface that drawing, floating and queries agree on. Node type "ocean" in world
/// files, with the optional keys `beaufort`, `speed` and `angle`; see docs/ocean.md.
///
/// The waves are a function of the engine's running time and of the history of the settings. The
/// first query or access to the frame record in a frame evolves them to the present moment; all
/// others in that frame find the same sea. Everything runs on the main thread.
///
/// The mean level is altitude 0 of the ellipsoid, everywhere: the node's place only anchors the
/// plane in which the waves are laid out, and there their lengths and directions are true. 100 km
/// further north or south, at middle latitudes, they are stretched by one or two per cent.
class ObjectOcean : public Object {
public:
    ObjectOcean();
    ~ObjectOcean() override;

    /// The point of the surface above or below a world position, along the local vertical.
    virtual dvec3 getWorldPoint(const dvec3& world) const;

    // --- Settings. What is not finite is refused, what is out of range clamped, with a warning per
    // second at most. The waves follow within 10 s; what is set before the first query holds at
    // once.

    /// Height and length of the waves as a Beaufort number, 0 (still water) to 12, default 3.
    virtual void setBeaufort(float beaufort);
    virtual float getBeaufort() const;
    /// Wind over the sea, 0 to 75 m/s, default 0: ripples, whitecaps and streaks, not the waves
    /// themselves. Counts as at least 0.6 times the wind of the Beaufort number.
    virtual void setSpeed(float speed);
    virtual float getSpeed() const;
    /// Where the waves come from, degrees clockwise from north, any finite value; told back in
    /// [0, 360). Default 0.
    virtual void setAngle(float angle);
    virtual float getAngle() const;
    /// Whether a wind of the whole scene takes the place of the sea's own speed and angle. This
    /// engine has no such wind: the sea's own apply either way.
    virtual void setUseGlobalWind(bool on) { m_use_global_wind = on; }
    virtual bool getUseGlobalWind() const { return m_use_global_wind; }

    /// The sea as it stands in this frame, for drawing: the first call in a frame computes what
    /// only pictures read, half as much again as all queries need. Nothing that queries answer
    /// depends on whether anybody draws.
    const OceanFrame& getFrame() const;

    /// Brings every sea of the world that is enabled to this frame, whether or not anybody asks for
    /// it or draws it: the next answer must not depend on that. Once a frame.
    static void keepUp(const World& world);

    /// Brings the sea to a time of the caller's choice (s), for tests and tools; it holds until the
    /// engine begins another frame.
    void evolve(double time);

    /// Water, and the spray that wind tears off it.
    Ground getGroundAt(int, const dvec3&) const override { return Ground::of(Ground::Kind::water); }
    bool getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const override;

protected:
    BoundSphere getOwnBounds() const override { return BoundSphere::unbounded(); }

private:
    const WaveField& present() const;
    void anchor() const;
    bool accept(const char* operation, float& value, float low, float high, LogLimiter& limiter);

    bool m_use_global_wind = true;
    std::unique_ptr<WaveField> m_waves; ///< evolved by const queries: a cache of the moment
    mutable bool m_evolved = false;
    mutable int m_frame = 0;     ///< engine frame of the last evolution
    mutable dvec3 m_anchored_at; ///< the node's position that the plane is anchored at
    LogLimiter m_beaufort_limiter, m_speed_limiter, m_angle_limiter;
};

} // namespace ig
