// SPDX-License-Identifier: MIT
#include "MeshPass.h"

#include "GlassPass.h"
#include "SkyPass.h"
#include "ig/scene/Mesh.h"
#include "render/scene/HillShadows.h"
#include "render/scene/LightList.h"
#include "render/scene/packNormal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace ig {

namespace {

struct Vertex {
    vec3 position;
    std::uint32_t normal; ///< 10 bits an axis
    vec2 place;
};

/// What only some meshes have; the others keep no place for it.
struct Extra {
    vec2 second; ///< texture coordinates
    std::uint16_t color[4];
};

constexpr float UNKNOWN_RIM = 0.2f; ///< m from the edge that all of a pane counts as
constexpr int PURGE_INTERVAL = 120; ///< frames between two looks for meshes that nobody holds

/// Pictures a metre on meshes without texture coordinates, where they are laid on from the nearest
/// side; 0: by the coordinates.
float getTiles(const SurfaceLook& look, bool has_places) {
    return has_places ? 0.0f : 1 / std::max(look.tile, 0.01f);
}

} // namespace

void MeshPass::init() {
    m_instance_buffer.create();
    m_has_base_instance =
        epoxy_gl_version() >= 42 || epoxy_has_gl_extension("GL_ARB_base_instance");
    const char* const variants[] = {"PLAIN",   "TEXTURED", "PAVED", "SOAKED",
                                    "PAINTED", "DECAL",    "GLASS", "ROTOR"};
    static_assert(std::size(variants) == NUM_SHADINGS);
    for (int i = 0; i < NUM_SHADINGS; i++)
        m_programs[i].start("cloudshade.glsl shadow.glsl mesh.vert", "shadow.glsl mesh.frag",
                            variants[i]);
    for (int i = 0; i < NUM_LIT; i++)
        m_lit_programs[i].start("cloudshade.glsl shadow.glsl mesh.vert",
                                "shadow.glsl lights.glsl mesh.frag",
                                std::string(variants[i]) + " LIGHTS");
    const char* const covers[] = {"", "RAINY", "SNOWY"}; // as PaneCover counts
    static_assert(std::size(covers) == NUM_COVERS);
    for (int i = 0; i < NUM_COVERS; i++)
        m_pane_programs[i].start("glass.vert", "glass.frag", covers[i]);
    m_depth_program.start("shadow.vert", "shadow.frag");
}

// ------------------------------------------------------------------ meshes on the device

const MeshPass::DeviceMesh& MeshPass::find(const std::shared_ptr<const Mesh>& mesh) {
    DeviceMesh& device = m_meshes[mesh.get()];
    if (!device.mesh) {
        device.mesh = mesh;
        fill(device, *mesh);
    }
    return device;
}

void MeshPass::fill(DeviceMesh& device, const Mesh& mesh) const {
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
    for (int i = 0; i < mesh.getNumSurfaces(); i++) {
        const Mesh::Surface& s = mesh.getSurface(i);
        const auto base = static_cast<std::uint32_t>(vertices.size());
        for (std::size_t v = 0; v < s.positions.size(); v++)
            vertices.push_back(
                {s.positions[v], packNormal(s.normals[v]), s.uvs.empty() ? vec2{} : s.uvs[v]});
        device.surfaces.push_back({indices.size() * sizeof(std::uint32_t),
                                   static_cast<int>(s.indices.size()),
                                   !s.uvs.empty(),
                                   {s.second, !s.colors.empty()}});
        for (const std::uint32_t index : s.indices)
            indices.push_back(base + index);
    }
    device.whole = {0, static_cast<int>(indices.size()), false, {}};
    gl::makeVertexArray(device.vertex_array, device.vertices, std::as_bytes(std::span(vertices)),
                        device.indices, std::as_bytes(std::span(indices)));
    constexpr GLsizei STRIDE = sizeof(Vertex);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, STRIDE, nullptr);
    glVertexAttribPointer(1, 4, GL_INT_2_10_10_10_REV, GL_TRUE, STRIDE,
                          reinterpret_cast<const void*>(offsetof(Vertex, normal)));
    glVertexAttribPointer(2, 2, GL_FLOAT, GL_FALSE, STRIDE,
                          reinterpret_cast<const void*>(offsetof(Vertex, place)));
    for (GLuint i = 0; i < 8; i++)
        glEnableVertexAttribArray(i);
    for (GLuint i = 3; i < 8; i++)
        glVertexAttribDivisor(i, 1);
    fillExtras(device, mesh);
    pointToInstances(0);
}

