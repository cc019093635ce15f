// SPDX-License-Identifier: MIT
#include "wall/Wall.h"

#include "ig/math/quat.h"
#include "testkit/TempFolder.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace ig;
using wall::Display;

namespace {

struct WallFile : testing::Test {
    /// What a reader says of a file of that text; empty: it is good.
    std::string read(const std::string& text) {
        folder.write("wall.yaml", text);
        std::string message;
        return readWall((folder.path() / "wall.yaml").string(), wall, message) ? "" : message;
    }
    /// Where a point of the view's frame is in the display's picture, −1 to 1 each way.
    static dvec3 shown(const Display& display, const dvec3& point) {
        const dvec3 at = inverse(display.rotation) * point;
        const double x = at.x / -at.z, y = at.y / -at.z;
        return {2 * (x - display.left) / (display.right - display.left) - 1,
                2 * (y - display.bottom) / (display.top - display.bottom) - 1, -at.z};
    }
    TempFolder folder;
    wall::Wall wall;
};

TEST_F(WallFile, AScreensCornersAreThePicturesAndSoAreTheAnglesOfOne) {
    ASSERT_EQ(read("displays:\n"
                   "  chin: {corners: {lower_left: [-0.7, -1.1, -0.45], lower_right: [-0.1, -1.1, "
                   "-0.45], upper_left: [-0.7, -0.8, -0.9]}}\n"
                   "  right: {heading: 40, pitch: 10, roll: 90, horizontal_field: 30, "
                   "vertical_field: 60}\n"
                   "  front: {horizontal_field: 90, vertical_field: 36, bezel: [5, 0, 1, 2], "
                   "window: {size: [64, 32], position: [7, 8], monitor: 2, full_screen: true}}\n"),
              "");
    const Display& chin = *wall.find("chin");
    const dvec3 lower_left = shown(chin, {-0.7, -1.1, -0.45});
    const dvec3 upper_right = shown(chin, {-0.1, -0.8, -0.9});
    EXPECT_NEAR(lower_left.x, -1, 1e-9);
    EXPECT_NEAR(lower_left.y, -1, 1e-9);
    EXPECT_NEAR(upper_right.x, 1, 1e-9);
    EXPECT_NEAR(upper_right.y, 1, 1e-9);
    EXPECT_GT(upper_right.z, 0);

    // 40 degrees to the right and 10 up is its middle; rolled to the right, its top is at the
    // right.
    const double h = 40 * DEG_TO_RAD<double>, p = 10 * DEG_TO_RAD<double>;
    const dvec3 ahead(std::sin(h) * std::cos(p), std::sin(p), -std::cos(h) * std::cos(p));
    const dvec3 middle = shown(*wall.find("right"), ahead);
    EXPECT_NEAR(middle.x, 0, 1e-9);
    EXPECT_NEAR(middle.y, 0, 1e-9);
    EXPECT_GT(middle.z, 0);
    EXPECT_GT(shown(*wall.find("right"), ahead + dvec3(std::cos(h), 0, std::sin(h)) * 0.1).y, 0.05);

    const Display& front = *wall.find("front");
    EXPECT_NEAR(std::atan(front.left) * RAD_TO_DEG<double>, -40, 1e-9);
    EXPECT_NEAR(std::atan(front.right) * RAD_TO_DEG<double>, 45, 1e-9);
    EXPECT_NEAR(std::atan(front.bottom) * RAD_TO_DEG<double>, -17, 1e-9);
    EXPECT_NEAR(std::atan(front.top) * RAD_TO_DEG<double>, 16, 1e-9);
    EXPECT_TRUE(front.width == 64 && front.height == 32 && front.x == 7 && front.y == 8 &&
                front.monitor == "2" && front.full_screen);
    EXPECT_EQ(wall.network.interface, "lo") << "unless the file says otherwise";
    EXPECT_FALSE(wall.network.multicast);
}

TEST_F(WallFile, MistakesAreToldWithTheirLine) {
    const std::string head = "network:\n  domain: 3\ndisplays:\n  a:\n";
    const auto says = [&](const std::string& text, const std::string& place,
                          const std::string& part) {
        const std::string message = read(text);
        EXPECT_NE(message.find("wall.yaml" + place), std::string::npos) << message;
        EXPECT_NE(message.find(part), std::string::npos) << message;
    };
    says("displays:\n  a: {horizontal_field: 40, vertical_field: 400}", ":2: ", "1 to 170");
    says(head + "    heading: 3\n", ":5: ", "needs horizontal_field");
    says(head + "    haeding: 3\n", ":5: ", "no \"haeding\"");
    says(head + "    heading: 3\n    heading: 4\n", ":6: ", "twice");
    says(head + "    window: {}\n", ":5: ", "needs corners, or heading");
    says(head +
             "    corners: {lower_left: [1, 0, -1], lower_right: [-1, 0, -1], upper_left: [1, 1, "
             "-1]}\n",
         ":5: ", "exchanged");
    says(head + "    corners: {lower_left: [0, 0, -1], lower_right: [1, 0, -1], upper_left: [1, 1, "
                "-1]}\n",
         ":5: ", "not square");
    says(head + "    horizontal_field: 40\n    vertical_field: 30\n    bezel: [30, 20, 0, 0]\n",
         ":7: ", "nothing to be seen");
    says(head + "    horizontal_field: 40\n    vertical_field: 30\n    window: {size: [9, 400]}\n",
         ":7: ", "16 to 16384");
    says(head + "    heading: 3\n    warp: none.pfm\n", ":6: ", "none.pfm");
    says("displays: {}\n", ":1: ", "the name of each");
    says("network: {domain: many}\n", ":1: ", "must be a number");
    says("a: [\n", ":2: ", "");
    EXPECT_NE(read(head + "    heading: [\n"), "");
}

TEST_F(WallFile, ShippedOnesAreGoodAndKeepToThisComputer) {
    for (const char* path :
         {"config/wall.yaml", "config/walls/desk.yaml", "config/walls/chin.yaml"}) {
        std::string message;
        EXPECT_TRUE(readWall(path, wall, message)) << message;
        EXPECT_EQ(wall.network.interface, "lo") << path;
        EXPECT_FALSE(wall.network.multicast) << path;
        for (const Display& display : wall.displays) // pixels are square
            EXPECT_NEAR((display.right - display.left) / (display.top - display.bottom),
                        double(display.width) / display.height, 0.01)
                << path << ' ' << display.name;
    }
}

} // namespace
