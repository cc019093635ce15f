// SPDX-License-Identifier: MIT

// The picture's end: from scene light to what is shown.

#include "PictureScene.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

using namespace ig;

class FinishOf : public PictureScene {
public:
    void TearDown() override {
        if (s_drawable) s_renderer->setScale(1);
        PictureScene::TearDown();
    }
    /// Shines in white, in the middle of the picture.
    void addDisc(double distance, double diameter) {
        constexpr int CORNERS = 32;
        Mesh::Surface s;
        for (int i = 0; i < CORNERS; i++) {
            const double angle = 360.0 * DEG_TO_RAD<double> * i / CORNERS;
            s.positions.push_back(
                vec3(dvec3(std::cos(angle), std::sin(angle), 0) * (diameter / 2)));
            if (i >= 2)
                s.indices.insert(s.indices.end(), {0, std::uint32_t(i) - 1, std::uint32_t(i)});
        }
        s.normals.assign(CORNERS, {0, 0, 1});
        auto* disc = new ObjectMesh(std::make_shared<Mesh>(std::vector<Mesh::Surface>{s}));
        disc->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -distance)));
        disc->setSurfaceMaterial(0, material({1, 1, 1, 1}, 3));
        m_world.addNode(disc);
    }
    /// Of what is brighter in the picture's middle: 0 round, 1 spread upright and level, -1 along
    /// the diagonals. `size` in pixels.
    double measureCross(double size) {
        s_renderer->readPicture(m_picture);
        const int ground = red(WIDTH / 4, HEIGHT / 2), reach = static_cast<int>(size);
        double cross = 0, all = 0; // the fourth harmonic over the angle, and what it is part of
        for (int y = -reach; y < reach; y++)
            for (int x = -reach; x < reach; x++) {
                const double r = std::hypot(x + 0.5, y + 0.5), angle = std::atan2(y + 0.5, x + 0.5);
                if (r > reach) continue;
                const double excess = red(WIDTH / 2 + x, HEIGHT / 2 + y) - ground;
                cross += excess * std::pow(r, 4) * std::cos(4 * angle);
                all += excess * std::pow(r, 4);
            }
        return cross / all;
    }
    /// How far what is of one brightness strays from a line through the picture's middle that is
    /// bright above, pixels: the spread along it by the slope across. It rises to the right.
    double measureWobble(double slant) {
        s_renderer->readPicture(m_picture);
        const double c = std::cos(slant * DEG_TO_RAD<double>),
                     s = std::sin(slant * DEG_TO_RAD<double>);
        std::vector<double> on, below, above;
        for (int y = 40; y < HEIGHT - 40; y++)
            for (int x = 80; x < WIDTH - 80; x++) {
                const double up = (HEIGHT / 2 - y - 0.5) * c - (x + 0.5 - WIDTH / 2) * s;
                if (std::abs(up) < 0.3)
                    on.push_back(red(x, y));
                else if (std::abs(std::abs(up) - 1) < 0.3)
                    (up > 0 ? above : below).push_back(red(x, y));
            }
        const auto mean = [](const std::vector<double>& v) {
            return std::accumulate(v.begin(), v.end(), 0.0) / static_cast<double>(v.size());
        };
        double squares = 0;
        for (const double level : on)
            squares += (level - mean(on)) * (level - mean(on));
        const double slope = (mean(above) - mean(below)) / 2;
        return std::sqrt(squares / static_cast<double>(on.size())) / slope;
    }
    int red(int x, int y) const { return m_picture.at(x, y)[0]; }
};

// Lamps, rivets, bolts' heads: what has spread along the diagonals is a cross.
TEST_F(FinishOf, ABrightDiscStaysRoundAtAnyScale) {
    constexpr double DISTANCE = 50;
    look(100, 0, 0);
    for (const float scale : {1.0f, 0.7f, 0.5f}) {
        m_world.clear();
        s_renderer->setScale(scale);
        const double row = 2 * HALF_HEIGHT / std::lround(HEIGHT * scale); // at 1 m, of the scene's
        addCard(2 * DISTANCE, 200, {0.01f, 0.01f, 0.01f, 1});
        addDisc(DISTANCE, 6 * row * DISTANCE);
        draw();
        EXPECT_LT(std::abs(measureCross(6 * row * HEIGHT / (2 * HALF_HEIGHT))), 0.17) << scale;
    }
}

// Along an edge all is alike; stairs are not.
TEST_F(FinishOf, ASlantingEdgeHasNoStairs) {
    constexpr double DISTANCE = 50, SIZE = 200, SLANT = 30; // m, m, degrees
    look(100, 0, 0);
    addCard(2 * DISTANCE, 2 * SIZE, {0.01f, 0.01f, 0.01f, 1});
    ObjectMesh* above = addCard(DISTANCE, SIZE, {1, 1, 1, 1}); // a line through the middle
    above->setTransform(above->getTransform() * dmat4(dquat(dvec3(0, 0, 1), SLANT), dvec3()) *
                        translate(dvec3(0, SIZE / 2, 0)));
    for (const float scale : {1.0f, 0.7f, 0.5f}) {
        s_renderer->setScale(scale);
        draw();
        EXPECT_LT(measureWobble(SLANT), 0.42) << scale;
    }
}

// A sky that changes by two levels of 255 over the picture's height.
TEST_F(FinishOf, ASlowGradientHasNoSteps) {
    constexpr double NEAR = 0.1, FAR = 1e7, TOP = 0.01 * NEAR;
    m_frame.cloud_cover = 0;
    m_camera.setProjection(frustum(-TOP, TOP, -TOP, TOP, NEAR, FAR, 0, 0));
    look(100, 0, -40);
    for (const float scale : {1.0f, 0.5f}) {
        s_renderer->setScale(scale);
        draw();
        s_renderer->readPicture(m_picture);
        int longest = 0; // run of one level, down the picture; without grain all of it
        for (int x = 0; x < WIDTH; x += 5)
            for (int y = 1, run = 1; y < HEIGHT; y++) {
                run = red(x, y) == red(x, y - 1) ? run + 1 : 1;
                longest = std::max(longest, run);
            }
        EXPECT_LE(longest, 40) << scale;
    }
}
