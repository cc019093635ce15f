// SPDX-License-Identifier: MIT
#include "TerrainPass.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "render/scene/LandShares.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/SurfaceLook.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ig {

namespace {

constexpr int KEPT = 600;            ///< frames that a chunk outlives its last use
constexpr float CELL_PIXELS = 10;    ///< a cell larger than this in the picture is split
constexpr float GRAIN_PIXEL = 0.06f; ///< m: no grain shows where a pixel covers more (terrain.frag)
constexpr float SEA_BED = -15;       ///< altitude below which the sea hides everything

constexpr double NEARER = 1.4;      ///< so much nearer than it is, an eye soon is
constexpr std::size_t UPLOADED = 8; ///< meshes a view at most: 37 KiB each
constexpr double BELOW = 60;        ///< m around the place below the eye

} // namespace

void TerrainPass::Programs::start(const std::string& words) {
    const auto begin = [&](gl::Program& program, const char* fragment_files, const char* own) {
        program.start("cloudshade.glsl terrain.vert", fragment_files, words + own,
                      {{"uImagery", GroundImages::UNIT}});
    };
    begin(plain, "shadow.glsl terrain.frag", "");
    begin(lit, "shadow.glsl lights.glsl terrain.frag", "LIGHTS HILLS");
    begin(hilly, "shadow.glsl terrain.frag", "HILLS");
    begin(far, "shadow.glsl terrain.frag", "FAR");
}

bool TerrainPass::Programs::finish() {
    bool good = true;
    for (gl::Program* program : {&plain, &lit, &hilly, &far})
        good &= program->finish();
    return good;
}

/// The programs for what the terrain wears are made when it is first drawn, in a rehearsal mostly.
void TerrainPass::dress() {
    std::string words;
    if (m_terrain->getLandCover()) words += "COVER ";
    if (m_terrain->getImagery()) words += "IMAGERY ";
    if (words == m_words) return;
    m_words = words;
    m_programs.start(words);
    if (m_programs.finish() || words.empty()) return;
    m_programs.start("");
    m_programs.finish();
}

void TerrainPass::adopt(const ObjectTerrain& terrain) {
    const TerrainGrids grids = terrain.getGrids();
    const std::shared_ptr<const LandCover>& cover = terrain.getLandCover();
    if (cover == m_cover && std::ranges::equal(grids, m_layers, {}, {}, &Layer::grid)) return;
    m_cover = cover;
    m_layers.clear();
    for (const TerrainGrid& grid : grids) {
        m_layers.emplace_back();
        m_layers.back().grid = grid;
        m_layers.back().maker.adopt(grid, terrain.getOwner(), cover);
    }
}

dvec2 TerrainPass::placeInNoise(const TerrainGrid& grid, double longitude, double latitude) {
    const double column = grid.getColumn(longitude), row = grid.getRow(latitude);
    const dvec2 metres = getSampleLengths(grid, row);
    return {std::fmod(column * metres.x, double{NOISE_PERIOD}),
            std::fmod((grid.rows - row) * metres.y, double{NOISE_PERIOD})};
}

vec3 TerrainPass::readTurf(const Material* material) {
    return readValue(material, "diffuse_color", {0.16f, 0.21f, 0.07f, 1}).xyz();
}

void TerrainPass::purge() {
    if (m_frame % KEPT) return;
    for (Layer& layer : m_layers)
        std::erase_if(layer.chunks, [this](const auto& entry) {
            return entry.second.last_drawn < m_frame - KEPT;
        });
}

void TerrainPass::draw(const FrameView& view, const ObjectTerrain& terrain, const LightList& lights,
                       bool hills) {
    m_frame++;
    if (terrain.getGrids().empty()) return;
    m_terrain = &terrain;
    adopt(terrain);
    terrain.lookFrom(view.geodetic.x, view.geodetic.y);
    purge();
    dress();
    if (terrain.getImagery()) m_images.prepare(view, terrain);
    m_material = terrain.getSurfaceMaterial(0);
    m_lights = &lights;
    m_hills = hills;
    m_used = nullptr;
    glEnable(GL_CULL_FACE);
    for (Layer& layer : m_layers) // the coarser one tells whether a finer one is shown
        layer.is_shown = isShown(view, layer);
    for (Layer& layer : m_layers) {
        if (!layer.is_shown) continue;
        const TerrainSquare root = getRoot(layer.grid);
        const Sight sight = look(view, layer, root);
        if (view.hurried) {
            take(layer);
            wishFor(view, layer, root, sight);
        }
        if (sight.is_ground) visit(view, layer, root, sight);
    }
    glDisable(GL_CULL_FACE);
}

