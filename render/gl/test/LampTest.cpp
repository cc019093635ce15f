// SPDX-License-Identifier: MIT

// Lamps that tell an approaching pilot where he is, as they come out in the picture.

#include "PictureScene.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/ObjectPrefab.h"

#include <cmath>

using namespace ig;

namespace {

enum class Color { none, red, green, amber };

class ApproachAtNight : public PictureScene {
public:
    void TearDown() override {
        PictureScene::TearDown();
        MaterialManager::release();
        Mesh::release();
        PackageManager::release();
    }
    /// The ship's node of that name, whose first lamp alone is lit.
    Node* addShip(const char* name, const char* lamps) {
        const Sky sky = computeSky(0, LONGITUDE, 80);
        m_frame.sun_direction = sky.sun_direction;
        m_frame.moon_direction = sky.moon_direction;
        m_camera.setPerspective(2, 16.0f / 9, 0.1, 1e7); // through glasses
        m_world.clear();
        auto* ship = new ObjectPrefab(jString("data/PELMAR_PROJECT/prefabs/") + name + "/" + name +
                                      ".prefab");
        ship->setWgsPosition({LONGITUDE, LATITUDE, 0});
        ship->setWgsHPR({0, 0, 0});
        m_world.addNode(ship);
        Node* const shown = ship->getNodeByName(lamps);
        const auto* lamp = static_cast<Object*>(shown->getChild(0));
        lamp->getSurfaceMaterial(0)->setParameterSliderByName("density", 1);
        return shown;
    }
    /// The lamp from so far astern, and so many degrees above its horizon.
    Color from(const Node* lamp, double distance, double elevation) {
        const double up = elevation * DEG_TO_RAD<double>;
        m_camera.setWorldPosition(lamp->getWGSTransform() *
                                  (dvec3(0, -std::cos(up), std::sin(up)) * distance));
        const double arc = distance / EllipsoidModel::MEAN_RADIUS * RAD_TO_DEG<double>;
        m_camera.setWgsHPR({0, elevation + arc, 0});
        draw();
        const std::uint8_t* p = pixel(0.5, 0.5);
        if (p[0] < 60 && p[1] < 60) return Color::none;
        if (p[1] < 0.4 * p[0]) return Color::red;
        return p[0] < 0.75 * p[1] ? Color::green : Color::amber;
    }
};

} // namespace

TEST_F(ApproachAtNight, GlidePathIndicatorChangesColourWithinATenthOfADegreeOfItsAngles) {
    for (const char* ship : {"SM_055_CN_2023", "LNJ_2023"}) {
        const Node* lamp = addShip(ship, "glide_path");
        for (const double distance : {300, 3000}) {
            EXPECT_EQ(from(lamp, distance, 2.4), Color::red) << ship << ' ' << distance;
            EXPECT_EQ(from(lamp, distance, 2.6), Color::green) << ship << ' ' << distance;
            EXPECT_EQ(from(lamp, distance, 3.4), Color::green) << ship << ' ' << distance;
            EXPECT_EQ(from(lamp, distance, 3.6), Color::amber) << ship << ' ' << distance;
        }
        EXPECT_EQ(from(lamp, 300, 9.1), Color::none) << ship;
        EXPECT_EQ(from(lamp, 300, -1.1), Color::none) << ship;
    }
}

TEST_F(ApproachAtNight, TheRedDeckStatusFlashesWithTheTimeOfTheScene) {
    const Node* lamp = addShip("SM_055_CN_2023", "deck_status")->getChild(0);
    m_frame.time = 61.2;
    EXPECT_EQ(from(lamp, 300, 3), Color::red);
    m_frame.time = 61.7;
    EXPECT_EQ(from(lamp, 300, 3), Color::none);
}
