// SPDX-License-Identifier: MIT

// A prefix, a checkout and a present folder stand side by side in a folder of the test's own.

#include "program/DataFolder.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace program {
namespace {

namespace fs = std::filesystem;

struct DataFolder : testing::Test {
    DataFolder() : before(fs::current_path()) {
        std::string name = (fs::temp_directory_path() / "folder_XXXXXX").string();
        root = mkdtemp(name.data());
        fs::create_directories(root / "here");
        fs::current_path(root / "here");
    }
    ~DataFolder() override {
        fs::current_path(before);
        fs::remove_all(root);
    }
    fs::path fill(const std::string& folder) const {
        for (const char* name : {"config", "data"})
            fs::create_directories(root / folder / name);
        std::ofstream(root / folder / "data/mission") << folder;
        return root / folder;
    }
    std::string find(const fs::path& program) const {
        std::string folder;
        return findDataFolder(folder, root / program) ? folder : "none";
    }

    fs::path before, root;
};

TEST_F(DataFolder, ThePresentOneWinsThenTheInstallationsThenTheCheckouts) {
    const fs::path checkout = fill("直升机 通道"), build = checkout / "build/release/bin/x";
    EXPECT_EQ(find("prefix/bin/x"), "none");
    EXPECT_NE(tellDataFolders(root / "prefix/bin/x").find("prefix/share/visual-channel\""),
              std::string::npos);
    EXPECT_EQ(find(build), checkout);
    const fs::path installed = fill("直升机 通道/build/release/share/visual-channel");
    EXPECT_EQ(find(build), installed);
    fs::create_directory("data"); // somebody's, but no world: it needs config/ too
    EXPECT_EQ(find(build), installed);
    fill("here");
    EXPECT_EQ(find(build), "");
}

TEST_F(DataFolder, FilesOfTheUserComeBeforeThoseShipped) {
    const fs::path program = root / "prefix/bin/x";
    const fs::path installed = fill("prefix/share/visual-channel");
    EXPECT_EQ(findShippedFile("data/mission", program), installed / "data/mission");
    EXPECT_EQ(findShippedFile("data/none", program), "data/none");
    EXPECT_EQ(findShippedFile("", program), "");
    EXPECT_EQ(findShippedFile("/data/mission", program), "/data/mission");
    fs::create_directory("data");
    std::ofstream("data/mission") << "mine";
    EXPECT_EQ(findShippedFile("data/mission", program), "data/mission");
}

TEST_F(DataFolder, LibrariesAreThoseInstalledOrElseThoseBuilt) {
    const fs::path program = root / "prefix/bin/x";
    EXPECT_EQ(findOwnLibrary("a.so", program), root / "prefix/lib/a.so");
    const fs::path installed = root / "prefix/lib/visual-channel/a.so";
    fs::create_directories(installed.parent_path());
    std::ofstream(installed) << "library";
    EXPECT_EQ(findOwnLibrary("a.so", program), installed);
}

} // namespace
} // namespace program
