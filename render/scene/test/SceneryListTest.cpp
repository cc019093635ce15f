// SPDX-License-Identifier: MIT
#include "render/scene/SceneryList.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Camera.h"
#include "ig/scene/World.h"
#include "plugins/terrain/ObjectScenery.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/CardPictures.h"
#include "testkit/TempFolder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace {

using namespace ig;

/// Half as wide as high, its foot at the origin; red to the south, green to the north.
std::shared_ptr<const Mesh> makeTree() {
    std::vector<Mesh::Surface> surfaces(2);
    for (int side = 0; side < 2; side++) {
        const float y = side ? 0.5f : -0.5f;
        Mesh::Surface& s = surfaces[static_cast<std::size_t>(side)];
        s.positions = {{-2.5f, y, 0}, {2.5f, y, 0}, {0, y, 10}};
        s.normals.assign(3, {0, 0, 1});
        s.indices = {0, 1, 2};
    }
    return std::make_shared<Mesh>(std::move(surfaces));
}

/// Level ground of 10 m with one tree, or a house, to the north of the eye.
class SceneryPicture : public testing::Test {
public:
    static constexpr double LONGITUDE = 20, LATITUDE = 40;

    void build(bool is_tree) {
        std::ofstream(folder.file("ground.asc").c_str())
            << "ncols 3\nnrows 3\nxllcorner 19.85\nyllcorner 39.85\ncellsize 0.1\n"
               "10 10 10\n10 10 10\n10 10 10\n";
        auto* terrain = new ObjectTerrain();
        TerrainSources sources;
        sources.rasters = {folder.file("ground.asc")};
        ASSERT_TRUE(terrain->load(sources));
        ObjectScenery::Plan plan;
        plan.kinds = {{"thing", makeTree(), {nullptr, nullptr}, {}, is_tree}};
        plan.sites = {{{LONGITUDE, LATITUDE}, 0, 0}};
        terrain->addChild(new ObjectScenery(std::move(plan)));
        world.addNode(terrain);
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e7);
    }
    /// What is drawn from so far to the south.
    void look(double distance) {
        const double degree = EllipsoidModel().getDegreeLengths(LATITUDE).y;
        camera.setWgsPosition({LONGITUDE, LATITUDE - distance / degree, 15});
        camera.setWgsHPR({0, 0, 0});
        const FrameView view(camera, 360, true);
        list.gather(world, view, nullptr);
        scenery.gather(view, nullptr, list);
    }

    const TempFolder folder;
    World world;
    Camera camera;
    SceneList list;
    SceneryList scenery;
};

TEST_F(SceneryPicture, ACardGrowsOverATreeBeforeItsModelGoes) {
    build(true);
    look(20);
    ASSERT_EQ(list.opaque.size(), 2u);
    EXPECT_TRUE(scenery.cards.empty());
    EXPECT_NEAR(list.opaque[0].transform.getTranslate().y, 20, 0.01);
    float whole = 0;
    bool has_model = true;
    for (double distance = 30; distance < 500; distance *= 1.03) {
        look(distance);
        ASSERT_LE(scenery.cards.size(), 1u);
        ASSERT_EQ(scenery.groups.size(), scenery.cards.size());
        const float now = scenery.cards.empty() ? 0 : scenery.cards[0].whole;
        EXPECT_GE(now, whole) << distance;
        EXPECT_LT(now - whole, 0.2f) << distance;
        if (has_model && list.opaque.empty()) {
            EXPECT_GT(whole, 0.85f) << distance;
        }
        EXPECT_TRUE(has_model || list.opaque.empty()) << distance;
        whole = now;
        has_model = !list.opaque.empty();
    }
    EXPECT_EQ(whole, 1);
    EXPECT_FALSE(has_model);
    look(1800); // 2.1 pixels
    ASSERT_EQ(scenery.cards.size(), 1u);
    EXPECT_LT(scenery.cards[0].whole, 0.5f) << "it goes as it came";
    look(2000);
    EXPECT_TRUE(scenery.cards.empty() && list.opaque.empty());
}

TEST_F(SceneryPicture, AHouseStaysAModelHoweverFar) {
    build(false);
    look(1850);
    EXPECT_TRUE(scenery.cards.empty());
    EXPECT_EQ(list.opaque.size(), 2u);
}

TEST(CardPicture, ShowsTheNearSideOfAModelFromTheSideAndFromAbove) {
    Material red, green;
    red.addValue("diffuse_color", {0.25f, 0, 0, 1});
    green.addValue("diffuse_color", {0, 0.25f, 0, 1});
    const SceneryKind kinds[] = {{"tree", makeTree(), {&red, &green}, {}}};
    const CardPictures pictures = CardPictures::make(kinds);
    for (int level = 0; level < 3; level++) {
        const int edge = CardPictures::EDGE >> level;
        const auto& texels = pictures.levels[static_cast<std::size_t>(level)];
        ASSERT_EQ(texels.size(), static_cast<std::size_t>(4 * edge * edge * CardPictures::TILES));
        const auto at = [&](int tile, double x, double y) {
            const int i = static_cast<int>(x * edge), j = static_cast<int>(y * edge);
            return &texels[static_cast<std::size_t>(4 * ((tile * edge + j) * edge + i))];
        };
        EXPECT_EQ(at(0, 0.5, 0.3)[3], 255) << level;
        EXPECT_NEAR(at(0, 0.5, 0.3)[0], 128, 1) << "the root of a quarter, from the south";
        EXPECT_EQ(at(0, 0.5, 0.3)[1], 0);
        EXPECT_EQ(at(0, 0.1, 0.9)[3], 0) << "beside the tip";
        EXPECT_EQ(at(0, 0.1, 0.9)[0], 0);
    }
    // From 60 degrees above, the northern half is the upper one.
    const auto& texels = pictures.levels[0];
    const auto getSum = [&](int tile, int channel) {
        int sum = 0;
        const auto size = static_cast<std::size_t>(4 * CardPictures::EDGE * CardPictures::EDGE);
        for (std::size_t i = 0; i < size; i += 4)
            sum += texels[static_cast<std::size_t>(tile) * size + i +
                          static_cast<std::size_t>(channel)];
        return sum;
    };
    EXPECT_GT(getSum(2, 0), 0);
    EXPECT_GT(getSum(2, 1), 0) << "the far sheet looks over the near one";
    EXPECT_EQ(getSum(0, 1), 0);
}

} // namespace
