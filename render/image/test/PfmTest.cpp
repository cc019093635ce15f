// SPDX-License-Identifier: MIT
#include "render/image/Pfm.h"

#include "testkit/TempFolder.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace ig;

namespace {

TEST(Pfm, IsReadFromTheTopInBothOrdersOfBytesAndNoFurtherThanItGoes) {
    const TempFolder folder;
    const std::string path = (folder.path() / "a.pfm").string();
    const auto read = [&](const std::string& head, std::string bytes, FloatMap& map) {
        folder.write("a.pfm", head + bytes);
        std::string message;
        return readPfm(path, map, message) ? "" : message;
    };
    const float values[] = {1, 2, 3, 4};
    std::string bytes(sizeof values, 0), swapped = bytes;
    std::memcpy(bytes.data(), values, sizeof values);
    for (std::size_t i = 0; i < bytes.size(); i++)
        swapped[i] = bytes[i / 4 * 4 + 3 - i % 4];
    FloatMap map;
    ASSERT_EQ(read("Pf\n2 2\n-1.0\n", bytes, map), "");
    EXPECT_EQ(map.channels, 1);
    EXPECT_EQ(map.values, std::vector<float>({3, 4, 1, 2}));
    ASSERT_EQ(read("Pf\n1 4\n1\n", swapped, map), "");
    EXPECT_EQ(map.values, std::vector<float>({4, 3, 2, 1}));
    ASSERT_EQ(read("PF 1 1 -1\n", bytes.substr(0, 12), map), "");
    EXPECT_EQ(map.channels, 3);

    EXPECT_NE(read("Pf\n2 3\n-1.0\n", bytes, map).find("length"), std::string::npos);
    EXPECT_NE(read("P6\n2 2\n255\n", bytes, map).find("no PFM"), std::string::npos);
    EXPECT_NE(read("Pf\n99999 2\n-1\n", bytes, map).find("16384"), std::string::npos);
    std::string message;
    EXPECT_FALSE(readPfm("nowhere.pfm", map, message));
    EXPECT_NE(message.find("nowhere.pfm"), std::string::npos);
}

} // namespace