TerrainSquare TerrainPass::getRoot(const TerrainGrid& grid) {
    TerrainSquare root{0, 0, 1};
    while (root.getEdge() < std::max(grid.columns, grid.rows) - 1)
        root.step *= 2;
    return root;
}

/// A finer grid is shown when the parent's cells that it replaces would be too large.
bool TerrainPass::isShown(const FrameView& view, const Layer& layer) const {
    const TerrainGrid& grid = layer.grid;
    if (grid.parent < 0) return true;
    const Layer& parent = *std::next(m_layers.begin(), grid.parent);
    if (!parent.is_shown) return false;
    const double column = (grid.columns - 1) / 2.0, row = (grid.rows - 1) / 2.0;
    const double middle = (double{grid.lowest} + double{grid.highest}) / 2;
    const dvec3 center =
        EllipsoidModel().toWorld({grid.west + column * grid.spacing_longitude,
                                  grid.north - row * grid.spacing_latitude, middle});
    const dvec2 metres = getSampleLengths(grid, row);
    const double radius =
        std::hypot(metres.x * column, metres.y * row, double{grid.highest} - middle);
    const double distance =
        view.orthographic ? 1 : std::max(length(dvec3(view.toFrame(center))) - radius, 1.0);
    return getSampleLengths(parent.grid, 0).y > double{CELL_PIXELS * view.pixel_angle} * distance;
}

/// The bits that tell which grids are meant run out at 64, with which the last stands for more.
TerrainPass::Cover TerrainPass::getCover(const Layer& layer, const TerrainSquare& square) const {
    Cover cover;
    const int east = std::min(square.column + square.getEdge(), layer.grid.columns - 1);
    const int south = std::min(square.row + square.getEdge(), layer.grid.rows - 1);
    int bit = -1;
    for (const Layer& finer : m_layers) {
        bit = std::min(bit + 1, 63);
        if (!finer.is_shown || finer.grid.parent < 0 ||
            &*std::next(m_layers.begin(), finer.grid.parent) != &layer)
            continue;
        const auto [column, row, columns, rows] = finer.grid.within;
        if (east <= column || column + columns <= square.column || south <= row ||
            row + rows <= square.row)
            continue;
        cover.cut |= std::uint64_t{1} << bit;
        cover.is_whole = cover.is_whole || (square.column >= column && east <= column + columns &&
                                            square.row >= row && south <= row + rows);
    }
    return cover;
}

/// The cells in whose place these finer grids are shown.
std::vector<TerrainGrid::Cells> TerrainPass::getReplaced(std::uint64_t cut) const {
    std::vector<TerrainGrid::Cells> replaced;
    int bit = -1;
    for (const Layer& finer : m_layers) {
        bit = std::min(bit + 1, 63);
        if (cut >> bit & 1 && finer.is_shown) replaced.push_back(finer.grid.within);
    }
    return replaced;
}

void TerrainPass::use(gl::Program& program) {
    program.use();
    m_used = &program;
    program.set("uTurf", readTurf(m_material));
    program.set("uShore", readValue(m_material, "shore_color", {0.62f, 0.54f, 0.38f, 1}).xyz());
    program.set("uRock", readValue(m_material, "rock_color", {0.1f, 0.09f, 0.085f, 1}).xyz());
    program.set("uGround",
                vec4(readSlider(m_material, "shore_height", SHORE_HEIGHT),
                     readSlider(m_material, "rock_slope", 0.7f),
                     readSlider(m_material, "wetness", 0), readSlider(m_material, "ice", 0)));
}

