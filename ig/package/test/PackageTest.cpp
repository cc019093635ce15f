// SPDX-License-Identifier: MIT
#include "ig/package/Package.h"

#include "ig/package/mjl.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

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

TEST_F(PackageTest, missing_keys_read_as_zero_false_and_empty_without_a_message) {
    const Package p = read("empty:\nquoted: ''\n");
    for (const char* key : {"absent", "empty", "quoted"}) {
        EXPECT_EQ(p.getString(key), "");
        EXPECT_EQ(p.getInt(key), 0);
        EXPECT_EQ(p.getFloat(key), 0);
        EXPECT_EQ(p.getDouble(key), 0);
        EXPECT_FALSE(p.getBool(key));
        float values[2] = {7, 7};
        EXPECT_EQ(p.getFloats(key, values, 2), 0);
        EXPECT_EQ(values[0] + values[1], 0);
        EXPECT_FALSE(p.getPackage(key));
        EXPECT_TRUE(p.getPackages(key).empty());
        EXPECT_TRUE(p.getStrings(key).empty());
    }
    EXPECT_EQ(log.lines.size(), 0u);
    EXPECT_FALSE(p.getItem("absent", true));
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST_F(PackageTest, values_convert_exactly) {
    const Package p = read("port: 10004\nquoted: \"10005\"\nplus: +3\nlow: -2147483648\n"
                           "third: 0.1\nexp: 1e3\ninf: -.inf\nnan: .nan\n"
                           "a: TRUE\nb: yes\nc: 1\nd: Off\n");
    EXPECT_EQ(p.getInt("port"), 10004);
    EXPECT_EQ(p.getInt("quoted"), 10005);
    EXPECT_EQ(p.getInt("plus"), 3);
    EXPECT_EQ(p.getInt("low"), std::numeric_limits<int>::min());
    EXPECT_EQ(p.getFloat("third"), 0.1f);
    EXPECT_EQ(p.getDouble("third"), 0.1);
    EXPECT_EQ(p.getDouble("exp"), 1000);
    EXPECT_EQ(p.getFloat("inf"), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(p.getDouble("nan")));
    EXPECT_TRUE(p.getBool("a") && p.getBool("b") && p.getBool("c"));
    EXPECT_FALSE(p.getBool("d"));
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(PackageTest, what_does_not_convert_reads_as_zero_with_one_warning_of_path_and_line) {
    const Package p = read("a: 2147483648\nb: 12x\nc: inf\nd: 1e999\ne: [1]\nf: +-3\ng: 1.5\n"
                           "h: maybe\n");
    EXPECT_EQ(p.getInt("a") + p.getInt("a"), 0);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("test.yaml:1: a: \"2147483648\""), std::string::npos);
    EXPECT_EQ(p.getInt("b"), 0);
    EXPECT_EQ(p.getFloat("c"), 0);
    EXPECT_EQ(p.getDouble("d"), 0);
    EXPECT_EQ(p.getInt("e"), 0);
    EXPECT_EQ(p.getInt("f"), 0);
    EXPECT_EQ(p.getInt("g"), 0);
    EXPECT_FALSE(p.getBool("h"));
    EXPECT_EQ(log.lines.size(), 8u);
    EXPECT_NE(log.lines[7].find("test.yaml:8: h: "), std::string::npos);
}

TEST_F(PackageTest, number_lists_report_how_many_were_read_and_clear_the_rest) {
    const Package p = read("three: [1, 2.5, -3]\none: 7\nbad: [1, x, 3]\n"
                           "keys: [[0, 10], [1, 11], [2, 12]]\nempty: []\n");
    double v[6];
    EXPECT_EQ(p.getDoubles("three", v, 2), 2);
    EXPECT_EQ(v[1], 2.5);
    std::fill_n(v, 6, 9.0);
    EXPECT_EQ(p.getDoubles("three", v, 6), 3);
    EXPECT_EQ(v[2], -3);
    EXPECT_EQ(v[3] + v[5], 0);
    EXPECT_EQ(p.getDoubles("one", v, 2), 1);
    EXPECT_EQ(p.getDoubles("empty", v, 2), 0);
    EXPECT_EQ(log.lines.size(), 0u);
    EXPECT_EQ(p.getDoubles("bad", v, 3), 1) << "a gap must not pass as a full vector";
    EXPECT_EQ(v[2], 0);
    EXPECT_EQ(log.lines.size(), 1u);

    EXPECT_EQ(p.getDoubles("keys", v, 6), 6);
    EXPECT_EQ(v[3], 11);
    const Item* keys = p.getItem("keys");
    ASSERT_EQ(keys->getCount(), 3);
    EXPECT_EQ(keys->getElement(2).getDoubles(v, 2), 2);
    EXPECT_EQ(v[0], 2);
    EXPECT_EQ(v[1], 12);
}

TEST_F(PackageTest, nested_packages_know_key_and_line) {
    const Package p = read("# head\nslaves:\n  \"left 1\":\n    shear: [0.1, 0.2]\n  右: {}\n"
                           "nodes:\n  - name: a\n  - loose\n  - {name: b}\ndata/x.png: 1\n");
    const Package* channel = p.getPackage("slaves")->getPackage("left 1");
    ASSERT_TRUE(channel);
    EXPECT_EQ(channel->getName(), "left 1");
    EXPECT_EQ(channel->getLine(), 3);
    EXPECT_EQ(channel->getItem("shear")->getLine(), 4);
    EXPECT_EQ(channel->getPath(), p.getPath());
    EXPECT_TRUE(p.getPackage("slaves")->getPackage("右"));
    EXPECT_EQ(p.getInt("data/x.png"), 1);
    const auto nodes = p.getPackages("nodes");
    ASSERT_EQ(nodes.size(), 2);
    EXPECT_EQ(nodes[1]->getString("name"), "b");
    EXPECT_EQ(nodes[1]->getLine(), 9);
    EXPECT_EQ(p.getPackages("slaves").size(), 1);
    EXPECT_EQ(p.getItemAt(2).getName(), "data/x.png");
}

TEST_F(PackageTest, copies_are_deep_and_assignment_from_inside_is_safe) {
    Package p = read("a: {b: {c: 1}}\nl: [[1, 2], 3]\n");
    Package copy = p;
    copy.getPackage("a")->getPackage("b")->setInt("c", 2);
    EXPECT_EQ(p.getPackage("a")->getPackage("b")->getInt("c"), 1);
    EXPECT_FALSE(copy == p);
    const Package moved = std::move(copy);
    EXPECT_EQ(moved.getPackage("a")->getPackage("b")->getInt("c"), 2);

    Item* list = p.getItem("l");
    *list = std::move(list->getElement(0));
    EXPECT_EQ(list->getCount(), 2);
    p = *p.getPackage("a");
    EXPECT_EQ(p.getPackage("b")->getInt("c"), 1);
    p = std::move(*p.getPackage("b"));
    EXPECT_EQ(p.getInt("c"), 1);
}

TEST_F(PackageTest, setters_replace_in_place_and_change_the_kind) {
    Package p = read("first: {x: 1}\nsecond: 2\n");
    p.setInt("first", 5);
    EXPECT_FALSE(p.getPackage("first"));
    EXPECT_EQ(p.getItemAt(0).getInt(), 5);
    p.setString("first", p.getString("second"));
    EXPECT_EQ(p.getInt("first"), 2);
    p.appendPackage("second")->setBool("on", true);
    p.appendPackage("second");
    EXPECT_EQ(p.getPackages("second").size(), 2);
    EXPECT_TRUE(p.getPackages("second")[0]->getBool("on"));
    EXPECT_TRUE(p.removeItem("first"));
    EXPECT_FALSE(p.removeItem("first"));
    EXPECT_EQ(p.getItemCount(), 1);
    p.release();
    EXPECT_TRUE(p.empty());
    EXPECT_EQ(p.getPath(), "");
}
