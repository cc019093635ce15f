// SPDX-License-Identifier: MIT

// Small pictures of the demo scene against those that were looked at and kept. The software
// renderer draws the same on any machine; other drivers round differently, so that they are not
// compared.
//
// After an intended change of the looks, run with GOLDEN_RENEW=1, and look at every changed picture
// before committing it.

#include "heli/kit/HelicopterCorax.h"
#include "ig/app/Sky.h"
#include "ig/scene/Material.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/ui/UiDrawList.h"
#include "plugins/ocean/ObjectOcean.h"
#include "render/gl/RendererGL.h"
#include "render/image/ImageFile.h"
#include "render/image/Png.h"
#include "testkit/LogicScene.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace ig;

constexpr int WIDTH = 320, HEIGHT = 180, BLOCK = 4;
constexpr float STEP = 0.05f;          ///< s
constexpr double TOLERANCE = 5.1;      ///< of a block's mean, 2 % of white
constexpr double STRAY_BLOCKS = 0.005; ///< share that may differ by more: edges that round over
constexpr double FARTHEST = 25.5;      ///< that any may stray, 10 % of white: a lamp is one block

/// The demo scene and the eye on it. Time goes in fixed steps, and nothing in it is random.
struct Stage : LogicScene {
    Stage() {
        width = WIDTH;
        height = HEIGHT;
        useProjectData();
        start();
        frame(STEP);
        // Its rings in the sea would stand in every view, and a change of them fail all: it blows
        // in the one view that is about it.
        helicopterNode("downdraught")->setEnabled(false);
        picture.particles = &particles;
        picture.focus = logic->m_heli->m_prefab;
        eye.setPerspective(50, 16.0f / 9, 0.1, 1e7);
        setHour(12);
        flown = record();
        flown.latitude = 19.7124631;
        flown.longitude = -155.0625125;
        flown.altitude = 13.67f;
        flown.heading = 40;
        flown.weather_type = 1;
        flown.sea_code = 3;
        flown.sea_speed = 500;
    }
    void setHour(double hour) {
        const Sky sky = computeSky(hour, LONGITUDE, 172);
        picture.sun_direction = sky.sun_direction;
        picture.moon_direction = sky.moon_direction;
        picture.sidereal_angle = sky.sidereal_angle;
        logic->setTod(static_cast<float>(hour));
    }
    void run(double seconds) {
        for (double t = 0; t < seconds; t += static_cast<double>(STEP)) {
            send(flown);
            frame(STEP);
            particles.advance(*world, STEP);
            picture.time += static_cast<double>(STEP);
        }
        ui->draw(list);
    }
    /// Hovers over a place so many metres east and north of the frigate's middle.
    void hoverByFrigate(double east, double north, double altitude, double heading) {
        const dvec3 place = byFrigate(east, north, altitude);
        flown.longitude = place.x;
        flown.latitude = place.y;
        flown.altitude = static_cast<float>(place.z);
        flown.heading = static_cast<float>(heading);
        flown.rotor_speed = 265;
    }
    /// Stands on the helipad, rotors at rest.
    void land() {
        flown.longitude = -155.0625125;
        flown.latitude = 19.7124631;
        flown.altitude = 13.67f;
        flown.heading = 40;
        flown.rotor_speed = 0;
    }
    void rainAt(const dvec3& wgs) {
        picture.rain = 1;
        Node* rain = world->getNodeByName("rain");
        rain->setEnabled(true);
        rain->setWgsPosition(wgs);
    }
    /// Waves, and a wind that goes with them.
    void setSea(int beaufort) {
        flown.sea_code = static_cast<short>(beaufort);
        flown.sea_speed = 100.0f * 2.6f * static_cast<float>(beaufort);
        static_cast<ObjectOcean*>(world->getNodeByName("ocean"))
            ->setBeaufort(static_cast<float>(beaufort));
    }
    /// The pilot's eye over the pad in rain and snow of that strength, so many m/s ahead.
    void sitInWeather(float rain, float snow, double speed) {
        setHour(12);
        land();
        picture.overcast = 1;
        picture.cloud_darkness = 0.5f;
        picture.cloud_cover = picture.flash = 0;
        picture.visibility = 5000;
        picture.rain = rain;
        picture.snow = snow;
        logic->setRain(rain);
        run(0.2);
        const dmat4& pose = helicopterNode("cam_first_player")->getWorldTransform();
        eye.setTransform(pose);
        picture.eye_velocity = normalize(pose.getZ()) * -speed;
    }
    /// From so many metres east, north and up of it.
    void lookAtHelicopter(double east, double north, double up) {
        look({flown.longitude + east / 104800, flown.latitude + north / 110700,
              static_cast<double>(flown.altitude) + up},
             std::atan2(-east, -north) * RAD_TO_DEG<double>,
             std::atan2(-up, std::hypot(east, north)) * RAD_TO_DEG<double>);
    }
    dvec3 byFrigate(double east, double north, double altitude) const {
        const Node* frigate = world->getNodeByName("SM_055_CN_2023");
        const dvec3 place = EllipsoidModel().toWGS(frigate->getWorldPosition(), true);
        return {place.x + east / 104800, place.y + north / 110700, altitude};
    }
    /// Heading clockwise from north, pitch up, degrees.
    void look(const dvec3& wgs, double heading, double pitch) {
        eye.setWgsPosition(wgs);
        eye.setWgsHPR({heading, -pitch, 0});
    }

