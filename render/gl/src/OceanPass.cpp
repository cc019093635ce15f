// SPDX-License-Identifier: MIT
#include "OceanPass.h"

#include "Targets.h"
#include "WakePass.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/ocean/OceanFrame.h"
#include "render/scene/GlintList.h"
#include "render/scene/LightList.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ig {

namespace {

/// Texture units.
enum { UNIT_DISPLACEMENT = gl::UNIT_FIRST_OWN, UNIT_RAISED = UNIT_DISPLACEMENT + 3 };
enum { UNIT_WATER = gl::UNIT_FIRST_OWN, UNIT_SLOPE, UNIT_EFFECTS = UNIT_SLOPE + 4 };

/// Of the programs that shade, by `OceanPass::Shade`.
constexpr const char* SHADE_WORDS[] = {"WAKES DOWNWASH SHADOWS LIGHTS",
                                       "WAKES DOWNWASH SHADOWS",
                                       "WAKES SHADOWS",
                                       "WAKES DOWNWASH",
                                       "WAKES",
                                       "",
                                       "WAKES DOWNWASH SHADOWS STORM LIGHTS",
                                       "WAKES DOWNWASH SHADOWS STORM",
                                       "WAKES STORM"};
/// Where something begins to show and has grown, by wind over the sea, m/s, or by the significant
/// height, m: waves of a gale look like one though the wind has gone down.
struct Growth {
    float wind[2], height[2];
};
constexpr Growth GALE{{14, 19}, {3.6f, 5.5f}}, HURRICANE{{23, 33}, {8, 13}};

constexpr GLuint MARK = 1; ///< in the stencil, where the sea is what one sees
constexpr int BLOCK = 31;  ///< cells of the grid along a row whose vertices stay in the cache
constexpr int BAND = 15;   ///< rows of cells that are drawn, or left out, together
/// Above these altitudes (m) waves move from geometry into the surface's roughness.
constexpr double FLATTEN_FROM = 500, FLATTEN_TO = 950;

} // namespace

void OceanPass::init(bool quick) {
    m_columns = quick ? 96 : 320;
    m_rows = quick ? 90 : 240;
    for (const auto& [fan, word] : {std::pair{&m_fan, ""}, std::pair{&m_raised_fan, "RAISED"}})
        fan->start("ocean.glsl ocean.vert", "ocean.glsl ocean.frag", word,
                   {{"uDisplacement0", UNIT_DISPLACEMENT},
                    {"uDisplacement1", UNIT_DISPLACEMENT + 1},
                    {"uDisplacement2", UNIT_DISPLACEMENT + 2},
                    {"uRaised", UNIT_RAISED}});
    for (int i = 0; i < NUM_SHADES; i++)
        m_shades[i].start(
            "ocean_shade.vert",
            "cloudshade.glsl shadow.glsl ocean.glsl ocean_waves.glsl ocean_effects.glsl "
            "ocean_light.glsl ocean_storm.glsl lights.glsl ocean_lamps.glsl "
            "ocean_foam.glsl ocean_shade.frag",
            SHADE_WORDS[i],
            {{"uWater", UNIT_WATER},
             {"uSlope0", UNIT_SLOPE},
             {"uSlope1", UNIT_SLOPE + 1},
             {"uSlope2", UNIT_SLOPE + 2},
             {"uSlope3", UNIT_SLOPE + 3},
             {"uEffects", UNIT_EFFECTS},
             {"uFarEffects", UNIT_EFFECTS + 1}});
    m_empty.create();
    makeGrid();
}

void OceanPass::makeGrid() {
    std::vector<vec2> cells;
    for (int j = 0; j < m_rows; j++)
        for (int i = 0; i < m_columns; i++)
            cells.push_back({static_cast<float>(i) / static_cast<float>(m_columns - 1),
                             static_cast<float>(j) / static_cast<float>(m_rows - 1)});
    std::vector<std::uint32_t> indices;
    const auto addCell = [&](int i, int j) {
        const auto a = static_cast<std::uint32_t>(j * m_columns + i);
        const auto c = a + static_cast<std::uint32_t>(m_columns);
        for (const std::uint32_t index : {a, a + 1, c + 1, a, c + 1, c})
            indices.push_back(index);
    };
    m_bands = {0};
    for (int bj = 0; bj < m_rows - 1; bj += BAND) {
        for (int bi = 0; bi < m_columns - 1; bi += BLOCK)
            for (int j = bj; j < std::min(bj + BAND, m_rows - 1); j++)
                for (int i = bi; i < std::min(bi + BLOCK, m_columns - 1); i++)
                    addCell(i, j);
        m_bands.push_back(static_cast<int>(indices.size()));
    }
    m_vertex_array.create();
    m_vertices.create();
    m_indices.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_vertices.getId());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(cells.size() * sizeof(vec2)),
                 cells.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indices.getId());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)), indices.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
}

