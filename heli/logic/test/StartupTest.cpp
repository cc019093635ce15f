// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/base/jAllocator.h"
#include "ig/net/SocketUDP.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

using namespace ig;

/// What the memory tracker holds, by source and function.
std::map<std::string, int> tracked() {
    std::map<std::string, int> count;
    memForEach([&](const MemInfo& info) { count[std::string(info.file) + "|" + info.function]++; });
    return count;
}

TEST(Startup, WorldWithoutStartMarkerCreatesNothing) {
    const auto before = tracked(); // tracks of earlier tests
    LogicScene scene;
    scene.before_init = [&](auto&) {
        scene.world->removeNode(scene.world->getNodeByName("start_heli"));
    };
    EXPECT_FALSE(scene.start());
    EXPECT_EQ(scene.world->getNodes().size(), 1); // the deck
    scene.frame();
    scene.stop();
    EXPECT_EQ(tracked(), before);
}

// Ever more memory, so that every step comes to be the one that lacks it. The engine's own objects
// answer with the standard exception.
TEST(Startup, OutOfMemoryOnItsWayIsToldAndEverythingCanBeReleased) {
    int told = 0;
    bool good = false;
    for (std::size_t room = 0; !good && room < 4'000'000; room += room / 8 + 500) {
        LogicScene scene;
        scene.before_init = [room](auto&) {
            jAllocator::get()->setLimit(jAllocator::get()->getUsed() + room);
        };
        try {
            good = scene.start();
            told += scene.log.lines.back() == "Logic_Nerith_Heli_Final::init: out of memory";
        } catch (const std::bad_alloc&) {
        }
        jAllocator::get()->setLimit(0);
        scene.stop();
    }
    EXPECT_TRUE(good);
    EXPECT_GE(told, 1);
}

TEST(Startup, AnnouncesInOrderAlsoWhatIsPreloadedAndMissing) {
    LogicScene scene;
    scene.folder.write("data/PELMAR_PROJECT/ANIM/light.anim",
                       "channels: [{node: start_heli, keys: [[0, 1]]}]\n");
    std::string model = LogicScene::helicopterPrefab();
    model.replace(model.find("{name: windows}"), 15,
                  "{name: windows, type: mesh, mesh: square.obj, intersect: false}");
    scene.folder.write(LogicScene::HELICOPTER, model);
    std::string heard;
    scene.before_init = [&](Logic_Nerith_Heli_Final& logic) {
        const auto listen = [&](auto& list, auto describe) {
            list.append({&heard, [&heard, describe](auto... told) {
                             heard += describe(told...).c_str() + std::string(" ");
                         }});
        };
        listen(logic.m_sig_object,
               [](auto* o, int value) { return o->getName() + ToString(value); });
        listen(logic.m_sig_prefab_added, [](auto* prefab, bool flag) {
            return prefab->getRoot()->getName() + (flag ? "!" : "");
        });
        listen(logic.m_sig_track_loaded, [](auto) { return jString("track"); });
        listen(logic.m_sig_preload,
               [](auto& path) { return std::filesystem::path(path.c_str()).stem(); });
    };
    ASSERT_TRUE(scene.start());
    EXPECT_EQ(heard, "tail_light0 helicopter! downwash_spe0 glass_top_left0 windows0 track " // of 3
                     "yulei explosion explosion_1 water_explosion sonar winch water_drop missile "
                     "sonar_rope decoy ");
    EXPECT_TRUE(scene.logic->get_track("data/PELMAR_PROJECT/ANIM/light.anim"));
    EXPECT_EQ(std::ranges::count(scene.log.lines,
                                 "Logic_Nerith_Heli_Final::load_track:\"data/PELMAR_PROJECT/ANIM/"
                                 "runway_ice.anim\" load failed"),
              1);
}

TEST(Startup, WithoutHelicopterPartsOrPrefabTheFramesAndTheResetGoOn) {
    for (const bool present : {true, false}) {
        LogicScene scene;
        scene.folder.write(LogicScene::HELICOPTER, "node: {name: bare}\n");
        if (!present) std::filesystem::remove(scene.folder.path() / LogicScene::HELICOPTER);
        ASSERT_TRUE(scene.start());
        scene.world->removeNode(scene.world->getNodeByName("start_heli"));
        UdpRecvData record = LogicScene::record();
        record.altitude = 99;
        scene.tell(record);
        scene.logic->reset();
        scene.frame();
        EXPECT_NEAR(scene.helicopterWgs().z, 99, 1e-8);
        EXPECT_TRUE(scene.feedback().has_value());
    }
}

// Exactly what outlives the logic: the loaded tracks and the ships, each with its buoyancy and its
// wake. Everything else is given back, also on a second release, whether it was freed by us or by
// the world.
TEST(Release, LeavesOnlyTracksAndShipsInTheMemoryTracker) {
    auto expected = tracked(); // tracks of earlier tests
    expected["src/logic/Logic_Nerith_Heli_Final|Logic_Nerith_Heli_Final::load_track"] += 3;
    expected["src/logic/Logic_Nerith_Heli_Final|Logic_Nerith_Heli_Final::init"] += 2;
    expected["../common/ship/ship|Ship::Ship"] += 4;
    LogicScene scene;
    scene.useProjectData();
    ASSERT_TRUE(scene.start());
    scene.frames(10);
    scene.logic->release();
    EXPECT_TRUE(SocketUDP::getOpenSockets().empty());
    scene.logic->release();
    scene.stop();
    EXPECT_EQ(tracked(), expected);
}

} // namespace