    ParticleSystem particles;
    UiDrawList list;
    FrameInfo picture;
    Camera eye;
    UdpRecvData flown;
};

struct View {
    const char* name;
    std::function<void(Stage&)> set;
    int drawn_before = 0; ///< pictures, a step apart, for what goes from one to the next
};

// Each goes on from the one before.
const View VIEWS[] = {
    {"pad_noon",
     [](Stage& s) {
         s.run(0.2);
         s.look({-155.06235, 19.71232, 19}, 310, -12);
     }},
    {"cockpit",
     [](Stage& s) {
         s.eye.setTransform(s.helicopterNode("cam_first_player")->getWorldTransform());
     }},
    {"frigate_wake",
     [](Stage& s) {
         s.hoverByFrigate(60, 0, 30, 0);
         s.run(15);
         s.look(s.byFrigate(130, -190, 45), 325, -10);
     }},
    {"radar",
     [](Stage& s) {
         s.flown.heading = 200; // to the island, in showers
         s.picture.rain = 0.5f;
         s.flown.radar_value = 1;
         s.flown.radar_sector_width = 90;
         s.logic->on_click_radar_weather(nullptr, nullptr);
         s.run(3.95);
         s.picture.ui = &s.list;
         s.picture.ui_root = s.ui.get();
     }},
    {"dusk_deck",
     [](Stage& s) {
         s.picture.ui = nullptr;
         s.picture.ui_root = nullptr;
         s.picture.rain = 0;
         s.setHour(18.4);
         s.hoverByFrigate(0, -63, 22, 0);
         s.run(1);
         s.look(s.byFrigate(75, -80, 20), 280, -2);
     }},
    {"night_pad",
     [](Stage& s) {
         s.setHour(22);
         s.run(0.2);
         s.look({-155.0622, 19.7120, 24}, 325, -12);
     }},
    {"storm",
     [](Stage& s) {
         s.setHour(14);
         s.picture.overcast = 1;
         s.picture.cloud_darkness = 1;
         s.picture.visibility = 4000;
         s.flown.sea_code = 6;
         s.run(12);
         s.look(s.byFrigate(150, 30, 20), 265, -4);
         s.rainAt(s.byFrigate(142, 30, 24));
         s.run(2);
     }},
    {"above_clouds",
     [](Stage& s) {
         s.picture.overcast = s.picture.cloud_darkness = s.picture.rain = 0;
         s.picture.cloud_cover = 0.6f;
         s.picture.visibility = 60000;
         s.look({-155.0, 19.8, 5000}, 200, -8);
     }},
    {"downwash",
     [](Stage& s) {
         s.flown.sea_code = 3;
         s.hoverByFrigate(-150, 0, 9, 250);
         s.run(6);
         s.helicopterNode("downdraught")->setEnabled(true);
         s.lookAtHelicopter(22, -18, -1);
     }},
    {"rainy_cockpit",
     [](Stage& s) {
         s.land();
         s.picture.overcast = s.picture.cloud_darkness = 1;
         s.picture.flash = 0.5f;
         s.picture.bolt_azimuth = 45;
         s.logic->setRain(1);
         s.rainAt({-155.0625125, 19.7124631, 16});
         s.run(3);
         s.eye.setTransform(s.helicopterNode("cam_first_player")->getWorldTransform());
     }},
    {"explosion",
     [](Stage& s) {
         s.picture.rain = s.picture.flash = s.picture.overcast = s.picture.cloud_darkness = 0;
         s.world->getNodeByName("rain")->setEnabled(false);
         s.logic->setRain(0);
         s.logic->setSnow(1);
         s.run(1);
         s.logic->heli_explosion();
         s.run(0.5);
         s.look({-155.06235, 19.71232, 19}, 310, -8);
     }},
    {"wreck", [](Stage& s) { s.run(7); }},
    {"night_approach", // through glasses, on the glide path
     [](Stage& s) {
         s.picture.rain = s.picture.flash = s.picture.overcast = s.picture.cloud_darkness = 0;
         s.picture.cloud_cover = 0.3f;
         s.picture.visibility = 60000;
         s.logic->setSnow(0);
         s.setHour(23);
         s.land();
         s.run(0.2);
         MaterialManager::get("data/PELMAR_PROJECT/materials/deck_status_green.mat")
             ->setParameterSliderByName("override", 1);
         s.look(s.byFrigate(0, -350, 27.6), 0, -3);
         s.eye.setPerspective(9, 16.0f / 9, 0.1, 1e7);
     }},
    {"night_deck", // from the hover over it
     [](Stage& s) {
         s.look(s.byFrigate(6, -88, 18), 352, -14);
         s.eye.setPerspective(50, 16.0f / 9, 0.1, 1e7);
     }},
    {"downwash_turf",
     [](Stage& s) {
         s.logic->reset();
         s.logic->setSnow(0);
         s.setHour(17.6); // dust lies in the shadow of the hull
         s.helicopterNode("downdraught")->setEnabled(true);
         s.flown.latitude = 19.7112;
         s.flown.longitude = -155.0612;
         s.flown.altitude = 16.5f;
         s.flown.heading = 40;
         s.flown.rotor_speed = 265;
         s.run(4);
         s.lookAtHelicopter(-20, -22, 0.5);
     }},
    {"bow_wave",
     [](Stage& s) {
         s.logic->setSnow(0);
         s.picture.snow = s.picture.rain = s.picture.overcast = s.picture.cloud_darkness = 0;
         s.helicopterNode("downdraught")->setEnabled(false);
         s.setHour(12);
         s.picture.cloud_cover = 0.3f;
         s.picture.visibility = 60000;
         s.setSea(3);
         s.run(12);
         s.look(s.byFrigate(40, 55, 12), 285, -16);
     }},
    {"gale",
     [](Stage& s) {
         s.setHour(14);
         s.picture.cloud_cover = 0.5f;
         s.setSea(10);
         s.run(12);
         s.look(s.byFrigate(260, -60, 18), 235, -7);
     }},
    {"night_lamp", // of the helicopter, over the edge of the pad in haze and light rain
     [](Stage& s) {
         s.helicopterNode("downdraught")->setEnabled(false);
         s.setHour(0);
         s.logic->setRain(0.3f);
         s.picture.rain = 0.3f;
         s.picture.visibility = 5000;
         s.land();
         s.flown.altitude = 22;
         s.flown.rotor_speed = 265;
         s.helicopterNode("front_proj")->setEnabled(true);
         s.run(1);
         s.lookAtHelicopter(-26, 8, 3);
         s.rainAt({-155.06273, 19.71253, 26});
         s.run(1);
     }},
    {"night_explosion",
     [](Stage& s) {
         s.logic->setRain(0);
         s.picture.rain = 0;
         s.world->getNodeByName("rain")->setEnabled(false);
         s.picture.visibility = 60000;
         s.land();
         s.run(0.2);
         s.logic->heli_explosion();
         s.run(0.5);
         s.look({-155.06235, 19.71232, 19}, 310, -8);
     }},
    {"wipers_in_rain",
     [](Stage& s) {
         s.logic->on_click_reset(nullptr, nullptr);
         s.logic->setSnow(0);
         s.helicopterNode("downdraught")->setEnabled(false);
         s.eye.setPerspective(50, 16.0f / 9, 0.1, 1e7);
         s.logic->on_click_heli_wiper(nullptr, nullptr);
         s.sitInWeather(1, 0, 0);
     },
     20},
    {"wipers_in_rain_at_speed", [](Stage& s) { s.sitInWeather(1, 0, 60); }, 20},
    {"wipers_in_snow",
     [](Stage& s) {
         s.sitInWeather(0, 1, 0);
         s.run(12);
     },
     20},
    {"closed_cover",
     [](Stage& s) {
         s.setHour(11);
         s.picture.rain = s.picture.snow = s.picture.hail = s.picture.flash = 0;
         s.picture.overcast = s.picture.cloud_darkness = 0;
         s.picture.visibility = 60000;
         s.picture.cloud_cover = 1;
         s.logic->setRain(0);
         s.logic->setSnow(0);
         s.helicopterNode("downdraught")->setEnabled(false);
         s.eye.setPerspective(50, 16.0f / 9, 0.1, 1e7);
         s.run(0.2);
         s.look({-155.0622, 19.7120, 24}, 325, 8);
     }},
    {"closed_from_above",
     [](Stage& s) {
         s.look({-155.0, 19.8, 2200}, 200, -12);
     }},
    {"fog",
     [](Stage& s) {
         s.picture.overcast = 0.9f;
         s.picture.visibility = 200;
         s.look({-155.0622, 19.7120, 24}, 325, -5);
     }},
    {"shadows_of_clouds",
     [](Stage& s) {
         s.picture.overcast = 0;
         s.picture.visibility = 60000;
         s.picture.cloud_cover = 0.5f;
         s.look({-155.03, 19.66, 800}, 350, -12);
     }},
    {"evening_hills", // lie in each other's shadows
     [](Stage& s) {
         s.logic->setRain(0);
         s.logic->setSnow(0);
         s.setSea(3);
         s.run(12);
         s.setHour(18.1);
         s.picture.cloud_cover = 0.2f;
         s.picture.overcast = s.picture.cloud_darkness = s.picture.rain = s.picture.snow = 0;
         s.picture.visibility = 60000;
         s.look({-155.055, 19.705, 500}, 235, -14);
     }},
    {"evening_ship", // far from the focus
     [](Stage& s) { s.look(s.byFrigate(40, 170, 60), 200, -16); }},
    {"snowed_in", // what looks up is white: ground, paving, roofs
     [](Stage& s) {
         s.setHour(12);
         s.picture.overcast = 1;
         s.picture.snow = 1;
         s.picture.visibility = 5000;
         s.logic->setSnow(1);
         s.run(0.2);
         s.look({-155.0626, 19.7130, 35}, 260, -12);
     }},
};