// ------------------------------------------------------------------ drawing

/// The azimuths that the view can see, with a margin for crests that come in from the side, and its
/// depression angles. The whole circle when it sees what is straight below.
OceanPass::Fan OceanPass::fitFan(const FrameView& view, const OceanFrame& frame) {
    const auto altitude = static_cast<float>(view.geodetic.z);
    const auto waves = static_cast<float>(frame.significant_height);
    Fan fan{};
    fan.row_height = std::max(altitude, 4 + 4 * waves);
    const float horizon =
        1.02f *
        (std::sqrt(2 * static_cast<float>(EllipsoidModel::MEAN_RADIUS) * std::max(altitude, 1.0f)) +
         4000);
    fan.flattest = fan.row_height / horizon;
    fan.azimuth = -PI;
    fan.azimuth_range = 2 * PI;
    fan.steepest = 1.5706f;
    fan.first_band = 0;
    if (view.orthographic) return fan;

    const auto& p = view.projection.columns;
    const auto direction = [&](float x, float y) { // of a place in the picture, −1 to 1
        const vec3 ray((x + p[2].x) / p[0].x, (y + p[2].y) / p[1].y, -1);
        const auto& c = view.view.columns; // E to eye; its transpose leads back
        return normalize(vec3(dot(c[0].xyz(), ray), dot(c[1].xyz(), ray), dot(c[2].xyz(), ray)));
    };
    const vec3 middle = direction(0, 0);
    bool below = true; // whether the nadir is in the picture, or nearly
    for (int i = 0; i < 4; i++)
        below &= -view.side_normals[i].z > -0.35f;
    if (below || std::hypot(middle.x, middle.y) < 0.05f) return fan;

    const float center = std::atan2(middle.x, middle.y);
    float half_width = 0, depression = 0.05f;
    for (const float x : {-1.0f, 0.0f, 1.0f})
        for (const float y : {-1.0f, 0.0f, 1.0f}) {
            const vec3 d = direction(x, y);
            half_width = std::max(half_width,
                                  std::abs(std::remainder(std::atan2(d.x, d.y) - center, 2 * PI)));
            depression = std::max(depression, -std::asin(std::clamp(d.z, -1.0f, 1.0f)));
        }
    half_width += 0.06f + std::min(0.9f, 0.9f * waves / std::max(altitude, 1.0f));
    if (half_width >= PI) return fan;
    fan.azimuth = center - half_width;
    fan.azimuth_range = 2 * half_width;
    const float nearest = std::max(
        1.0f, altitude / std::tan(std::min(depression + 0.05f, 1.5f)) * 0.75f - 6 - 2 * waves);
    fan.steepest = std::min(std::atan(fan.row_height / nearest) + 0.02f, 1.5706f);
    return fan;
}

/// Of all rows, 0 to 1.
float OceanPass::getBandStart(int band) const {
    return static_cast<float>(std::min(band * BAND, m_rows - 1)) / static_cast<float>(m_rows - 1);
}

/// Bands of the fan that lie below land as a whole, however far waves move the water.
void OceanPass::leaveOutLand(Fan& fan, const Drawing& drawing) const {
    if (drawing.view.orthographic || drawing.view.everything) return;
    const float dry = drawing.land - 3 * static_cast<float>(drawing.frame.highest_crest);
    const int last = static_cast<int>(m_bands.size()) - 2;
    while (fan.first_band < last && fan.getRange(getBandStart(fan.first_band + 1)) < dry)
        fan.first_band++;
}

/// The part of the picture that the fan may cover, if it is only what lies beyond land.
PictureRect OceanPass::findSea(const Fan& fan, const Drawing& drawing) const {
    constexpr int STEPS = 16;
    constexpr float MARGIN = 0.02f;
    if (fan.first_band == 0) return PictureRect::whole();
    const auto crest = static_cast<float>(drawing.frame.highest_crest);
    const float near = std::max(fan.getRange(getBandStart(fan.first_band)) - 3 * crest, 1.0f);
    PictureRect rect;
    for (const float range : {near, fan.getRange(1)})
        for (int i = 0; i <= STEPS; i++) {
            const float azimuth = fan.azimuth + fan.azimuth_range * static_cast<float>(i) / STEPS;
            const float level =
                -static_cast<float>(drawing.view.geodetic.z) - HALF_CURVATURE * range * range;
            const vec3 place{std::sin(azimuth) * range, std::cos(azimuth) * range, level};
            if ((drawing.view.view * place).z > -0.2f * range) return PictureRect::whole();
            rect.include(PictureRect::of(drawing.view, place, crest));
        }
    rect.low = {-1, std::max(rect.low.y - MARGIN, -1.0f)};
    rect.high = {1, std::min(rect.high.y + MARGIN, 1.0f)};
    return rect;
}