/// Into the vertex array that is bound.
void MeshPass::fillExtras(DeviceMesh& device, const Mesh& mesh) {
    std::vector<Extra> extras;
    bool needed = false;
    for (int i = 0; i < mesh.getNumSurfaces(); i++) {
        const Mesh::Surface& s = mesh.getSurface(i);
        needed |= !s.second_uvs.empty() || !s.colors.empty();
        for (std::size_t v = 0; v < s.positions.size(); v++) {
            const vec4 color = s.colors.empty() ? vec4(1, 1, 1, 1) : s.colors[v];
            Extra extra{s.second_uvs.empty() ? vec2{} : s.second_uvs[v], {}};
            const float values[] = {color.x, color.y, color.z, color.w};
            for (int k = 0; k < 4; k++)
                extra.color[k] = static_cast<std::uint16_t>(
                    std::lround(std::clamp(values[k], 0.0f, 1.0f) * 65535));
            extras.push_back(extra);
        }
    }
    if (!needed) return;
    device.extras.create();
    glBindBuffer(GL_ARRAY_BUFFER, device.extras.getId());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(extras.size() * sizeof(Extra)),
                 extras.data(), GL_STATIC_DRAW);
    glVertexAttribPointer(8, 2, GL_FLOAT, GL_FALSE, sizeof(Extra), nullptr);
    glVertexAttribPointer(9, 4, GL_UNSIGNED_SHORT, GL_TRUE, sizeof(Extra),
                          reinterpret_cast<const void*>(offsetof(Extra, color)));
    glEnableVertexAttribArray(8);
    glEnableVertexAttribArray(9);
}

/// Of the vertex array that is bound: its instances are those of this frame from `first` on.
void MeshPass::pointToInstances(int first) const {
    glBindBuffer(GL_ARRAY_BUFFER, m_instance_buffer.getId());
    for (GLuint i = 0; i < 4; i++)
        glVertexAttribPointer(
            3 + i, 4, GL_FLOAT, GL_FALSE, sizeof(Instance),
            reinterpret_cast<const void*>(first * sizeof(Instance) + i * sizeof(vec4)));
    glVertexAttribPointer(
        7, 3, GL_FLOAT, GL_FALSE, sizeof(Instance),
        reinterpret_cast<const void*>(first * sizeof(Instance) + offsetof(Instance, sun)));
}

void MeshPass::purge() {
    if (++m_frames % PURGE_INTERVAL) return;
    for (auto entry = m_meshes.begin(); entry != m_meshes.end();)
        entry = entry->second.mesh.use_count() == 1 ? m_meshes.erase(entry) : std::next(entry);
}

// ------------------------------------------------------------------ a frame

void MeshPass::upload(const SceneList& list, const Light& light) {
    purge();
    m_instances.clear();
    addBatches(list.opaque, m_opaque, light);
    addBatches(list.transparent, m_transparent, light);
    addBatches(list.panes, m_panes, light);
    // Near ones first, so that what they hide is not shaded. Where surfaces touch, the first drawn
    // shows: among equals that of the scene.
    std::sort(m_opaque.begin(), m_opaque.end(), [](const Batch& a, const Batch& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.item->order < b.item->order;
    });
    uploadInstances();
}

/// Into new storage: what was drawn with the last isn't waited for.
void MeshPass::uploadInstances() const {
    glBindBuffer(GL_ARRAY_BUFFER, m_instance_buffer.getId());
    glBufferData(GL_ARRAY_BUFFER, m_instances.size() * sizeof(Instance), m_instances.data(),
                 GL_STREAM_DRAW);
}

bool MeshPass::isLit(const MeshItem& item, const DeviceMesh& mesh, const LightList& lights) {
    const auto& surface = mesh.surfaces[static_cast<std::size_t>(item.surface)].surface;
    return (choose(item.look) < NUM_LIT || MappedPrograms::findFeatures(item.look, surface)) &&
           lights.reach(item.bounds.xyz(), item.bounds.w);
}

MeshPass::Instance MeshPass::toInstance(const mat4& transform, const vec4& haze, const vec3& sun) {
    const auto& c = transform.columns;
    return {{{c[0].x, c[1].x, c[2].x, c[3].x},
             {c[0].y, c[1].y, c[2].y, c[3].y},
             {c[0].z, c[1].z, c[2].z, c[3].z}},
            haze,
            sun};
}

