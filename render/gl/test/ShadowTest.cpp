// SPDX-License-Identifier: MIT

// Shadows in the picture: of all that is in view, and of hills.

#include "PictureScene.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/FrameView.h"

#include <cmath>

using namespace ig;

class ShadowsIn : public PictureScene {
public:
    void shine(double hour) {
        const Sky sky = computeSky(hour, LONGITUDE, 80);
        m_frame.sun_direction = sky.sun_direction;
        m_frame.moon_direction = sky.moon_direction;
    }
    int brightness(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        return p[0] + p[1] + p[2];
    }
    static dvec3 beside(double east, double altitude) {
        return {LONGITUDE + east / (110700 * 0.9428), LATITUDE, altitude};
    }
};

// Seen from straight above, the sun in the west: roofs 100 m over floors, 600 m apart.
TEST_F(ShadowsIn, EveryThingInViewCastsOne) {
    constexpr double EYE = 800, FLOOR = 10, ROOF = 110;
    for (const double east : {-300.0, 300.0}) {
        addFloor(FLOOR, 500)->setWgsPosition(beside(east, FLOOR));
        addFloor(ROOF, 50)->setWgsPosition(beside(east, ROOF));
    }
    shine(15);
    look(EYE, 0, 90);
    Node focus;
    focus.setWgsPosition(beside(20000, 0));
    m_frame.focus = &focus;
    draw();
    const FrameView view(m_camera, HEIGHT, true);
    const dvec3 light = view.toFrameDirection(m_frame.sun_direction);
    const auto at = [&](double east, double north) {
        const double wide = 2 * HALF_HEIGHT * (EYE - FLOOR);
        return brightness(0.5 + east / (wide * WIDTH / HEIGHT), 0.5 - north / wide);
    };
    for (const double east : {-300.0, 300.0}) {
        const double fall = (ROOF - FLOOR) / light.z;
        const int shaded = at(east - light.x * fall, -light.y * fall);
        const int lit = at(east - light.x * fall, -light.y * fall - 60);
        EXPECT_LT(shaded, 0.75 * lit) << east;
        EXPECT_GT(shaded, 30) << east;
    }
}

// What a ray from the ground to the sun meets tells which pixels must be dark.
TEST_F(ShadowsIn, HillsShadeTheGroundBehindThem) {
    auto* terrain = new ObjectTerrain();
    ASSERT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
    m_world.addNode(terrain);
    shine(17.6);
    m_frame.cloud_cover = 0;
    m_camera.setWgsPosition({-155.065, 19.70, 1200}); // from above, with little haze
    m_camera.setWgsHPR({235, 45, 0});
    draw();
    const EllipsoidModel earth;
    const dvec3 eye = m_camera.getWorldPosition();
    int dark = 0, lit = 0;
    double dark_sum = 0, lit_sum = 0;
    for (int y = 2; y < HEIGHT; y += 4)
        for (int x = 2; x < WIDTH; x += 4) {
            const double u = (x + 0.5) / WIDTH, v = (y + 0.5) / HEIGHT;
            dvec3 ground, normal, hit;
            if (!terrain->getIntersection(0, eye, m_camera.getRayTo(u, v, 20000), &ground))
                continue;
            const dvec3 wgs = earth.toWGS(ground), up = earth.getUp(ground);
            double altitude;
            terrain->getAltitudeByLonLat(wgs.x, wgs.y, &altitude, &normal);
            // What hardly faces the sun is dark anyway.
            if (altitude < 10 || dot(normal, m_frame.sun_direction) < 0.06) continue;
            const auto meets = [&](double height) {
                const dvec3 from = ground + up * height;
                return terrain->getIntersection(0, from, from + m_frame.sun_direction * 20000.0,
                                                &hit);
            };
            if (meets(20)) { // deep in the shadow
                dark++;
                dark_sum += brightness(u, v);
            } else if (!meets(1)) {
                lit++;
                lit_sum += brightness(u, v);
            }
        }
    ASSERT_GT(dark, 30);
    ASSERT_GT(lit, 100);
    EXPECT_LT(dark_sum / dark, 0.8 * lit_sum / lit);
}