/// What ocean.glsl asks for.
void OceanPass::setPlane(gl::Program& program, const FrameView& view, const OceanFrame& frame) {
    const double altitude = view.geodetic.z, latitude = view.geodetic.y * DEG_TO_RAD<double>;
    const double t = std::clamp((altitude - FLATTEN_FROM) / (FLATTEN_TO - FLATTEN_FROM), 0.0, 1.0);
    const double amplitude = 1 - t * t * (3 - 2 * t);
    program.set("uWaves", vec4(static_cast<float>(altitude), static_cast<float>(amplitude),
                               static_cast<float>(frame.mean_level),
                               static_cast<float>(frame.significant_height)));

    // The plane of the waves around the eye, to the second order: radii of curvature at its place
    // against the metres per degree at the anchor.
    const auto [meridian, prime] = EllipsoidModel().getRadii(view.geodetic.y);
    const double cosine = std::max(std::cos(latitude), 1e-3), tangent = std::tan(latitude);
    const double kx = frame.metres_per_longitude / (prime * cosine * DEG_TO_RAD<double>);
    const double ky = frame.metres_per_latitude / (meridian * DEG_TO_RAD<double>);
    program.set("uPlane", vec4(static_cast<float>(kx), static_cast<float>(ky),
                               static_cast<float>(tangent / meridian),
                               static_cast<float>(tangent / (2 * prime))));

    const dvec2 nadir = frame.toPlane(view.geodetic.x, view.geodetic.y);
    vec4 tiles[OceanTiles::TILES];
    for (int i = 0; i < OceanTiles::TILES; i++) {
        const double edge = frame.tiles[i].tile;
        const int n = frame.tiles[i].resolution;
        tiles[i] = {static_cast<float>(1 / edge), fraction(nadir.x / edge + 0.5 / n),
                    fraction(nadir.y / edge + 0.5 / n), static_cast<float>(edge / n)};
    }
    program.set("uTile", tiles, OceanTiles::TILES);
    constexpr double C = OceanFrame::SECOND_COSINE, S = OceanFrame::SECOND_SINE;
    const double edge = frame.tiles[0].tile;
    const int n = frame.tiles[0].resolution;
    const double x = C * nadir.x - S * nadir.y + OceanFrame::SECOND_OFFSET_X;
    const double y = S * nadir.x + C * nadir.y + OceanFrame::SECOND_OFFSET_Y;
    program.set("uTurned", vec4(static_cast<float>(C), static_cast<float>(S),
                                fraction(x / edge + 0.5 / n), fraction(y / edge + 0.5 / n)));
}

void OceanPass::drawFan(const Fan& fan, const Drawing& drawing) {
    const FrameView& view = drawing.view;
    const OceanFrame& frame = drawing.frame;
    const WakePass& wakes = drawing.wakes;
    const dvec2 nadir = frame.toPlane(view.geodetic.x, view.geodetic.y);
    gl::Program& program = wakes.isRaised() ? m_raised_fan : m_fan;
    program.use();
    program.set("uFan", vec4(fan.azimuth, fan.azimuth_range, fan.steepest, fan.flattest));
    program.set("uFanSize", vec3(static_cast<float>(m_columns - 1), static_cast<float>(m_rows - 1),
                                 fan.row_height));
    program.set("uPatch", vec2{toNoise(nadir.x), toNoise(nadir.y)});
    setPlane(program, view, frame);
    if (wakes.isRaised()) {
        const WakePass::Map& near = wakes.getNear();
        program.set("uRaisedPlace", vec3(near.corner.x + near.drift.x, near.corner.y + near.drift.y,
                                         1 / near.edge));
        gl::bindTexture(UNIT_RAISED, near.height);
    }
    for (int i = 0; i < OceanTiles::DISPLACED; i++)
        gl::bindTexture(UNIT_DISPLACEMENT + i, m_tiles.getDisplacement(i));
    glBindVertexArray(m_vertex_array.getId());
    const auto first = static_cast<std::size_t>(m_bands[static_cast<std::size_t>(fan.first_band)]);
    glDrawElements(GL_TRIANGLES, m_bands.back() - static_cast<int>(first), GL_UNSIGNED_INT,
                   reinterpret_cast<const void*>(first * sizeof(std::uint32_t)));
}