/// Share of the key light that clouds let through to an instance: at the eye, and how much it grows
/// a metre to the east and north. Where the instance is large, one end may lie in a shadow and the
/// other in the sun.
vec3 MeshPass::shadeAcross(const vec4& bounds, const SkyPass& sky) {
    constexpr float LARGE = 60; // radius, m
    const vec3 middle = bounds.xyz();
    const float shade = sky.getCloudShade(middle), reach = bounds.w / 2;
    if (bounds.w < LARGE) return {shade, 0, 0};
    const auto slope = [&](const vec3& step) {
        return (sky.getCloudShade(middle + step) - sky.getCloudShade(middle - step)) / (2 * reach);
    };
    const float east = slope({reach, 0, 0}), north = slope({0, reach, 0});
    return {shade - east * middle.x - north * middle.y, east, north};
}

void MeshPass::addBatches(const std::vector<MeshItem>& items, std::vector<Batch>& batches,
                          const Light& light) {
    batches.clear();
    for (const MeshItem& item : items) {
        const MeshItem* last = batches.empty() ? nullptr : batches.back().item;
        if (last && last->mesh->get() == item.mesh->get() && last->surface == item.surface &&
            last->look == item.look && last->cover == item.cover) {
            batches.back().count++;
            batches.back().distance = std::min(batches.back().distance, item.distance);
            batches.back().lit =
                batches.back().lit || isLit(item, *batches.back().mesh, light.lights);
        } else {
            const DeviceMesh& mesh = find(*item.mesh);
            batches.push_back({&mesh, &item, static_cast<int>(m_instances.size()), 1, item.distance,
                               isLit(item, mesh, light.lights)});
        }
        const vec3 place = item.transform.getTranslate();
        const vec3 middle = item.bounds.xyz();
        m_instances.push_back(toInstance(
            item.transform,
            {light.sky.getHaze({place.x, place.y}), middle.z + light.hills.getAbove(middle)},
            shadeAcross(item.bounds, light.sky)));
    }
}

void MeshPass::upload(const ShadowCasters& casters) {
    m_casters.clear();
    m_instances.clear();
    for (const ShadowCasters::Job& job : casters.getJobs()) {
        const auto items = casters.getItems().subspan(static_cast<std::size_t>(job.first),
                                                      static_cast<std::size_t>(job.count));
        const ShadowCasters::Item* last = nullptr;
        for (const ShadowCasters::Item& item : items) {
            if (last && last->mesh->get() == item.mesh->get() && last->surface == item.surface) {
                m_casters.back().count++;
            } else {
                const DeviceMesh& mesh = find(*item.mesh);
                m_casters.push_back({&mesh,
                                     item.surface < 0
                                         ? &mesh.whole
                                         : &mesh.surfaces[static_cast<std::size_t>(item.surface)],
                                     static_cast<int>(m_instances.size()), 1});
            }
            last = &item;
            m_instances.push_back(toInstance(item.transform, {}, {}));
        }
    }
    uploadInstances();
}

/// A vertex array that is pointed elsewhere for each draw makes some drivers compile the vertex
/// shaders once more after a number of frames: where the draw itself can tell its first instance,
/// arrays stay as they are made.
void MeshPass::drawInstances(const DeviceMesh& mesh, const DeviceMesh::Range& range, int first,
                             int count) const {
    const auto* const indices = reinterpret_cast<const void*>(range.first);
    glBindVertexArray(mesh.vertex_array.getId());
    if (m_has_base_instance) {
        glDrawElementsInstancedBaseInstance(GL_TRIANGLES, range.count, GL_UNSIGNED_INT, indices,
                                            count, static_cast<GLuint>(first));
    } else {
        pointToInstances(first);
        glDrawElementsInstanced(GL_TRIANGLES, range.count, GL_UNSIGNED_INT, indices, count);
    }
}

MeshPass::Shading MeshPass::choose(const SurfaceLook& look) {
    if (look.paint >= 0) return look.texture ? DECAL : PAINTED;
    if (look.rotor.x > 0) return ROTOR;
    if (!look.isOpaque()) return GLASS;
    if (look.paving.x > 0 && look.paving.y > 0)
        return look.wetness > 0 || look.ice > 0 ? SOAKED : PAVED;
    return look.texture ? TEXTURED : PLAIN;
}

