// SPDX-License-Identifier: MIT
#include "render/scene/GlassFilm.h"

#include "ig/app/Renderer.h"
#include "ig/scene/Camera.h"

#include <cmath>
#include <gtest/gtest.h>
#include <utility>

using namespace ig;

namespace {

/// A film whose one wiper stands at angle 0, and the weather on it.
class GlassFilmOf : public testing::Test {
public:
    GlassFilmOf() {
        Camera camera;
        camera.setPerspective(50, 1, 0.1, 1e6);
        camera.setWgsPosition({-155, 20, 100});
        view = FrameView(camera, 720, true);
        blades.push_back({&node, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, 0, 0.1f, 0.6f});
        film.update(blades, view, frame);
    }
    /// The wiper goes to that angle, evenly.
    void advance(double seconds, float to = 0) {
        constexpr int STEPS = 5; // as coarse as frames are
        const float from = blades[0].angle;
        for (int i = 1; i <= STEPS; i++) {
            frame.time += seconds / STEPS;
            blades[0].angle = std::lerp(from, to, static_cast<float>(i) / STEPS);
            film.update(blades, view, frame);
        }
    }
    void fly(double speed) { frame.eye_velocity = view.frame.columns[1] * speed; }
    /// Water or snow at an angle, 0 to 255.
    int water(float angle) const { return film.getTexels()[2 * bin(angle)]; }
    int snow(float angle) const { return film.getTexels()[2 * bin(angle) + 1]; }
    static std::size_t bin(float angle) {
        const float turn = GlassFilm::toTurn(angle);
        return static_cast<std::size_t>((turn - std::floor(turn)) * GlassFilm::BINS);
    }
    /// How far drops run in a second.
    float run() {
        const float before = film.getFlow().x;
        advance(1, blades[0].angle);
        return film.getFlow().x - before;
    }

    Node node;
    FrameView view;
    FrameInfo frame;
    std::vector<BladeItem> blades;
    GlassFilm film;
};

} // namespace

TEST_F(GlassFilmOf, AWiperClearsItsSectorWhichFillsAgain) {
    frame.rain = 1;
    advance(0.8, 1.2f);
    EXPECT_LT(water(1.15f), 10);               // just behind the blade
    EXPECT_GT(water(0.1f), water(1.15f) + 30); // longer ago
    EXPECT_LT(water(0.1f), 120);
    for (const float outside : {-0.1f, 1.3f, 3.0f, -2.0f})
        EXPECT_EQ(water(outside), 255) << outside;
    advance(0.8, -0.5f); // back, and across the way of angle 0
    EXPECT_LT(water(-0.4f), 10);
    EXPECT_LT(water(0.1f), 60);
    EXPECT_EQ(water(1.3f), 255);
    const Node second; // now the nearer one
    blades.push_back({&second, {1, 1, 0}, {1, 0, 0}, {0, 0, 1}, 0, 0.1f, 0.6f});
    std::swap(blades[0], blades[1]);
    film.update(blades, view, frame);
    EXPECT_LT(water(-0.4f), 10) << "each keeps what it has wiped";
    std::swap(blades[0], blades[1]);
    blades.pop_back();
    advance(15, -0.5f);
    EXPECT_GT(water(0.6f), 250);

    advance(0.4, 0.5f);
    frame.rain = 0;
    const int left = water(0);
    advance(15, 0.5f);
    EXPECT_EQ(water(0), left); // nothing falls on it any more
}

TEST_F(GlassFilmOf, DropsRunDownByThemselvesAndAreDrivenAtSpeed) {
    frame.rain = 1;
    const float down = run();
    EXPECT_GT(down, 0.02f);
    EXPECT_LT(down, 0.2f);
    EXPECT_EQ(film.getFlow().y, 0);
    EXPECT_EQ(film.getFlow().z, 1);
    fly(21.9); // the air holds them
    EXPECT_LT(run(), 0.1f * down);
    EXPECT_LT(film.getFlow().z, 0.01f);
    fly(60);
    EXPECT_GT(run(), 10 * down);
    EXPECT_EQ(film.getFlow().y, 1);
    EXPECT_NEAR(film.getAir().y, -60, 1e-3);
    frame.wind = {0, 60}; // carried along: no air over the glass
    EXPECT_NEAR(run(), down, 1e-4);
}

TEST_F(GlassFilmOf, SnowGathersIsWipedIsBlownOffAndMelts) {
    EXPECT_FALSE(film.hasSnow());
    frame.snow = 1;
    advance(10);
    const float some = film.getFlow().w;
    EXPECT_GT(some, 0.2f);
    advance(60);
    EXPECT_EQ(film.getFlow().w, 1);
    EXPECT_EQ(snow(0.5f), 255);
    advance(0.8, 1);
    EXPECT_LT(snow(0.5f), 10);
    EXPECT_EQ(snow(1.2f), 255);
    fly(60);
    advance(1, 1);
    EXPECT_LT(film.getFlow().w, 0.6f);
    frame.snow = 0;
    advance(60, 1);
    EXPECT_FALSE(film.hasSnow());
    EXPECT_EQ(snow(1.2f), 0);
}

TEST_F(GlassFilmOf, ASceneThatBeginsAnewFindsFreshPanes) {
    frame.snow = frame.rain = 1;
    advance(5, 1);
    frame.time = 0;
    film.update(blades, view, frame);
    EXPECT_FALSE(film.hasSnow());
    EXPECT_EQ(film.getFlow().x, 0);
    EXPECT_EQ(water(0.5f), 255);

    advance(1, 0);
    blades.clear(); // and what has no wiper is all open
    film.update(blades, view, frame);
    EXPECT_EQ(film.getPlaces()[2].w, 0);
}