std::vector<double> blockMeans(const std::uint8_t* pixels, int channels) {
    constexpr std::size_t COLUMNS = WIDTH / BLOCK, ROWS = HEIGHT / BLOCK;
    std::vector<double> means(3 * COLUMNS * ROWS);
    for (std::size_t y = 0; y < HEIGHT; y++)
        for (std::size_t x = 0; x < WIDTH; x++)
            for (std::size_t c = 0; c < 3; c++)
                means[3 * (y / BLOCK * COLUMNS + x / BLOCK) + c] +=
                    pixels[(y * WIDTH + x) * static_cast<std::size_t>(channels) + c] /
                    static_cast<double>(BLOCK * BLOCK);
    return means;
}

/// How far the blocks' colours differ.
struct Difference {
    double strays = 0, most = 0; ///< share beyond the tolerance; of any block
};

Difference differ(const Picture& picture, const Image& kept) {
    const std::vector<double> is = blockMeans(picture.rgb.data(), 3),
                              was = blockMeans(kept.rgba.data(), 4);
    Difference found;
    for (std::size_t i = 0; i < is.size(); i++) {
        const double away = std::abs(is[i] - was[i]);
        if (away > TOLERANCE) found.strays += 1.0 / static_cast<double>(is.size());
        found.most = std::max(found.most, away);
    }
    return found;
}

