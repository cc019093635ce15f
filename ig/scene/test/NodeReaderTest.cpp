// SPDX-License-Identifier: MIT
#include "ig/scene/NodeReader.h"

#include "ig/package/PackageManager.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace ig {
namespace {

// What a plug-in with a type of its own writes.

using enum NodeKeys::Kind;
const NodeSchema FLOWER{"flower", {{"flower", {{whole, {"petals"}, nullptr, 3, 8}}}}};

Node* create(const NodeReader& r) {
    auto* meadow = new NodeField();
    vec2 place{7, 7};
    if (!r.readPair("place", place)) r.report("left out:", "place");
    meadow->setParameter(0, place.y);
    meadow->setParameter(1, r.getNumber("height", 5));
    float petals = 0;
    for (const NodeReader& flower : r.getMaps("flowers"))
        petals += static_cast<float>(flower.getWhole("petals"));
    meadow->setParameter(2, petals);
    return meadow;
}
const bool TYPE = NodeFactory::add(
    "meadow", create,
    {{number, {"height"}}, {pair, {"place"}, nullptr, 0}, {list, {"flowers"}, &FLOWER}});

struct NodeReading : testing::Test {
    ~NodeReading() override {
        world.clear();
        PackageManager::release();
    }
    dvec3 read(const char* name) {
        const auto* meadow = static_cast<NodeField*>(world.getNodeByName(name));
        return {static_cast<double>(meadow->getParameter(0)),
                static_cast<double>(meadow->getParameter(1)),
                static_cast<double>(meadow->getParameter(2))};
    }
    WorkingFolder folder;
    LogCapture log;
    World world;
};

TEST_F(NodeReading, ValuesOfAPluginsTypeAreTakenAndWhatIsWrongIsToldWithItsLine) {
    folder.write("a.world", "nodes:\n"
                            "- {name: good, type: meadow, height: 2, place: [3, 4],\n"
                            "   flowers: [{petals: 5}, {petals: 99}, {petals: 1}]}\n"
                            "- {name: wrong, type: meadow, height: [2], place: [3, -4],\n"
                            "   flowers: [six]}\n"
                            "- {name: text, type: meadow, height: tall}\n");
    ASSERT_TRUE(world.load("a.world"));
    EXPECT_EQ(read("good"), dvec3(4, 2, 5 + 8 + 3));
    EXPECT_EQ(read("wrong"), dvec3(7, 5, 0));
    EXPECT_EQ(read("text"), dvec3(7, 5, 0));
    const std::vector<std::string> expected = {
        "a.world:4: two numbers within limits are needed in \"place\"",
        "a.world:4: left out: \"place\"", "a.world:4: a number is needed in \"height\"",
        "a.world:5: a map is needed in the list \"flowers\"", "a.world:6: height: \"tall\""};
    ASSERT_EQ(log.lines.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); i++)
        EXPECT_NE(log.lines[i].find(expected[i]), std::string::npos) << log.lines[i];
}

TEST_F(NodeReading, EveryKeyThatNothingReadsIsToldOnceWithWhatIsMeant) {
    folder.write("flag.prefab",
                 "node:\n"
                 "  body:\n"
                 "    mas: 3\n"
                 "    shapes: [{type: box, size: [1, 1, 1], sise: 2}]\n"
                 "    drag: [{node: a, aera: 2}]\n"
                 "    joints: [{name: b, rpoe: c}]\n"
                 "  children:\n"
                 "  - {type: rope, radius: 1, body: {type: rope, length: 1, mass: 1}}\n"
                 "  - {type: meadow, hieght: 1, flowers: [{petal: 3}]}\n"
                 "  - {type: mesh, mesh: none.obj, surfaces: [{mat: a}]}\n"
                 "  - loose\n");
    folder.write("a.world", "nodes: [{type: prefab, path: flag.prefab}]");
    ASSERT_TRUE(world.load("a.world"));
    for (const char* part :
         {":3: unknown key \"mas\"; nearest is \"mass\"",
          ":4: unknown key \"sise\"; nearest is \"size\"",
          ":5: unknown key \"aera\"; nearest is \"area\"",
          ":6: unknown key \"rpoe\"; nearest is \"rope\"", ":8: unknown key \"mass\"",
          ":9: unknown key \"hieght\"; nearest is \"height\"",
          ":9: unknown key \"petal\"; nearest is \"petals\"", ":10: unknown key \"mat\"",
          ":11: a map is needed in the list \"children\""})
        EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(),
                                [part](const std::string& line) {
                                    return line.find("flag.prefab" + std::string(part)) !=
                                           std::string::npos;
                                }),
                  1)
            << part;
    log.lines.clear();
    const ObjectPrefab again("flag.prefab");
    EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(),
                            [](const std::string& line) {
                                return line.find("unknown key") != std::string::npos;
                            }),
              0);
}

TEST_F(NodeReading, TypeThatAPluginReplacesKeepsItsPlace) {
    static int made = 0;
    NodeFactory::add("node",
                     [](const NodeReader& r) -> Node* {
                         made++;
                         return r.has("body") ? new Object(NODE_DUMMY) : new Node();
                     },
                     {});
    folder.write("a.world", "nodes: [{name: of no type}, {type: field}]");
    ASSERT_TRUE(world.load("a.world"));
    EXPECT_EQ(made, 1);
}

TEST_F(NodeReading, SchemaTellsEveryTypeWithItsKeysKindsAndLimits) {
    const std::string schema = NodeFactory::describe();
    for (const char* part :
         {"node:\n  node:\n    name: text\n    type: text\n    enabled: flag\n    position: "
          "triple\n",
          "    children: list of node\n    body: map of body\n",
          "    height: number\n    place: pair from 0\n    flowers: list of flower\n",
          "body:\n  rigid:\n    type: text\n    mass: number\n",
          "flower:\n  flower:\n    petals: whole from 3 to 8\n"})
        EXPECT_NE(schema.find(part), std::string::npos) << part << "\n" << schema;
}

} // namespace
} // namespace ig
