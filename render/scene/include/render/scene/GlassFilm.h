// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/SceneList.h"
#include "render/scene/ShaderConstants.h"

#include <array>
#include <cstdint>
#include <span>

namespace ig {

struct FrameInfo;
struct FrameView;

/// What lies on the panes around the eye, from frame to frame: how far the drops have run, how high
/// the snow has gathered, and how much of both is back where wipers have been. The renderer owns
/// one for its main eye and updates it once a frame; nothing of the scene depends on it.
///
/// A wiper's sector is kept as bins around its pivot, which the blade empties as it passes.
class GlassFilm {
public:
    static constexpr int BINS = 512; ///< of a full turn

    /// Share of a turn, −0.25 to 0.75, at which a way lies: it grows with the angle as an arc does
    /// on a square that stands on its corner, for which shaders need no arc tangent.
    static float toTurn(float angle_rad);

    /// `blades` of the frame, in any order; those beyond the first `MOST_BLADES` wipe nothing. A
    /// time before the last one's begins anew.
    void update(const std::vector<BladeItem>& blades, const FrameView& view,
                const FrameInfo& frame);
    /// The next frame is again the first.
    void forget() { *this = {}; }

    /// Two bytes a bin, a row a blade: share of the water on the open pane, height of the snow.
    std::span<const std::uint8_t> getTexels() const { return m_texels; }
    /// For each blade its pivot in E and the radius where it begins; the way of angle 0 and the
    /// radius where it ends; the way of a quarter turn and 1 where there is a blade.
    const std::array<vec4, std::size_t{3} * MOST_BLADES>& getPlaces() const { return m_places; }
    /// How far running drops have come, m; 1 where the airstream drives them, 0 where gravity does;
    /// how many of them run, 0 to 1; height of the snow on the open pane, 0 to 1.
    vec4 getFlow() const;
    /// Of the air over the panes, E, m/s.
    const vec3& getAir() const { return m_air; }
    bool hasSnow() const { return m_snow > 0; }

private:
    struct Sector {
        const Node* blade = nullptr;
        float turn = 0; ///< of the blade in the last frame
        std::array<float, BINS> water{}, snow{};
    };
    struct Weather { ///< of a step
        float dt, rain, snow, snow_change;
    };

    /// For each sector one of the blades, or null.
    using Blades = std::array<const BladeItem*, MOST_BLADES>;

    Blades match(const std::vector<BladeItem>& blades) const;
    void begin(Sector& sector, const BladeItem& blade) const;
    void refill(Sector& sector, const Weather& weather) const;
    static void wipe(Sector& sector, float turn, const Weather& weather);
    void run(float dt, float rain);
    void place(std::size_t i, const BladeItem& blade);

    bool m_begun = false;
    double m_time = 0;
    double m_travel = 0;  ///< m
    float m_snow = 0;     ///< on the open pane, 0 to 1
    float m_airspeed = 0; ///< m/s
    vec3 m_air;
    std::array<Sector, MOST_BLADES> m_sectors;
    std::array<vec4, std::size_t{3} * MOST_BLADES> m_places{};
    std::array<std::uint8_t, std::size_t{2} * BINS * MOST_BLADES> m_texels{};
};

} // namespace ig
