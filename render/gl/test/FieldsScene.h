// SPDX-License-Identifier: MIT
#pragma once

#include "PictureScene.h"
#include "ig/scene/Mesh.h"
#include "render/image/Png.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <array>
#include <string>

/// A picture of four fields, and a look at which of them is where.
class FieldsScene : public PictureScene {
public:
    void TearDown() override {
        PictureScene::TearDown();
        ig::Mesh::release();
    }
    /// Four fields: red and green above, blue and white below.
    static std::array<unsigned char, 3> fieldAt(unsigned x, unsigned y, unsigned size) {
        const bool right = 2 * x >= size, below = 2 * y >= size;
        const auto on = [](bool value) { return static_cast<unsigned char>(value ? 255 : 0); };
        return {on(right == below), on(right), on(below)};
    }
    void writeFields(const char* path) {
        ig::Picture picture{8, 8, {}};
        for (unsigned y = 0; y < 8; y++)
            for (unsigned x = 0; x < 8; x++)
                for (const unsigned char value : fieldAt(x, y, 8))
                    picture.rgb.push_back(value);
        std::string message;
        ASSERT_TRUE(ig::writePng((m_folder.path() / path).string(), picture, message)) << message;
    }
    /// A square that fills the middle of the picture, facing the eye; its surface is the file's.
    void show(const ig::jString& model) {
        look(100, 0, 0);
        auto mesh = ig::Mesh::get(model);
        ASSERT_TRUE(mesh);
        auto* object = new ig::ObjectMesh(std::move(mesh));
        object->setTransform(m_camera.getWorldTransform() * ig::translate(ig::dvec3(0, 0, -20)));
        m_world.addNode(object);
        draw();
    }
    char color(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        const auto [low, high] = std::minmax({p[0], p[1], p[2]});
        if (high - low < 40) return high > 90 ? 'w' : 'k';
        return p[0] == high ? (p[2] > high / 2 ? 'm' : 'r') : p[1] == high ? 'g' : 'b';
    }
    std::string quarters() {
        return {color(0.46, 0.42), color(0.54, 0.42), color(0.46, 0.58), color(0.54, 0.58)};
    }
    bool logged(const char* part) const {
        return std::count_if(m_log.lines.begin(), m_log.lines.end(), [part](const auto& line) {
                   return line.find(part) != std::string::npos;
               }) == 1;
    }
    WorkingFolder m_folder;
    LogCapture m_log;
};
