// SPDX-License-Identifier: MIT
#include "ig/package/PackageManager.h"

#include "ig/package/Package.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

using namespace ig;

TEST(PackageManager, ReadsEachFileOnceAndReportsEachFailureOnce) {
    TempFolder folder;
    LogCapture log;
    const jString good = folder.write("good.yaml", "a: 1\n");
    const jString bad = folder.write("bad.yaml", "a: [\n");
    const jString absent = folder.file("absent.yaml");
    const Package* package = PackageManager::get(good, "Test::load");
    ASSERT_TRUE(package);
    folder.write("good.yaml", "a: 2\n");
    EXPECT_EQ(PackageManager::get(good), package);
    EXPECT_EQ(package->getInt("a"), 1);
    for (int i = 0; i < 2; i++) {
        EXPECT_FALSE(PackageManager::get(bad, "Test::load"));
        EXPECT_FALSE(PackageManager::get(absent, "Test::load"));
    }
    ASSERT_EQ(log.lines.size(), 2u);
    EXPECT_NE(log.lines[1].find("Test::load: "), std::string::npos);

    PackageManager::release();
    folder.write("absent.yaml", "a: 3\n");
    EXPECT_EQ(PackageManager::get(good)->getInt("a"), 2);
    EXPECT_EQ(PackageManager::get(absent)->getInt("a"), 3);
    PackageManager::release();
}
