// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Sky.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"
#include "ig/scene/Object.h"
#include "ig/scene/World.h"
#include "render/gl/RendererGL.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

/// A small picture of a scene built in the test. All tests share one renderer; they are skipped on
/// machines that can't draw.
class PictureScene : public testing::Test {
public:
    static constexpr int WIDTH = 320, HEIGHT = 180;
    static constexpr double LONGITUDE = -155.2, LATITUDE = 19.9; ///< open sea
    static constexpr double HALF_HEIGHT = 0.5; ///< of the picture at unit distance

    static void SetUpTestSuite() {
        s_renderer = std::make_unique<ig::RendererGL>(ig::RendererGL::Surface::none);
        s_drawable = s_renderer->init(WIDTH, HEIGHT);
    }
    static void TearDownTestSuite() { s_renderer.reset(); }

    void SetUp() override {
        if (!s_drawable) GTEST_SKIP() << "no OpenGL without a display here";
        const ig::Sky sky = ig::computeSky(12, LONGITUDE, 80);
        m_frame.sun_direction = sky.sun_direction;
        m_frame.moon_direction = sky.moon_direction;
        m_frame.visibility = 200000;
        m_camera.setProjection(projection());
    }
    void TearDown() override { m_world.clear(); }

    static ig::dmat4 projection(double shear_x = 0, double shear_y = 0) {
        constexpr double NEAR = 0.1, FAR = 1e7, TOP = HALF_HEIGHT * NEAR;
        constexpr double RIGHT = TOP * WIDTH / HEIGHT;
        return ig::frustum(-RIGHT, RIGHT, -TOP, TOP, NEAR, FAR, shear_x, shear_y);
    }

    /// Neither sun nor moon.
    void setMidnight() {
        m_frame.sun_direction = ig::computeSky(0, LONGITUDE, 80).sun_direction;
        m_frame.moon_direction = m_frame.sun_direction;
    }
    /// Pitch: down is positive.
    void look(double altitude, double heading, double pitch, double north = 0) {
        m_camera.setWgsPosition({LONGITUDE, LATITUDE + north / 110700, altitude});
        m_camera.setWgsHPR({heading, pitch, 0});
    }
    /// A square of `size` metres that faces the camera at `distance` along its axis, moved by
    /// (right, up) metres; it shines in its colour.
    ig::ObjectMesh* addCard(double distance, float size, const ig::vec4& color, double right = 0,
                            double up = 0) {
        auto* card = new ig::ObjectMesh(square(size));
        card->setTransform(m_camera.getWorldTransform() *
                           ig::translate(ig::dvec3(right, up, -distance)));
        card->setSurfaceMaterial(0, material(color, 3));
        m_world.addNode(card);
        return card;
    }
    /// In its own XY plane, facing its Z.
    static std::shared_ptr<const ig::Mesh> square(float size) {
        const float h = size / 2;
        ig::Mesh::Surface s;
        s.positions = {{-h, -h, 0}, {h, -h, 0}, {h, h, 0}, {-h, h, 0}};
        s.normals.assign(4, {0, 0, 1});
        s.indices = {0, 1, 2, 0, 2, 3};
        return std::make_shared<ig::Mesh>(std::vector<ig::Mesh::Surface>{s});
    }
    ig::Material* material(const ig::vec4& color, float emission) {
        m_materials.push_back(std::make_unique<ig::Material>());
        m_materials.back()->addValue("diffuse_color", color);
        m_materials.back()->addSlider("emission", emission);
        return m_materials.back().get();
    }
    /// A level square of `size` metres below the camera.
    ig::ObjectMesh* addFloor(double altitude, float size) {
        auto* floor = new ig::ObjectMesh(square(size));
        floor->setWgsPosition({LONGITUDE, LATITUDE, altitude});
        floor->setWgsHPR({0, 0, 0});
        floor->setSurfaceMaterial(0, material({0.4f, 0.4f, 0.4f, 1}, 0));
        m_world.addNode(floor);
        return floor;
    }

    void draw() { s_renderer->render(m_world, m_camera, m_frame); }
    const std::uint8_t* pixel(double x, double y) { // (0, 0) top left to (1, 1)
        s_renderer->readPicture(m_picture);
        return m_picture.at(std::min(static_cast<int>(x * WIDTH), WIDTH - 1),
                            std::min(static_cast<int>(y * HEIGHT), HEIGHT - 1));
    }
    bool isRed(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        return p[0] > 150 && p[1] < 90 && p[2] < 90;
    }
    bool isGreen(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        return p[1] > 150 && p[0] < 90 && p[2] < 90;
    }

    static inline std::unique_ptr<ig::RendererGL> s_renderer;
    static inline bool s_drawable = false;
    const ig::vec4 RED{1, 0.01f, 0.01f, 1}, GREEN{0.01f, 1, 0.01f, 1};
    std::vector<std::unique_ptr<ig::Material>> m_materials; // outlive the world
    ig::World m_world;
    ig::Camera m_camera;
    ig::FrameInfo m_frame;
    ig::Picture m_picture;
};
