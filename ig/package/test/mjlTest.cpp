// SPDX-License-Identifier: MIT
#include "ig/package/mjl.h"

#include "ig/package/Package.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <vector>

using namespace ig;

namespace {

class MjlTest : public testing::Test {
protected:
    /// Opens the bytes as a file into a package that already holds something.
    bool open(const std::string& bytes) {
        log.lines.clear();
        package.setInt("left over", 1);
        return mjl::open(path = folder.write("file.yaml", bytes), &package);
    }
    /// Expects that the bytes are refused with one error that begins with the path and `where`.
    void expectMalformed(const std::string& bytes, const std::string& where,
                         const std::string& what = "") {
        SCOPED_TRACE(bytes.substr(0, 60));
        EXPECT_FALSE(open(bytes));
        EXPECT_TRUE(package.empty());
        ASSERT_EQ(log.lines.size(), 1u);
        const std::string start = "mjl::open: " + std::string(path.view()) + ":" + where;
        EXPECT_EQ(log.lines[0].substr(0, start.size()), start);
        EXPECT_NE(log.lines[0].find(what), std::string::npos) << log.lines[0];
    }
    /// Expects that what `save` writes is read back equal.
    void expectRoundTrip(const Package& original) {
        ASSERT_TRUE(mjl::save(folder.file("saved.yaml"), &original));
        Package back;
        ASSERT_TRUE(mjl::open(folder.file("saved.yaml"), &back));
        EXPECT_TRUE(back == original);
    }
    TempFolder folder;
    LogCapture log;
    Package package;
    jString path;
};

std::string repeat(const std::string& text, int n) {
    std::string all;
    for (int i = 0; i < n; i++)
        all += text;
    return all;
}

} // namespace

TEST_F(MjlTest, MissingFilesAreFalseAndSilentAndFilesWithoutContentAreEmpty) {
    package.setInt("left over", 1);
    EXPECT_FALSE(mjl::open(folder.file("absent.yaml"), &package));
    EXPECT_TRUE(package.empty());
    EXPECT_FALSE(mjl::open("", &package));
    EXPECT_TRUE(log.lines.empty());
    for (const char* text : {"", "\n\n", "# only a comment\n", "---\n", "{}", "\xef\xbb\xbf"}) {
        EXPECT_TRUE(open(text)) << text;
        EXPECT_TRUE(package.empty()) << text;
    }
    EXPECT_TRUE(open("\xef\xbb\xbfport: 1\r\nip: a\r\n")) << "a text file of another system";
    EXPECT_EQ(package.getInt("port"), 1);
    EXPECT_EQ(package.getString("ip"), "a");
}

TEST_F(MjlTest, MalformedFilesNameLineAndColumn) {
    const std::tuple<std::string, const char*, const char*> cases[] = {
        {"a: 1\nb: [1, 2\nc: 3\n", "3:", "closed with ]"},
        {"a: 1\n  b: 2\n", "2:", "line above"},
        {"a: \"open", "2:", "not closed"},
        {"a: 1\nb: 2\na: 3\n", "3:1: ", "\"a\" stands twice"},
        {"- 1\n- 2\n", "1:1: ", "top level"},
        {"just text\n", "1:1: ", "top level"},
        {"a: 1\n---\nb: 2\n", "", "second document"},
        {"? [1, 2]\n: 3\n", "1:3: ", "key"},
        {"~: 3\n", "1:1: ", "key"},
        {"a: *nowhere\n", "1:4: ", ""},
        {"a: &x [1, *x]\n", "1:11: ", ""},
        {"&k name: 5\nl: [*k]\n*k : 6\n", "3:1: ", "\"name\" stands twice"},
        {"a: &x [1]\n*x : 2\n", "2:1: ", "key"},
        {std::string("a: 1\nb: \0\n", 10), "2:4: ", "UTF-8"},
        {"a: \xc0\xaf\n", "1:4: ", "UTF-8"},
        {"a: \xc3\xc3\n", "1:4: ", "UTF-8"},
        {"a: \xe2\x82", "1:4: ", "UTF-8"},
    };
    for (const auto& [bytes, where, what] : cases)
        expectMalformed(bytes, where, what);
}

TEST_F(MjlTest, WhatIsNoReadableFileIsRefusedWithOneMessage) {
    const jString pipe = folder.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(mjl::open(folder.file("."), &package));
    EXPECT_FALSE(mjl::open(pipe, &package)) << "must not wait for a writer";
    EXPECT_FALSE(mjl::open(folder.write("file.yaml", "a: 1"), &package, true)) << "encrypted";
    EXPECT_EQ(log.lines.size(), 3u);
}

