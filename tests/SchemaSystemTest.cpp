// SPDX-License-Identifier: MIT

// What scene files may say, as the program tells it, against what docs/worlds.md tells of it.

#include "testkit/Program.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <yaml-cpp/yaml.h>

namespace {

using Keys = std::set<std::string>;

/// The words between backticks.
Keys quotedIn(const std::string& text) {
    Keys words;
    for (std::size_t begin = text.find('`'); begin != std::string::npos;
         begin = text.find('`', begin)) {
        const std::size_t end = text.find('`', begin + 1);
        words.insert(text.substr(begin + 1, end - begin - 1));
        begin = end + 1;
    }
    return words;
}

/// The first column of each table below "## Nodes", by the heading above it; and the row of "type".
std::map<std::string, Keys> readTables(std::string& types) {
    std::ifstream file("docs/worlds.md");
    std::map<std::string, Keys> tables;
    std::string line, heading;
    while (std::getline(file, line) && line != "## Nodes") {
    }
    while (std::getline(file, line) && !line.starts_with("## ")) {
        if (line.starts_with("### ")) heading = line.substr(4);
        if (!line.starts_with("| `")) continue;
        tables[heading].merge(quotedIn(line.substr(0, line.find('|', 1))));
        if (heading == "Every node" && line.starts_with("| `type`")) types = line;
    }
    return tables;
}

TEST(Schema, TellsEveryKeyThatTheDocumentationTellsAndNoOther) {
    std::string text, types;
    EXPECT_EQ(Program(CHANNEL, "--schema > /dev/full").finish(&text), 1);
    EXPECT_NE(text.find("cannot print to the end: No space"), std::string::npos) << text;
    text.clear();
    ASSERT_EQ(Program(CHANNEL, "--schema").finish(&text), 0);
    const YAML::Node schema = YAML::Load(text);
    std::map<std::string, Keys> documented = readTables(types);
    const Keys every = documented["Every node"], named = quotedIn(types);
    ASSERT_FALSE(every.empty());
    std::map<std::string, Keys> known{{"Every node", every}};
    std::map<std::string, std::string> headings; // of the families of maps, by the key above them
    for (const auto& family : schema)
        for (const auto& type : family.second)
            for (const auto& key : type.second)
                if (const auto kind = key.second.as<std::string>(); kind.find(" of ") != kind.npos)
                    headings[kind.substr(kind.find(" of ") + 4)] = key.first.as<std::string>();
    for (const auto& family : schema)
        for (const auto& type : family.second) {
            const auto name = type.first.as<std::string>();
            const bool is_node = family.first.as<std::string>() == "node";
            const bool first = name == family.second.begin()->first.as<std::string>();
            std::string heading =
                '`' + (is_node ? name : headings[family.first.as<std::string>()]) + '`';
            if (!is_node && !first) heading += " of type `" + name + '`';
            Keys keys;
            for (const auto& key : type.second)
                keys.insert(key.first.as<std::string>());
            if (is_node) {
                EXPECT_TRUE(named.contains(name)) << name << " is no type in the documentation";
                for (const std::string& key : every)
                    EXPECT_EQ(keys.erase(key), 1u) << key << " of " << name;
            }
            if (!keys.empty()) known[heading] = keys;
        }
    EXPECT_EQ(documented, known);
    for (const std::string& name : named)
        EXPECT_TRUE(name == "type" || schema["node"][name]) << name << " is no type";
}

} // namespace
