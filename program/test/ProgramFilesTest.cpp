// SPDX-License-Identifier: MIT

// Files are in a folder of their own; a full disk is a limit on the size of files.

#include "program/InputFile.h"
#include "program/OutputFile.h"
#include "program/Process.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>

namespace program {
namespace {

namespace fs = std::filesystem;

/// No file of this process grows beyond so many bytes.
struct FullDisk {
    explicit FullDisk(rlim_t bytes) {
        letWritesFail();
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }
    rlimit before{};
};

struct ProgramFiles : testing::Test {
    ProgramFiles() {
        std::string name = (fs::temp_directory_path() / "program_XXXXXX").string();
        folder = mkdtemp(name.data());
    }
    ~ProgramFiles() override { fs::remove_all(folder); }
    std::string path(const char* name) const { return (folder / name).string(); }
    std::string write(const char* name, const std::string& text) const {
        std::ofstream(folder / name) << text;
        return path(name);
    }
    std::string read(const char* name) const {
        std::ostringstream text;
        text << std::ifstream(folder / name).rdbuf();
        return text.str();
    }
    long count() const {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }
    fs::path folder;
};

TEST_F(ProgramFiles, AWholeFileAppearsWhenItIsCompleteAndAGrowingOneAtOnce) {
    write("a.png", "former");
    fs::create_symlink("a.png", folder / "link.png");
    OutputFile whole, growing;
    ASSERT_TRUE(whole.open(path("link.png"), OutputFile::Kind::whole));
    ASSERT_TRUE(growing.open(path("b.csv"), OutputFile::Kind::growing));
    EXPECT_TRUE(whole.write("new") && growing.write("line"));
    EXPECT_EQ(read("a.png"), "former");
    EXPECT_TRUE(fs::exists(path("b.csv")));
    EXPECT_TRUE(whole.close() && growing.close());
    EXPECT_EQ(read("a.png"), "new");
    EXPECT_TRUE(fs::is_symlink(path("link.png")));
    EXPECT_EQ(read("b.csv"), "line");
    EXPECT_EQ(count(), 3);
}

TEST_F(ProgramFiles, AFullDiskIsToldOnceAndLeavesNothingNew) {
    write("a.png", "former");
    for (const std::size_t size : {100, 100'000}) { // seen at closing; while writing
        const FullDisk disk(50);
        OutputFile whole, growing;
        ASSERT_TRUE(whole.open(path("a.png"), OutputFile::Kind::whole));
        ASSERT_TRUE(growing.open(path("b.csv"), OutputFile::Kind::growing));
        for (OutputFile* file : {&whole, &growing}) {
            EXPECT_EQ(file->write(std::string(size, 'x')), size == 100);
            EXPECT_EQ(file->isOpen(), size == 100);
            EXPECT_FALSE(file->close());
            EXPECT_NE(file->getMessage().find("File too large"), std::string::npos);
        }
        EXPECT_EQ(growing.getMessage(), "cannot write \"" + path("b.csv") + "\": File too large");
    }
    EXPECT_EQ(read("a.png"), "former");
    EXPECT_EQ(count(), 1);

    OutputFile device;
    ASSERT_TRUE(device.open("/dev/full", OutputFile::Kind::whole));
    EXPECT_TRUE(device.write("x"));
    EXPECT_FALSE(device.close());
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST_F(ProgramFiles, WhatCannotBeWrittenIsRefusedWithoutTouchingIt) {
    const auto whyNot = [](const std::string& path) {
        OutputFile file;
        EXPECT_FALSE(file.open(path, OutputFile::Kind::growing));
        EXPECT_FALSE(file.isOpen());
        EXPECT_NE(file.getMessage().find(path), std::string::npos);
        return OutputFile::whyNot(path, OutputFile::Kind::growing);
    };
    EXPECT_NE(whyNot(path("none/a.png")).find("no folder \""), std::string::npos);
    EXPECT_EQ(whyNot(folder.string()), "it is a folder, not a file");
    const std::string file = write("kept.csv", "kept");
    EXPECT_NE(whyNot(file + "/a.csv"), "");
    if (geteuid() == 0) return; // who may write everything
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_EQ(whyNot(file), "Permission denied");
    EXPECT_EQ(read("kept.csv"), "kept");
}

TEST_F(ProgramFiles, OnlyRegularFilesAreRead) {
    EXPECT_EQ(whyUnreadable(write("a", "text")), "");
    EXPECT_EQ(whyUnreadable(path("absent")), "No such file or directory");
    EXPECT_EQ(whyUnreadable(folder.string()), "a folder, not a file");
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(whyUnreadable(path("pipe")), "not a regular file");
}

} // namespace
} // namespace program