/// How much of a gale the sea is, and how much of a hurricane, 0 to 1.
vec2 OceanPass::findStorm(const OceanFrame& frame) {
    const auto grown = [](double now, const float(&of)[2]) {
        return std::clamp((static_cast<float>(now) - of[0]) / (of[1] - of[0]), 0.0f, 1.0f);
    };
    const auto share = [&](const Growth& of) {
        return std::max(grown(frame.wind, of.wind), grown(frame.significant_height, of.height));
    };
    return {share(GALE), share(HURRICANE)};
}

/// What the waves look like.
void OceanPass::setSurface(gl::Program& program, const FrameView& view, const OceanFrame& frame) {
    vec4 slopes[OceanTiles::TILES];
    for (int i = 0; i < OceanTiles::TILES; i++) {
        const OceanTile& tile = frame.tiles[i];
        slopes[i] = {m_tiles.getSlopeScale(i), tile.slope_variance / 2,
                     static_cast<float>(std::log2(tile.tile / tile.resolution)), 0};
    }
    program.set("uSlopes", slopes, OceanTiles::TILES);
    program.set("uFoam", m_tiles.getFoam());

    const dvec2 nadir = frame.toPlane(view.geodetic.x, view.geodetic.y);
    const double towards = (frame.wave_direction + 180) * DEG_TO_RAD<double>;
    const double wx = std::sin(towards), wy = std::cos(towards);
    program.set("uWind", vec4(static_cast<float>(wx), static_cast<float>(wy),
                              static_cast<float>(frame.ripple_slope_variance),
                              std::clamp(static_cast<float>(frame.wind - 8) / 10, 0.0f, 1.3f)));
    program.set("uStorm", findStorm(frame));
    program.set("uFoamOrigin",
                vec2{toNoise(nadir.x * wx + nadir.y * wy), toNoise(nadir.y * wx - nadir.x * wy)});
}

/// What ships and helicopters do to them.
void OceanPass::setEffects(gl::Program& program, const std::vector<vec4>& downdraughts,
                           const WakePass& wakes) {
    constexpr vec4 NONE{1e6f, 1e6f, 1, 0};
    vec4 winds[MOST_DOWNDRAUGHTS];
    for (std::size_t i = 0; i < MOST_DOWNDRAUGHTS; i++) {
        winds[i] = i < downdraughts.size() ? downdraughts[i] : NONE;
        winds[i].z = std::max(winds[i].z, 0.1f);
    }
    program.set("uDowndraughts", winds, MOST_DOWNDRAUGHTS);
    int unit = UNIT_EFFECTS;
    for (const auto& [map, name] : {std::pair{&wakes.getNear(), "uEffectsPlace"},
                                    std::pair{&wakes.getFar(), "uFarEffectsPlace"}}) {
        const float texel = std::log2(map->edge / static_cast<float>(wakes.getSize()));
        program.set(name, vec4(map->corner.x, map->corner.y, 1 / map->edge, texel));
        gl::bindTexture(unit++, map->texture);
    }
}

/// Where rings under the nearest downdraughts may be seen.
PictureRect OceanPass::findDownwash(const FrameView& view, const OceanFrame& frame,
                                    const std::vector<vec4>& downdraughts) {
    const auto height = static_cast<float>(frame.highest_crest);
    PictureRect rect;
    for (std::size_t i = 0; i < std::min(downdraughts.size(), std::size_t{MOST_DOWNDRAUGHTS});
         i++) {
        const vec4& wind = downdraughts[i];
        const float reach = DOWNWASH_REACH * std::max(wind.z, 0.1f) + height;
        const float level = view.getSeaLevel({wind.x, wind.y, 0});
        rect.include(PictureRect::ofBox(view, {wind.x, wind.y, level}, {reach, reach, height}));
    }
    return rect;
}

void OceanPass::findLit(const Drawing& drawing) {
    m_lit.clear();
    drawing.glints.addPaths(drawing.view, m_lit);
    drawing.lights.addOnSea(drawing.view, static_cast<float>(drawing.frame.highest_crest), m_lit);
}

void OceanPass::setGlints(gl::Program& program, const GlintList& list) {
    vec4 places[MOST_GLINTS], colors[MOST_GLINTS];
    for (std::size_t i = 0; i < list.glints.size(); i++) {
        places[i] = {list.glints[i].place, 0};
        colors[i] = {list.glints[i].color, 0};
    }
    program.set("uGlints", static_cast<int>(list.glints.size()));
    program.set("uGlintPlaces", places, MOST_GLINTS);
    program.set("uGlintColors", colors, MOST_GLINTS);
}

