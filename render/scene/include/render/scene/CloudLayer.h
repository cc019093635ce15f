// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"
#include "ig/math/vec.h"
#include "render/scene/Patterns.h"

#include <array>

namespace ig {

/// Where the clouds are. One field lies over the earth, thick and thin, and drifts with the wind
/// for as long as scene time goes on; a cloud stands where it is thicker than a threshold, which
/// follows from the cover that is told. All that shows clouds asks this field: the sky from below,
/// their deck from above, the shadows that they cast, the fog within them.
///
/// The renderer owns one; nothing of it flows back into the scene.
class CloudLayer {
public:
    CloudLayer();

    /// The field, for the device. See `makeCloudPattern`.
    const Pattern& getField() const { return m_field; }

    /// Lets the wind blow until the frame's time. Any number of times a frame.
    void drift(const FrameInfo& frame);
    /// Lays the field out about the main eye; only an eye that goes far makes a difference.
    void follow(const dvec3& geodetic);
    /// The clouds are again where they were at the beginning.
    void forget();

    /// Share of the sky that is covered, 0 to 1, by broken clouds or by the closed layer that is
    /// forming.
    static float getCover(const FrameInfo& frame);
    /// How thick the field must be for a cloud's edge, where that share of it is to be clouds;
    /// below all of it at 1, and above all at 0.
    float getThreshold(float cover) const;
    /// Half of the range of thickness over which an edge is soft.
    static float getSoftness(float cover);

    /// Of an eye, in the field's periods; 0 to 1.
    vec2 getPlace(const dvec3& geodetic) const;
    /// How much of a cloud is at a place of the field, 0 to 1, and at a height within the layer, 0
    /// to 1 too; the finest edges left out.
    float getDensity(vec2 place, float height, float cover) const;

private:
    bool isNear(const dvec3& geodetic) const;
    float getThickness(int x, int y) const;

    Pattern m_field;
    static constexpr int STEPS = 128;
    std::array<float, STEPS + 1> m_thresholds; ///< by cover
    dvec2 m_anchor{1e9, 1e9}; ///< longitude, latitude that the field is laid out from
    dvec2 m_drift;            ///< m, east and north, within a period
    double m_time = 0;        ///< of the scene, until which it has been blown, s
};

} // namespace ig
