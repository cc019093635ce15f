// SPDX-License-Identifier: MIT
#include "render/scene/SurfaceLook.h"

namespace ig {

namespace {

/// A surface's own material, and behind it what the model brings.
struct Materials {
    const Material *own, *model;
    float getSlider(const char* tag, float otherwise) const {
        return readSlider(own, tag, readSlider(model, tag, otherwise));
    }
    vec4 getValue(const char* tag, const vec4& otherwise) const {
        return readValue(own, tag, readValue(model, tag, otherwise));
    }
    /// Index as in `Material::PICTURES`.
    const jString* getTexture(int index) const {
        static const jString NAMES[] = {Material::PICTURES[0], Material::PICTURES[1],
                                        Material::PICTURES[2], Material::PICTURES[3],
                                        Material::PICTURES[4]};
        static const jString NONE = "none";
        const jString* path = own ? own->findTexture(NAMES[index]) : nullptr;
        if (path) return *path == NONE ? nullptr : path;
        return model ? model->findTexture(NAMES[index]) : nullptr;
    }
};

/// What decides whether light passes through.
void readCover(const Materials& materials, SurfaceLook& look) {
    look.color = materials.getValue("diffuse_color", look.color);
    look.rotor = materials.getValue("rotor", look.rotor);
    look.paint = materials.getSlider("paint", look.paint);
    look.texture = materials.getTexture(0);
    look.blend = materials.getSlider("blend", 0) > 0.5f;
}

} // namespace

bool SurfaceLook::isOpaque(const Material* material, const Material* model) {
    SurfaceLook look;
    readCover({material, model}, look);
    return look.isOpaque();
}

SurfaceLook SurfaceLook::read(const Material* material, const Material* model) {
    SurfaceLook look;
    if (!material && !model) return look;
    const Materials materials{material, model};
    readCover(materials, look);
    look.roughness = materials.getSlider("roughness", look.roughness);
    look.metalness = materials.getSlider("metalness", look.metalness);
    look.emission = materials.getSlider("emission", 0);
    look.wetness = materials.getSlider("wetness", 0);
    look.ice = materials.getSlider("ice", 0);
    look.rain = materials.getSlider("rain_power", look.rain);
    look.wipes = materials.getSlider("wipes", 0);
    look.two_sided = materials.getSlider("two_sided", 0) > 0.5f;
    look.paving = materials.getValue("paving", look.paving);
    look.tile = materials.getSlider("texture_size", 0);
    look.normal = materials.getTexture(1);
    look.metallic_roughness = materials.getTexture(2);
    look.emissive = materials.getTexture(3);
    look.occlusion = materials.getTexture(4);
    if (look.normal) look.normal_scale = materials.getSlider("normal_scale", 1);
    if (look.occlusion) look.occlusion_strength = materials.getSlider("occlusion_strength", 1);
    look.glow = materials.getValue("emissive_color", {}).xyz();
    look.alpha_cutoff = materials.getSlider("alpha_cutoff", 0);
    return look;
}

} // namespace ig
