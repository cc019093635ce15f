// SPDX-License-Identifier: MIT
#include "GrassPass.h"

#include "TerrainPass.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/terrain/LandCover.h"
#include "render/scene/LightList.h"
#include "render/scene/SurfaceLook.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float REACH = 30;        ///< m from the eye, where the last tufts stand
constexpr float HIGHEST_EYE = 40;  ///< m above the ground: from above that grass is not drawn
constexpr double EDGE = 4;         ///< of a square, m
constexpr int TUFTS = 100;         ///< on a full square
constexpr int PLANTED_A_FRAME = 6; ///< squares; what bounds the cost when the eye moves fast
constexpr int KEPT = 300;          ///< frames that a square outlives its last use
constexpr double STEEPEST = 0.6;   ///< rise over run that grass still grows on

float hash(std::uint32_t n) {
    n = (n ^ (n >> 15)) * 2246822519u;
    n = (n ^ (n >> 13)) * 3266489917u;
    return static_cast<float>((n ^ (n >> 16)) & 0xffffffu) / 16777216.0f;
}

/// Squares are numbered on the terrain's own grid, so that they stay where they are.
struct Lattice {
    dvec2 cell; ///< a square's edges in longitude and latitude, degrees

    explicit Lattice(const TerrainGrid& grid) {
        const double middle = grid.north - grid.spacing_latitude * grid.rows / 2;
        constexpr double DEGREE = EllipsoidModel::DEGREE;
        cell = {EDGE / (DEGREE * std::max(std::cos(middle * DEG_TO_RAD<double>), 0.01)),
                EDGE / DEGREE};
    }
    dvec2 toCell(const TerrainGrid& grid, double longitude, double latitude) const {
        return {grid.getColumn(longitude) * grid.spacing_longitude / cell.x,
                (grid.north - latitude) / cell.y};
    }
    dvec2 toDegrees(const TerrainGrid& grid, double column, double row) const {
        return {grid.west + column * cell.x, grid.north - row * cell.y};
    }
};

} // namespace

void GrassPass::init() {
    m_program.start("cloudshade.glsl shadow.glsl grass.vert", "grass.frag");
    m_lit_program.start("cloudshade.glsl shadow.glsl lights.glsl grass.vert", "grass.frag",
                        "LIGHTS");
    m_buffer.create();
    m_vertex_array.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.getId());
    for (GLuint i = 0; i < 2; i++) {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(i, 4, GL_FLOAT, GL_FALSE, sizeof(Instance),
                              reinterpret_cast<const void*>(i * sizeof(vec4)));
        glVertexAttribDivisor(i, 1);
    }
}

// ------------------------------------------------------------------ where grass grows

void GrassPass::adopt(const ObjectTerrain& terrain) {
    const TerrainGrids grids = terrain.getGrids();
    if (std::ranges::equal(grids, m_made_of)) return;
    m_made_of.assign(grids.begin(), grids.end());
    m_squares.clear();
}

namespace {

/// Whether slabs, houses or other things lie on the ground at places of a square.
class Cover {
public:
    Cover(const World& world, const TerrainGrid& grid, const Lattice& lattice)
        : m_world(world), m_grid(grid), m_lattice(lattice) {}

    bool isCovered(const ObjectTerrain& terrain, double column, double row) const {
        const dvec2 at = m_lattice.toDegrees(m_grid, column, row);
        double altitude = 0;
        if (!terrain.getAltitudeByLonLat(at.x, at.y, &altitude, nullptr)) return true;
        const EllipsoidModel earth;
        return m_world.meet(earth.toWorld({at.x, at.y, altitude + HEADROOM}),
                            earth.toWorld({at.x, at.y, altitude + CLEARANCE}), false, nullptr);
    }
    /// How many of nine places of a square, its corners among them, are covered.
    int count(const ObjectTerrain& terrain, std::int32_t column, std::int32_t row) const {
        int covered = 0;
        for (int i = 0; i < 9; i++)
            covered += isCovered(terrain, column + i % 3 / 2.0, row + i / 3 / 2.0);
        return covered;
    }

private:
    static constexpr double HEADROOM = 30;    // m: the highest roof
    static constexpr double CLEARANCE = 0.02; // m: what covers the ground lies higher than that