/// Where the sea's mark stands in a part of the picture; it is gone there afterwards.
void OceanPass::shade(Shade which, PictureRect rect, const Drawing& drawing) {
    rect.cut(m_sea);
    if (rect.isEmpty()) return;
    const FrameView& view = drawing.view;
    const auto w = static_cast<float>(drawing.targets.getSceneWidth());
    const auto h = static_cast<float>(drawing.targets.getSceneHeight());
    const auto left = static_cast<GLint>((rect.low.x * 0.5f + 0.5f) * w);
    const auto bottom = static_cast<GLint>((rect.low.y * 0.5f + 0.5f) * h);
    const auto right = static_cast<GLint>(std::ceil((rect.high.x * 0.5f + 0.5f) * w));
    const auto top = static_cast<GLint>(std::ceil((rect.high.y * 0.5f + 0.5f) * h));
    glScissor(left, bottom, right - left, top - bottom);
    if (view.everything) { // each program meets marks, in the state of the pipeline of a flight
        glClearStencil(MARK);
        glClear(GL_STENCIL_BUFFER_BIT);
        glClearStencil(0);
    }
    gl::Program& program = m_shades[which];
    program.use();
    setPlane(program, view, drawing.frame);
    setSurface(program, view, drawing.frame);
    setEffects(program, drawing.downdraughts, drawing.wakes);
    if (which == LIT || which == STORM_LIT) setGlints(program, drawing.glints);
    program.set("uRay", view.getRay());
    const auto& c = view.view.columns; // E to eye: its rows are the eye's axes
    program.set("uAhead", vec4(-c[0].z, -c[1].z, -c[2].z, view.orthographic ? 0.0f : 1.0f));
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

/// Each part of the sea by the program that knows no more than shows there: software renderers pay
/// for all that a program might do.
void OceanPass::shadeAll(const Drawing& drawing) {
    gl::bindTexture(UNIT_WATER, drawing.targets.water);
    for (int i = 0; i < OceanTiles::TILES; i++)
        gl::bindTexture(UNIT_SLOPE + i, m_tiles.getSlope(i));
    glBindVertexArray(m_empty.getId());
    glEnable(GL_SCISSOR_TEST);
    const PictureRect downwash = findDownwash(drawing.view, drawing.frame, drawing.downdraughts);
    const bool all = drawing.view.everything, storm = findStorm(drawing.frame).x > 0;
    findLit(drawing);
    for (const PictureRect& rect : m_lit.getRects()) {
        if (storm || all) shade(STORM_LIT, rect, drawing);
        if (!storm || all) shade(LIT, rect, drawing);
    }
    if (storm || all) {
        shade(STORM_SHADOWED, drawing.shadows, drawing);
        shade(STORM_SHADOWED, downwash, drawing);
        shade(STORM, PictureRect::whole(), drawing);
    }
    if (!storm || all) {
        PictureRect both = downwash;
        both.cut(drawing.shadows);
        shade(SHADOWED, all ? downwash : both, drawing);
        shade(SHADED, drawing.shadows, drawing);
        shade(BLOWN, downwash, drawing);
    }
    const bool still = drawing.wakes.getNear().empty && drawing.wakes.getFar().empty;
    if ((!storm && !still) || all) shade(WITH_WAKES, PictureRect::whole(), drawing);
    if ((!storm && still) || all) shade(OPEN, PictureRect::whole(), drawing);
    glDisable(GL_SCISSOR_TEST);
}

void OceanPass::cover(const Drawing& drawing) {
    glBindFramebuffer(GL_FRAMEBUFFER, drawing.targets.water_target.getId());
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_ALWAYS, MARK, MARK);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    Fan fan = fitFan(drawing.view, drawing.frame);
    leaveOutLand(fan, drawing);
    m_sea = findSea(fan, drawing);
    drawFan(fan, drawing);

    glBindFramebuffer(GL_FRAMEBUFFER, drawing.targets.scene_target.getId());
    glStencilOp(GL_KEEP, GL_KEEP, GL_ZERO);
}

/// Each pixel loses its mark with its first light.
void OceanPass::shade(const Drawing& drawing) {
    glDisable(GL_DEPTH_TEST);
    glStencilFunc(GL_EQUAL, MARK, MARK);
    shadeAll(drawing);
    glDisable(GL_STENCIL_TEST);
    glEnable(GL_DEPTH_TEST);
}

} // namespace ig