TerrainPass::Sight TerrainPass::look(const FrameView& view, const Layer& layer,
                                     const TerrainSquare& square) const {
    const TerrainGrid& grid = layer.grid;
    Sight sight;
    if (square.column >= grid.columns - 1 || square.row >= grid.rows - 1) return sight;
    const HeightRange range =
        grid.overview->getSquareRange(square.column, square.row, square.getEdge());
    if (range.highest < SEA_BED) return sight; // no data: also
    const Cover cover = getCover(layer, square);
    if (cover.is_whole) return sight;
    sight.is_ground = true;
    sight.cut = cover.cut;
    const double size = square.getEdge();
    const double columns = std::min(size, grid.columns - 1.0 - square.column);
    const double rows = std::min(size, grid.rows - 1.0 - square.row);
    const double column = square.column + columns / 2, row = square.row + rows / 2;
    const double low = range.lowest, high = range.highest;
    const dvec3 middle =
        EllipsoidModel().toWorld({grid.west + column * grid.spacing_longitude,
                                  grid.north - row * grid.spacing_latitude, (low + high) / 2});
    const dvec2 metres = getSampleLengths(grid, row);
    sight.center = vec3(view.toFrame(middle));
    sight.radius =
        static_cast<float>(std::hypot(metres.x * columns, metres.y * rows) / 2 + (high - low) / 2 +
                           1 + metres.y * metres.y * size * size / 5e7); // the earth bends away
    sight.is_seen = view.sees(sight.center, sight.radius);
    sight.distance = view.orthographic ? 1 : std::max(length(sight.center) - sight.radius, 1.0f);
    const auto cell = static_cast<float>(metres.y * square.step);
    const float fine = CELL_PIXELS * view.pixel_angle * sight.distance;
    sight.is_coarse = square.step > 1 && (cover.cut || cell > fine);
    sight.is_soon = square.step > 1 && (cover.cut || cell * NEARER > fine);
    return sight;
}

/// What the thread has made.
void TerrainPass::take(Layer& layer) {
    for (const TerrainMaker::Made& made : layer.maker.take(UPLOADED))
        upload(layer.chunks[made.square.getKey()], layer.grid, made);
}

/// Has the thread make what is not there of what this eye sees wherever it looks, and soon will:
/// the coarse before the fine, which it stands in for. What a finer grid cuts is made when it is
/// drawn.
void TerrainPass::wishFor(const FrameView& view, Layer& layer, const TerrainSquare& square,
                          const Sight& sight) {
    if (!sight.is_ground) return;
    const auto chunk = layer.chunks.find(square.getKey());
    if (chunk != layer.chunks.end())
        chunk->second.last_drawn = m_frame;
    else if (!sight.cut)
        layer.maker.wish(square, double{sight.distance} / square.step * (sight.is_seen ? 1 : 4),
                         m_frame);
    if (!sight.is_soon) return;
    for (int i = 0; i < 4; i++) {
        const TerrainSquare part = square.getPart(i);
        wishFor(view, layer, part, look(view, layer, part));
    }
}

/// Whether a square's parts can be drawn in its place. Those below the eye always are: after a jump
/// one frame makes them all.
bool TerrainPass::canSplit(const FrameView& view, Layer& layer, const TerrainSquare& square) {
    const bool is_below = isBelow(view, layer.grid, square);
    for (int i = 0; i < 4; i++) {
        const TerrainSquare part = square.getPart(i);
        if (canShow(view, layer, part)) continue;
        if (!is_below) return false;
        upload(layer.chunks[part.getKey()], layer.grid,
               TerrainMaker::make(layer.grid, m_cover.get(), part));
    }
    return true;
}

/// Whether a square can be drawn without making anything for it, unless a finer grid cuts it.
bool TerrainPass::canShow(const FrameView& view, const Layer& layer,
                          const TerrainSquare& square) const {
    if (layer.chunks.contains(square.getKey())) return true;
    const Sight sight = look(view, layer, square);
    if (!sight.is_ground || !sight.is_seen || sight.cut) return true;
    if (!sight.is_coarse) return false;
    for (int i = 0; i < 4; i++)
        if (!canShow(view, layer, square.getPart(i))) return false;
    return true;
}

bool TerrainPass::isBelow(const FrameView& view, const TerrainGrid& grid,
                          const TerrainSquare& square) {
    const double column = grid.getColumn(view.geodetic.x), row = grid.getRow(view.geodetic.y);
    const dvec2 around = getSampleLengths(grid, row);
    const double edge = square.getEdge();
    return std::abs(column - square.column - edge / 2) < edge / 2 + BELOW / around.x &&
           std::abs(row - square.row - edge / 2) < edge / 2 + BELOW / around.y;
}