    const World& m_world;
    const TerrainGrid& m_grid;
    const Lattice& m_lattice;
};

} // namespace

void GrassPass::plant(Square& square, const World& world, const ObjectTerrain& terrain,
                      std::int32_t column, std::int32_t row) const {
    const TerrainGrid& grid = terrain.getGrids().front();
    const Lattice lattice(grid);
    const EllipsoidModel earth;
    const dvec2 at = lattice.toDegrees(grid, column + 0.5, row + 0.5);
    square.frame = earth.getWGSTransform(earth.toWorld({at.x, at.y, 0}));
    square.noise = TerrainPass::placeInNoise(grid, at.x, at.y);
    double altitude = 0;
    const Cover cover(world, grid, lattice);
    const int covered = cover.count(terrain, column, row);
    if (covered == 9 || !terrain.getAltitudeByLonLat(at.x, at.y, &altitude, nullptr)) return;
    square.middle = {0, 0, static_cast<float>(altitude)};
    const float shore =
        readSlider(terrain.getSurfaceMaterial(0), "shore_height", TerrainPass::SHORE_HEIGHT);
    const LandCover* land = terrain.getLandCover().get();
    const auto seed = column * 73856093u ^ row * 19349663u;
    const dvec3 up = square.frame.getMat3().columns[2];
    const double least_up = 1 / std::hypot(1.0, STEEPEST);
    for (std::uint32_t i = 0; i < TUFTS; i++) {
        const double u = hash(seed + 3 * i), v = hash(seed + 3 * i + 1);
        const dvec2 place = lattice.toDegrees(grid, column + u, row + v);
        dvec3 normal;
        if (!terrain.getAltitudeByLonLat(place.x, place.y, &altitude, &normal)) continue;
        if (altitude < shore * 1.6 || dot(normal, up) < least_up) continue;
        if (land && !LandCover::getTraits(land->getClass(place.x, place.y)).has_grass) continue;
        if (covered && cover.isCovered(terrain, column + u, row + v)) continue;
        const float chance = hash(seed + 3 * i + 2);
        square.tufts.push_back(
            {{static_cast<float>((u - 0.5) * EDGE), static_cast<float>((0.5 - v) * EDGE),
              static_cast<float>(altitude)},
             0.10f + 0.22f * chance * chance,
             static_cast<float>(i) / TUFTS});
    }
}

void GrassPass::purge() {
    if (m_frame % KEPT) return;
    for (auto entry = m_squares.begin(); entry != m_squares.end();)
        entry =
            entry->second.last_used < m_frame - KEPT ? m_squares.erase(entry) : std::next(entry);
}

// ------------------------------------------------------------------ a frame

void GrassPass::draw(const FrameView& view, const World& world, const ObjectTerrain& terrain,
                     const std::vector<const NodeField*>& fields, const LightList& lights) {
    m_instances.clear();
    if (view.everything)
        m_instances.push_back({vec4(0, 5, 0, 0.1f), vec4()}); // nothing is planted for a rehearsal
    else
        gather(view, world, terrain);
    if (m_instances.empty()) return;
    gl::stream(m_vertex_array, m_buffer, std::as_bytes(std::span(m_instances)));
    gl::Program& program = lights.reach({}, REACH) ? m_lit_program : m_program;
    program.use();
    program.set("uTurf", TerrainPass::readTurf(terrain.getSurfaceMaterial(0)));
    program.set("uReach", REACH);
    setField(program, view, fields);
    constexpr int VERTICES = 15; // five blades of one triangle
    glDrawArraysInstanced(GL_TRIANGLES, 0, VERTICES, static_cast<GLsizei>(m_instances.size()));
}

