// SPDX-License-Identifier: MIT
#include "DisplayWarp.h"

#include "ig/base/jLog.h"
#include "render/image/ImageFile.h"
#include "render/image/Pfm.h"

using namespace ig;

namespace {

/// Each pixel shows itself.
void makeStraight(const wall::Display& display, Warp& warp) {
    warp.width = display.width;
    warp.height = display.height;
    for (int y = 0; y < warp.height; y++)
        for (int x = 0; x < warp.width; x++)
            warp.places.emplace_back(
                (static_cast<float>(x) + 0.5f) / static_cast<float>(warp.width),
                (static_cast<float>(y) + 0.5f) / static_cast<float>(warp.height));
}

bool readMesh(const std::string& path, Warp& warp) {
    FloatMap map;
    std::string message;
    if (readPfm(path, map, message) && map.channels != 3)
        message = "\"" + path +
                  "\" has one number a place: a mesh has three (PF), of which the "
                  "first two count";
    if (!message.empty()) {
        jLog::error("visual_channel: warp: %s", message.c_str());
        return false;
    }
    warp.width = map.width;
    warp.height = map.height;
    for (std::size_t i = 0; i < map.values.size(); i += 3)
        warp.places.emplace_back(map.values[i], map.values[i + 1]);
    return true;
}

bool readMask(const std::string& path, Picture& mask) {
    Image image;
    if (!readImage(path, image)) return false; // which has told why
    mask.width = image.width;
    mask.height = image.height;
    for (std::size_t i = 0; i < image.rgba.size(); i += 4)
        mask.rgb.insert(mask.rgb.end(), {image.rgba[i], image.rgba[i + 1], image.rgba[i + 2]});
    return true;
}

} // namespace

bool readWarp(const wall::Display& display, Warp& warp) {
    if (display.warp.empty() && display.blend.empty()) return true;
    if (display.warp.empty())
        makeStraight(display, warp);
    else if (!readMesh(display.warp, warp))
        return false;
    return display.blend.empty() || readMask(display.blend, warp.mask);
}