void TerrainPass::visit(const FrameView& view, Layer& layer, const TerrainSquare& square,
                        const Sight& sight) {
    if (!sight.is_seen) return;
    const bool is_split =
        sight.is_coarse && (!view.hurried || sight.cut || canSplit(view, layer, square));
    if (is_split) {
        for (int i = 0; i < 4; i++) {
            const TerrainSquare part = square.getPart(i);
            const Sight part_sight = look(view, layer, part);
            if (part_sight.is_ground) visit(view, layer, part, part_sight);
        }
        return;
    }
    if (view.everything)
        for (gl::Program* program : {&m_programs.plain, &m_programs.hilly, &m_programs.far})
            drawChunk(view, layer, square, sight.cut, *program);
    const bool is_far = !view.orthographic && sight.distance * view.pixel_angle > GRAIN_PIXEL;
    drawChunk(view, layer, square, sight.cut,
              m_lights->reach(sight.center, sight.radius) ? m_programs.lit
              : is_far                                    ? m_programs.far
              : m_hills                                   ? m_programs.hilly
                                                          : m_programs.plain);
}

void TerrainPass::drawChunk(const FrameView& view, Layer& layer, const TerrainSquare& square,
                            std::uint64_t cut, gl::Program& program) {
    if (&program != m_used) use(program);
    constexpr std::uint64_t CUT = std::uint64_t{1}
                                  << 63; // whole and cut ones are kept side by side
    Chunk& chunk = layer.chunks[square.getKey() | (cut ? CUT : 0)];
    if (!chunk.vertex_array || chunk.cut != cut) {
        chunk.cut = cut;
        upload(chunk, layer.grid,
               TerrainMaker::make(layer.grid, m_cover.get(), square, getReplaced(cut)));
    }
    chunk.last_drawn = m_frame;
    const mat4 transform = view.toFrame(chunk.frame);
    const auto& c = transform.columns;
    program.set("uRow0", vec4(c[0].x, c[1].x, c[2].x, c[3].x));
    program.set("uRow1", vec4(c[0].y, c[1].y, c[2].y, c[3].y));
    program.set("uRow2", vec4(c[0].z, c[1].z, c[2].z, c[3].z));
    program.set("uPatch",
                vec2{static_cast<float>(chunk.patch.x), static_cast<float>(chunk.patch.y)});
    if (m_terrain->getImagery())
        m_images.set(program, layer.grid, square.column, square.row, square.step);
    glBindVertexArray(chunk.vertex_array.getId());
    glDrawElements(GL_TRIANGLES, chunk.num_indices, GL_UNSIGNED_SHORT, nullptr);
}

void TerrainPass::upload(Chunk& chunk, const TerrainGrid& grid,
                         const TerrainMaker::Made& made) const {
    const auto& [square, mesh, shares] = made;
    const double half = square.getEdge() / 2.0;
    chunk.frame = mesh.frame;
    chunk.last_drawn = m_frame;
    chunk.patch = placeInNoise(grid, grid.west + (square.column + half) * grid.spacing_longitude,
                               grid.north - (square.row + half) * grid.spacing_latitude);
    chunk.num_indices = static_cast<int>(mesh.indices.size());
    gl::makeVertexArray(chunk.vertex_array, chunk.vertices, std::as_bytes(std::span(mesh.vertices)),
                        chunk.indices, std::as_bytes(std::span(mesh.indices)));
    using Vertex = TerrainMesh::Vertex;
    constexpr GLsizei STRIDE = sizeof(Vertex);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, STRIDE, nullptr);
    glVertexAttribPointer(1, 4, GL_INT_2_10_10_10_REV, GL_TRUE, STRIDE,
                          reinterpret_cast<const void*>(offsetof(Vertex, normal)));
    glVertexAttribPointer(2, 1, GL_FLOAT, GL_FALSE, STRIDE,
                          reinterpret_cast<const void*>(offsetof(Vertex, altitude)));
    for (GLuint i = 0; i < 3; i++)
        glEnableVertexAttribArray(i);
    if (!shares.empty()) addCover(chunk, shares);
}

/// To the vertex array that is bound.
void TerrainPass::addCover(Chunk& chunk, const std::vector<LandShares>& shares) {
    chunk.cover.create();
    glBindBuffer(GL_ARRAY_BUFFER, chunk.cover.getId());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(shares.size() * sizeof(LandShares)),
                 shares.data(), GL_STATIC_DRAW);
    for (const GLuint half : {0u, 1u}) {
        glVertexAttribPointer(3 + half, 4, GL_UNSIGNED_BYTE, GL_TRUE, sizeof(LandShares),
                              reinterpret_cast<const void*>(std::uintptr_t{4} * half));
        glEnableVertexAttribArray(3 + half);
    }
}

} // namespace ig