gl::Program& MeshPass::choose(const Batch& batch, unsigned features) {
    if (features) return m_mapped_programs.get(features | (batch.lit ? MappedPrograms::LIT : 0U));
    return (batch.lit ? m_lit_programs : m_programs)[choose(batch.item->look)];
}

void MeshPass::setLook(gl::Program& program, const SurfaceLook& look, bool has_places) {
    program.set("uColor", look.color);
    program.set("uSurface", vec4(look.roughness, look.metalness, look.emission, look.paint));
    program.set("uCover", vec4(look.wetness, look.ice, std::max(look.rain, 0.0f), 0));
    program.set("uPaving", look.paving);
    const Shading shading = choose(look);
    if (shading == ROTOR) program.set("uRotor", look.rotor);
    if (shading != TEXTURED && shading != DECAL) return;
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_textures.get(*look.texture));
    program.set("uTexture", gl::UNIT_FIRST_OWN);
    program.set("uTiles", getTiles(look, has_places));
}

/// Beyond what `setLook` sets.
void MeshPass::setMaps(gl::Program& program, const SurfaceLook& look, bool has_places) {
    using enum TextureStore::Use;
    const struct {
        const char* name;
        const jString* path;
        TextureStore::Use use;
    } maps[] = {{"uTexture", look.texture, color},
                {"uNormal", look.normal, normal},
                {"uMetallicRoughness", look.metallic_roughness, values},
                {"uEmissive", look.emissive, color},
                {"uOcclusion", look.occlusion, values}};
    int unit = gl::UNIT_FIRST_OWN;
    for (const auto& map : maps) {
        if (map.path) {
            gl::bindTexture(unit, m_textures.get(*map.path, map.use));
            program.set(map.name, unit);
        }
        unit++;
    }
    program.set("uFinish", vec4(look.normal_scale, look.occlusion_strength, look.alpha_cutoff, 0));
    program.set("uGlow", look.glow);
    program.set("uTiles", getTiles(look, has_places));
}

void MeshPass::draw(const std::vector<Batch>& batches) {
    const gl::Program* used = nullptr;
    for (const Batch& batch : batches) {
        const SurfaceLook& look = batch.item->look;
        const DeviceMesh::Range& range = batch.getRange();
        const unsigned features = MappedPrograms::findFeatures(look, range.surface);
        gl::Program& program = choose(batch, features);
        if (&program != used) program.use();
        used = &program;
        setLook(program, look, range.has_places);
        if (features) setMaps(program, look, range.has_places);
        if (look.two_sided) glDisable(GL_CULL_FACE);
        drawInstances(*batch.mesh, range, batch.first, batch.count);
        if (look.two_sided) glEnable(GL_CULL_FACE);
    }
}

void MeshPass::drawOpaque() {
    glEnable(GL_CULL_FACE);
    draw(m_opaque);
    glDisable(GL_CULL_FACE);
}

void MeshPass::drawTransparent() {
    beginTransparent();
    draw(m_transparent);
    endTransparent();
}

void MeshPass::drawPanes(const GlassPass& glass) {
    beginTransparent();
    const gl::Program* used = nullptr;
    for (const Batch& batch : m_panes) {
        gl::Program& program = m_pane_programs[static_cast<int>(batch.item->cover)];
        if (&program != used) {
            program.use();
            glass.bind(program);
        }
        used = &program;
        setLook(program, batch.item->look, false);
        program.set("uRim", batch.getRange().has_places ? 0.0f : UNKNOWN_RIM);
        program.set("uMiddle", vec3(batch.mesh->mesh->getBounds().center));
        if (batch.item->look.two_sided) glDisable(GL_CULL_FACE);
        drawInstances(*batch.mesh, batch.getRange(), batch.first, batch.count);
        if (batch.item->look.two_sided) glEnable(GL_CULL_FACE);
    }
    endTransparent();
}

void MeshPass::beginTransparent() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    glEnable(GL_CULL_FACE);
}

void MeshPass::endTransparent() {
    glDisable(GL_CULL_FACE);
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
}

/// The batches of a job are those whose first instance is among its items.
void MeshPass::drawCasters(const ShadowCasters::Job& job) {
    m_depth_program.use();
    for (const CasterBatch& batch : m_casters)
        if (batch.first >= job.first && batch.first < job.first + job.count)
            drawInstances(*batch.mesh, *batch.range, batch.first, batch.count);
}

} // namespace ig