/// The tufts in view, near an eye near the ground.
void GrassPass::gather(const FrameView& view, const World& world, const ObjectTerrain& terrain) {
    m_frame++;
    m_planted = 0;
    double ground = 0;
    if (terrain.getGrids().empty() || view.orthographic ||
        !terrain.getAltitudeByLonLat(view.geodetic.x, view.geodetic.y, &ground, nullptr) ||
        view.geodetic.z - ground > HIGHEST_EYE)
        return;
    adopt(terrain);
    purge();
    const TerrainGrid& grid = terrain.getGrids().front();
    const dvec2 here = Lattice(grid).toCell(grid, view.geodetic.x, view.geodetic.y);
    const auto column = static_cast<std::int32_t>(std::floor(here.x));
    const auto row = static_cast<std::int32_t>(std::floor(here.y));
    // Rings from the eye outwards: the nearest squares are planted first.
    constexpr auto RINGS = static_cast<std::int32_t>(REACH / EDGE) + 1;
    visit(view, world, terrain, column, row);
    for (std::int32_t ring = 1; ring <= RINGS; ring++)
        for (std::int32_t i = -ring; i < ring; i++) {
            visit(view, world, terrain, column + i, row - ring);
            visit(view, world, terrain, column + ring, row + i);
            visit(view, world, terrain, column - i, row + ring);
            visit(view, world, terrain, column - ring, row - i);
        }
}

void GrassPass::visit(const FrameView& view, const World& world, const ObjectTerrain& terrain,
                      std::int32_t column, std::int32_t row) {
    const std::uint64_t key =
        static_cast<std::uint64_t>(row) << 32 | static_cast<std::uint32_t>(column);
    const auto known = m_squares.find(key);
    if (known == m_squares.end()) {
        if (m_planted >= PLANTED_A_FRAME) return;
        m_planted++;
        plant(m_squares[key], world, terrain, column, row);
    }
    Square& square = known == m_squares.end() ? m_squares[key] : known->second;
    square.last_used = m_frame;
    if (!square.tufts.empty()) addInstances(view, square);
}

void GrassPass::addInstances(const FrameView& view, const Square& square) {
    const mat4 to_eye = view.toFrame(square.frame);
    const vec3 middle = to_eye * square.middle;
    if (!view.sees(middle, EDGE)) return;
    const float near = 1 - length(middle) / REACH;
    if (near <= 0) return;
    // Fewer the farther, each a little higher: the square's own order keeps those that stay.
    const float share = near * near * std::sqrt(near);
    for (const Tuft& tuft : square.tufts) {
        if (tuft.chance > share) break;
        const float fade = std::min((share - tuft.chance) * 8, 1.0f);
        const vec3 place = to_eye * tuft.place;
        m_instances.push_back({vec4(place, tuft.height * fade),
                               vec4(static_cast<float>(square.noise.x) + tuft.place.x,
                                    static_cast<float>(square.noise.y) + tuft.place.y,
                                    hash(static_cast<std::uint32_t>(tuft.chance * TUFTS) +
                                         static_cast<std::uint32_t>(square.noise.x * 7)),
                                    0)});
    }
}

/// The field that is nearest to the eye.
void GrassPass::setField(gl::Program& program, const FrameView& view,
                         const std::vector<const NodeField*>& fields) {
    vec4 place(0, 0, 0, 0), motion(0, 0, 0, 0);
    float nearest = 1e9f;
    for (const NodeField* field : fields) {
        const vec3 at(view.toFrame(field->getWorldPosition()));
        if (length(at) >= nearest) continue;
        nearest = length(at);
        place = vec4(at, field->getReach().x);
        motion = {field->getParameter(0), field->getParameter(1), field->getParameter(2),
                  field->getReach().y};
    }
    program.set("uField", place);
    program.set("uFieldMotion", motion);
}

} // namespace ig
