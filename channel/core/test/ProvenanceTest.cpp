// SPDX-License-Identifier: MIT
#include "Provenance.h"

#include "Options.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

TEST(Provenance, LargeFilesAndFullFoldersAreDigestedInShortAndLinksFollowed) {
    const fs::path before = fs::current_path();
    const fs::path folder = testing::TempDir() + "provenance_" + std::to_string(getpid());
    fs::create_directories(folder / "data/tiles");
    fs::create_directories(folder / "elsewhere");
    fs::current_path(folder);
    const auto write = [](const std::string& path, std::streamoff at, const char* text) {
        std::ofstream(path, std::ios::app).close();
        std::fstream(path, std::ios::in | std::ios::out).seekp(at) << text;
    };
    for (int i = 0; i <= 500; i++)
        write("data/tiles/" + std::to_string(i), 0, "x");
    write("data/large", 8 << 20, "end");
    write("elsewhere/file", 0, "x");
    fs::create_directory_symlink("../elsewhere", "data/link");
    fs::create_directory_symlink("..", "data/tiles/up");
    const auto list = [] { return describeRun(Options(), 1).files; };
    const std::vector<frames::LoggedFile> was = list();
    std::vector<std::string> paths, changed;
    for (const frames::LoggedFile& file : was)
        if (file.path.starts_with("data")) paths.push_back(file.path);
    EXPECT_EQ(paths, (std::vector<std::string>{"data/large", "data/link/file", "data/tiles/"}));

    write("data/tiles/77", 0, "y");
    write("data/large", 4 << 20, "not at an end");
    write("elsewhere/file", 0, "y");
    const auto tell = [&] {
        changed.clear();
        for (const frames::LoggedFile& file : list())
            if (std::ranges::count(was, file) == 0) changed.push_back(file.path);
        return changed;
    };
    EXPECT_EQ(tell(), (std::vector<std::string>{"data/link/file", "data/tiles/"}));
    write("data/large", 8 << 20, "END");
    EXPECT_EQ(tell().front(), "data/large");
    fs::current_path(before);
    fs::remove_all(folder);
}

} // namespace