TEST_F(MjlTest, SizeAndDepthAreBounded) {
    EXPECT_TRUE(open("a: " + repeat("[", 99) + repeat("]", 99)));
    expectMalformed("a: " + repeat("[", 100) + repeat("]", 100), "1:103: ", "deeper");
    expectMalformed("a: " + repeat("{a: ", 100'000), "1:");
    expectMalformed("a: [" + repeat("0,", 1'000'001) + "]\n", "1:", "items");
    // Nine lists of ten aliases each are a thousand million values; a tower of lists of one alias
    // nests deeper and deeper without a deep text.
    std::string bomb = "a0: &a0 [1, 1]\n", tower = bomb;
    for (int i = 1; i < 120; i++) {
        const std::string n = std::to_string(i), alias = "*a" + std::to_string(i - 1);
        const std::string list = "a" + n + ": &a" + n + " [" + alias;
        if (i < 10) bomb += list + repeat(", " + alias, 9) + "]\n";
        tower += list + "]\n";
    }
    expectMalformed(bomb, "", "items");
    expectMalformed(tower, "100:", "deeper");
}

TEST_F(MjlTest, AliasesAreCopies) {
    ASSERT_TRUE(open("base: &b {x: 1}\nother: *b\n"));
    package.getPackage("base")->setInt("x", 2);
    const Package* other = package.getPackage("other");
    EXPECT_EQ(other->getInt("x"), 1);
    EXPECT_EQ(other->getName(), "other");
    EXPECT_EQ(other->getLine(), 2);
}

// Any cut and any changed byte of a valid file either reads or is refused with one message.
TEST_F(MjlTest, DamagedFilesNeverThrow) {
    const std::string valid = "a: &x [1, \"t\\u00e9\", {b: 'c'}]\n? long key\n: |\n  text\n  more\n"
                              "d:\n  - *x\n  - e: >-\n      folded\n# end\n%k: !!int 5\n";
    std::mt19937 random(7);
    const std::string_view alphabet = "[]{}:,-?&*!|>%@`\"'#\n\t \\x0\xc3\xff";
    for (std::size_t i = 0; i < 1500; i++) {
        std::string bytes = valid.substr(0, i);
        for (int k = 0; i >= valid.size() && k < 3; k++)
            bytes[random() % bytes.size()] = alphabet[random() % alphabet.size()];
        const bool ok = open(bytes);
        ASSERT_EQ(log.lines.size(), ok ? 0u : 1u) << bytes;
        if (ok) expectRoundTrip(package);
    }
}

TEST_F(MjlTest, SavedPackagesReadBackEqual) {
    ASSERT_TRUE(open("keys: [[0, [1]], [], [{a: 1}, [2, {b: [3]}]]]\nempty: {}\nnumber: -.inf\n"
                     "texts: [a, '', '- b', '[c']\nnest: {投放鱼雷 / path: {b: true}}\n"
                     "list: [{inner: [{x: -1}]}]\n"));
    package.setInt("set", std::numeric_limits<int>::min());
    expectRoundTrip(package);
    expectRoundTrip(Package());
}

TEST_F(MjlTest, AnyTextSurvivesAsKeyAndValue) {
    std::vector<std::string> texts = {std::string(3000, 'k'), std::string("a\0b", 3), "\xc2\x85"};
    std::istringstream words("~ null true 1 : a: - ? !tag &a *a %d @ ` | > ' \" \\ {} [] , --- ... "
                             "<< = \x01 \x7f \xef\xbb\xbf \xc2\xa0 \xe2\x80\xa8 \xf0\x9f\x9a\x81 "
                             "\xef\xbf\xbe");
    for (std::string word; words >> word;)
        texts.push_back(word);
    std::mt19937 random(3);
    const std::string_view alphabet = "ab01 \n\t:-#[]{},&*?|>'\"\\%@!~\r.\x1b";
    for (int i = 0; i < 1000; i++) {
        std::string text;
        for (unsigned k = random() % 8; k > 0; k--)
            text += alphabet[random() % alphabet.size()];
        texts.push_back(text);
    }
    ASSERT_TRUE(open("nest: {list: [" + repeat("a, ", static_cast<int>(texts.size())) + "]}\n"));
    for (std::size_t i = 0; i < texts.size(); i++) {
        package.getPackage("nest")->setString(texts[i], texts[i]);
        package.setString("", texts[i]); // an element of a list has no name either
        package.getPackage("nest")->getItem("list")->getElement(static_cast<int>(i)) =
            *package.getItem("");
    }
    expectRoundTrip(package);
}

TEST_F(MjlTest, FailedSaveLogsOnceAndLeavesTheFormerFile) {
    const jString target = folder.write("former.yaml", repeat("d: {", 50) + repeat("}", 50));
    Package p, deep;
    ASSERT_TRUE(mjl::open(target, &deep));
    folder.write("former.yaml", "a: 1\n");
    p.setString("a", "\xff");
    EXPECT_FALSE(mjl::save(target, &p));
    p.setString("a", "2");
    EXPECT_FALSE(mjl::save(folder.file("no/such/folder.yaml"), &p));
    EXPECT_FALSE(mjl::save(target, &p, true)) << "encrypted";
    std::filesystem::create_directories(std::string(folder.file("dir/sub").view()));
    EXPECT_FALSE(mjl::save(folder.file("dir"), &p)) << "cannot be moved over a folder";
    Package* inner = &deep;
    while (inner->getPackage("d"))
        inner = inner->getPackage("d");
    *inner = Package(deep);
    EXPECT_FALSE(mjl::save(target, &deep)) << "could not be read back";
    EXPECT_EQ(log.lines.size(), 5u);
    ASSERT_TRUE(mjl::open(target, &p));
    EXPECT_EQ(p.getInt("a"), 1);
    EXPECT_EQ(folder.count(), 2) << "no temporary file stays";
}
