// SPDX-License-Identifier: MIT
#include "ig/package/Package.h"

#include "ig/package/mjl.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace ig;

namespace {

class PackageTest : public testing::Test {
protected:
    Package read(const char* text) {
        Package package;
        EXPECT_TRUE(mjl::open(folder.write("test.yaml", text), &package));
        return package;
    }
    TempFolder folder;
    LogCapture log;
};

} // namespace

TEST_F(PackageTest, MissingKeysReadAsZeroFalseAndEmptyWithoutAMessage) {
    const Package p = read("empty:\nquoted: ''\n");
    for (const char* key : {"absent", "empty", "quoted"}) {
        EXPECT_EQ(p.getString(key), "");
        EXPECT_EQ(p.getInt(key) + p.getDouble(key), 0);
        EXPECT_FALSE(p.getBool(key) || p.getPackage(key));
        EXPECT_TRUE(p.getPackages(key).empty());
        float values[2] = {7, 7};
        EXPECT_EQ(p.getFloats(key, values, 2), 0);
        EXPECT_EQ(values[0] + values[1], 0);
    }
    EXPECT_EQ(log.lines.size(), 0u);
    EXPECT_FALSE(p.getItem("absent", true));
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST_F(PackageTest, ValuesConvertExactly) {
    const Package p =
        read("whole: [10004, \"10005\", +3, -2147483648]\n"
             "third: 0.1\nexp: 1e3\ninf: -.inf\nnan: .nan\nbool: [TRUE, yes, 1, Off]\n");
    const Item *whole = p.getItem("whole"), *bools = p.getItem("bool");
    const int expected[] = {10004, 10005, 3, std::numeric_limits<int>::min()};
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(whole->getElement(i).getInt(), expected[i]);
        EXPECT_EQ(bools->getElement(i).getBool(), i < 3);
    }
    EXPECT_EQ(p.getFloat("third"), 0.1f);
    EXPECT_EQ(p.getDouble("third"), 0.1);
    EXPECT_EQ(p.getDouble("exp"), 1000);
    EXPECT_EQ(p.getFloat("inf"), -INFINITY);
    EXPECT_TRUE(std::isnan(p.getDouble("nan")));
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(PackageTest, WhatDoesNotConvertReadsAsZeroWithOneWarningOfPathAndLine) {
    const Package p =
        read("a: 2147483648\nb: 12x\nc: 1.5\nd: [1]\ne: +-3\nf: inf\ng: 1e999\nh: maybe\n");
    for (int i = 0; i < 8; i++) {
        const Item& item = p.getItemAt(i);
        for (int repeated = 0; repeated < 2; repeated++)
            EXPECT_EQ(i < 5 ? item.getInt() : i < 7 ? item.getDouble() : item.getBool(), 0) << i;
    }
    ASSERT_EQ(log.lines.size(), 8u);
    EXPECT_NE(log.lines[7].find("test.yaml:8: h: \"maybe\""), std::string::npos);
}

TEST_F(PackageTest, NumberListsReportHowManyWereReadAndClearTheRest) {
    const Package p = read("three: [1, 2.5, -3]\none: 7\nempty: []\nbad: [1, x, 3]\n"
                           "rows: [[0, 10], [1, 11]]\n");
    using Numbers = std::vector<double>;
    const std::tuple<const char*, int, Numbers> cases[] = {
        {"three", 3, {1, 2.5, -3, 0}},
        {"one", 1, {7, 0}},
        {"empty", 0, {0}},
        {"three", 2, {1, 2.5}},
        {"rows", 4, {0, 10, 1, 11}},
        {"bad", 1, {1, 0, 0}}}; // a gap must not pass as a full vector
    for (const auto& [key, count, expected] : cases) {
        Numbers v(expected.size(), 9);
        EXPECT_TRUE(log.lines.empty());
        EXPECT_EQ(p.getItem(key)->getDoubles(v.data(), static_cast<int>(v.size())), count);
        EXPECT_EQ(v, expected) << key;
    }
    EXPECT_EQ(log.lines.size(), 1u);
    double row[2];
    EXPECT_EQ(p.getItem("rows")->getElement(1).getDoubles(row, 2), 2);
    EXPECT_EQ(row[1], 11);
}

TEST_F(PackageTest, NestedPackagesKnowKeyAndLine) {
    const Package p = read("# head\nslaves:\n  \"left 1\":\n    shear: [0.1, 0.2]\n  右: {}\n"
                           "nodes:\n  - name: a\n  - loose\n  - {name: b}\ndata/x.png: 1\n");
    const Package* channel = p.getPackage("slaves")->getPackage("left 1");
    ASSERT_TRUE(channel);
    EXPECT_EQ(channel->getName(), "left 1");
    EXPECT_EQ(channel->getLine(), 3);
    EXPECT_EQ(channel->getItem("shear")->getLine(), 4);
    EXPECT_EQ(channel->getPath(), p.getPath());
    EXPECT_TRUE(p.getPackage("slaves")->getPackage("右"));
    const auto nodes = p.getPackages("nodes");
    ASSERT_EQ(nodes.size(), 2);
    EXPECT_EQ(nodes[1]->getString("name"), "b");
    EXPECT_EQ(nodes[1]->getLine(), 9);
    EXPECT_EQ(p.getPackages("slaves").size(), 1);
    EXPECT_EQ(p.getItemAt(2).getName(), "data/x.png");
}

TEST_F(PackageTest, CopiesAreDeepAndAssignmentFromInsideIsSafe) {
    Package p = read("a: {b: {c: 1}}\nl: [[1, 2], 3]\n");
    Package copy = p;
    copy.getPackage("a")->getPackage("b")->setInt("c", 2);
    EXPECT_EQ(p.getPackage("a")->getPackage("b")->getInt("c"), 1);
    EXPECT_FALSE(copy == p);
    Item* list = p.getItem("l");
    *list = std::move(list->getElement(0));
    EXPECT_EQ(list->getCount(), 2);
    p = *p.getPackage("a");
    p = std::move(*p.getPackage("b"));
    EXPECT_EQ(p.getInt("c"), 1);
}

TEST_F(PackageTest, SettersReplaceInPlaceAndChangeTheKind) {
    Package p = read("first: {x: 1}\nsecond: 2\n");
    p.setInt("first", 5);
    EXPECT_FALSE(p.getPackage("first"));
    EXPECT_EQ(p.getItemAt(0).getInt(), 5);
    p.setString("first", p.getString("first"));
    EXPECT_EQ(p.getInt("first"), 5);
    EXPECT_EQ(p.getItemCount(), 2);
}
