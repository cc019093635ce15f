// SPDX-License-Identifier: MIT
#include "render/scene/SurfaceLook.h"

namespace ig {

namespace {

/// What decides whether light passes through.
void readCover(const Material* material, SurfaceLook& look) {
    look.color = readValue(material, "diffuse_color", look.color);
    look.rotor = readValue(material, "rotor", look.rotor);
    look.paint = readSlider(material, "paint", look.paint);
}

} // namespace

bool SurfaceLook::isOpaque(const Material* material) {
    SurfaceLook look;
    readCover(material, look);
    return look.isOpaque();
}

SurfaceLook SurfaceLook::read(const Material* material) {
    SurfaceLook look;
    if (!material) return look;
    readCover(material, look);
    look.roughness = readSlider(material, "roughness", look.roughness);
    look.metalness = readSlider(material, "metalness", look.metalness);
    look.emission = readSlider(material, "emission", 0);
    look.wetness = readSlider(material, "wetness", 0);
    look.ice = readSlider(material, "ice", 0);
    look.rain = readSlider(material, "rain_power", look.rain);
    look.wipes = readSlider(material, "wipes", 0);
    look.two_sided = readSlider(material, "two_sided", 0) > 0.5f;
    look.paving = readValue(material, "paving", look.paving);
    look.tile = readSlider(material, "texture_size", 0);
    static const jString BASE_COLOR = "base_color";
    look.texture = material->findTexture(BASE_COLOR);
    return look;
}

} // namespace ig
