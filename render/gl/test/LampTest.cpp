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
    void SetUp() override {
        PictureScene::SetUp();
        const Sky sky = computeSky(0, LONGITUDE, 80);
        m_frame.sun_direction = sky.sun_direction;
        m_frame.moon_direction = sky.moon_direction;
        m_camera.setPerspective(2, 16.0f / 9, 0.1, 1e7); // through glasses
    }
    void TearDown() override {
        PictureScene::TearDown();
        MaterialManager::release();
        Mesh::release();
        PackageManager::release();
    }
    /// Places the ship, with nothing but the lamps of that node lit.
    ObjectPrefab* addShip(const char* path, const char* lamps) {
        auto* ship = new ObjectPrefab(path);
        ship->setWgsPosition({LONGITUDE, LATITUDE, 0});
        ship->setWgsHPR({0, 0, 0});
        m_world.addNode(ship);
        Node* const shown = ship->getNodeByName(lamps);
        auto* object = static_cast<Object*>(shown->getChild(0));
        object->getSurfaceMaterial(0)->setParameterSliderByName("density", 1);
        return ship;
    }
    /// Looks at a place from so far astern of it, and so many degrees above its horizon.
    void lookUpAt(const dvec3& place, double distance, double elevation) {
        const double up = elevation * DEG_TO_RAD<double>;
        const dmat4 horizon = EllipsoidModel().getWGSTransform(place);
        m_camera.setWorldPosition(horizon * (dvec3(0, -std::cos(up), std::sin(up)) * distance));
        const double arc = distance / EllipsoidModel::MEAN_RADIUS * RAD_TO_DEG<double>;
        m_camera.setWgsHPR({0, elevation + arc, 0});
    }
    Color seen() {
        draw();
        const std::uint8_t* p = pixel(0.5, 0.5);
        if (p[0] < 60 && p[1] < 60) return Color::none;
        if (p[1] < 0.4 * p[0]) return Color::red;
        return p[0] < 0.75 * p[1] ? Color::green : Color::amber;
    }
};

} // namespace

TEST_F(ApproachAtNight, GlidePathIndicatorChangesColourWithinATenthOfADegreeOfItsAngles) {
    for (const char* path : {"data/PELMAR_PROJECT/prefabs/SM_055_CN_2023/SM_055_CN_2023.prefab",
                             "data/PELMAR_PROJECT/prefabs/LNJ_2023/LNJ_2023.prefab"}) {
        ObjectPrefab* ship = addShip(path, "glide_path");
        const dvec3 lamp = ship->getNodeByName("glide_path")->getWorldPosition();
        const auto from = [&](double distance, double elevation) {
            lookUpAt(lamp, distance, elevation);
            return seen();
        };
        for (const double distance : {300, 3000}) {
            EXPECT_EQ(from(distance, 2.4), Color::red) << path << ' ' << distance;
            EXPECT_EQ(from(distance, 2.6), Color::green) << path << ' ' << distance;
            EXPECT_EQ(from(distance, 3.4), Color::green) << path << ' ' << distance;
            EXPECT_EQ(from(distance, 3.6), Color::amber) << path << ' ' << distance;
        }
        EXPECT_EQ(from(300, 9.1), Color::none) << path;
        EXPECT_EQ(from(300, -1.1), Color::none) << path;
        ship->setWgsHPR({0, 4, 8}); // the deck moves, the light doesn't
        const dvec3 moved = ship->getNodeByName("glide_path")->getWorldPosition();
        lookUpAt(moved, 300, 2.6);
        EXPECT_EQ(seen(), Color::green) << path;
        lookUpAt(moved, 300, 2.4);
        EXPECT_EQ(seen(), Color::red) << path;
        m_world.clear();
    }
}

TEST_F(ApproachAtNight, TheRedDeckStatusFlashesWithTheTimeOfTheScene) {
    ObjectPrefab* ship =
        addShip("data/PELMAR_PROJECT/prefabs/SM_055_CN_2023/SM_055_CN_2023.prefab", "deck_status");
    lookUpAt(ship->getNodeByName("deck_status")->getChild(0)->getWorldPosition(), 300, 3);
    m_frame.time = 61.2;
    EXPECT_EQ(seen(), Color::red);
    m_frame.time = 61.7;
    EXPECT_EQ(seen(), Color::none);
}