void compare(const char* name, const Picture& picture) {
    const std::string kept_path = std::string(GOLDEN_FOLDER "/") + name + ".png";
    std::string message;
    if (std::getenv("GOLDEN_RENEW")) {
        ASSERT_TRUE(writePng(kept_path, picture, message)) << message;
        return;
    }
    Image kept;
    ASSERT_TRUE(readImage(kept_path, kept)) << kept_path;
    ASSERT_EQ(std::make_pair(kept.width, kept.height), std::make_pair(WIDTH, HEIGHT));
    const Difference found = differ(picture, kept);
    if (found.strays <= STRAY_BLOCKS && found.most <= FARTHEST) return;
    std::filesystem::create_directories(FAILED_FOLDER);
    const std::string path = std::string(FAILED_FOLDER "/") + name + ".png";
    writePng(path, picture, message);
    ADD_FAILURE() << name << ": " << 100 * found.strays << " % of the picture differs from "
                  << kept_path << ", somewhere by " << found.most << " of 255; it is now as in "
                  << path;
}

TEST(Golden, PicturesLookAsTheyDid) {
    RendererGL renderer(RendererGL::Surface::none);
    if (!renderer.init(WIDTH, HEIGHT)) GTEST_SKIP() << "no OpenGL without a display here";
    if (std::string(renderer.getDevice().c_str()).find("llvmpipe") == std::string::npos)
        GTEST_SKIP() << "pictures of the software renderer only, not of "
                     << renderer.getDevice().c_str();
    Stage stage;
    for (const View& view : VIEWS) {
        view.set(stage);
        for (int i = 0; i < view.drawn_before; i++) {
            renderer.render(*stage.world, stage.eye, stage.picture);
            stage.run(static_cast<double>(STEP));
        }
        Picture picture;
        renderer.render(*stage.world, stage.eye, stage.picture);
        ASSERT_TRUE(renderer.readPicture(picture));
        compare(view.name, picture);
    }
    renderer.release();
}

} // namespace
