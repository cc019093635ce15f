// SPDX-License-Identifier: MIT

// What frames took in, logged and played again: the programs as a user starts them.

#include "ChannelRun.h"
#include "flightsim/recording/Recording.h"
#include "frames/FrameLog.h"
#include "ig/ui/KeyCode.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

constexpr int PATIENCE = 60000; ///< ms that a loaded machine may take for a frame

/// A few records of the recorded flight, flown into a channel that an operator's script works.
struct Replays : testing::Test {
    void SetUp() override {
        run.folder.write("tour.yaml", "commands:\n"
                                      "- {at: 0.2, click: 打开声呐}\n"
                                      "- {at: 0.5, click: 第三视角}\n"
                                      "- {at: 1, key: t}\n"
                                      "- {at: 1.2, drag: [90, 30], over: 0.4}\n"
                                      "- {at: 1.8, click: 发射诱饵}\n"
                                      // more than the field shows, then back within it
                                      "- {at: 2, click: '100'}\n"
                                      "- {at: 2.2, type: '123456789012345678901234567890'}\n"
                                      "- {at: 2.4, key: Left}\n"
                                      "- {at: 2.6, key: Left}\n"
                                      "- {at: 4, quit: }\n");
        ASSERT_TRUE(run.start("--step 0.05 --fps 40 --sea 5 --size 640x360 --script tour.yaml "
                              "--record run.flog"));
        flightsim::RecordingReader reader;
        ASSERT_TRUE(reader.open("data/recordings/helicopter_flight.hrec")) << reader.getMessage();
        flightsim::Record record;
        for (int i = 0; i < 40; i++) {
            ASSERT_EQ(reader.next(record), flightsim::ReadStatus::record);
            run.send(record.datagram.data(), record.datagram.size());
            ASSERT_FALSE(run.peer.receive(PATIENCE).empty());
        }
        ASSERT_EQ(run.program->finish(&run.output), 0) << run.output;
        while (!run.peer.receive().empty()) {
        }
    }
    /// The exit status; `run.output` gets what was printed.
    int replay(const std::string& options) {
        run.output.clear();
        return Program(CHANNEL,
                       "--directory '" + run.folder.path().string() + "' --quiet " + options)
            .finish(&run.output);
    }
    bool says(const std::string& text) const { return run.output.find(text) != std::string::npos; }
    ChannelRun run;
};

TEST_F(Replays, GoTheSameWayWithoutALinkAndWhateverDrawsThem) {
    ASSERT_EQ(replay("--null --no-ui --replay run.flog --record again.flog"), 0) << run.output;
    EXPECT_TRUE(says("records: 40 received, 40 applied")) << run.output;
    EXPECT_TRUE(says("compared, all equal")) << run.output;
    EXPECT_TRUE(run.peer.receive().empty()) << "a replay sends nothing";
    ASSERT_EQ(replay("--null --replay again.flog --frames 70"), 0) << run.output;
    EXPECT_TRUE(says("70 frames, 1 compared, all equal")) << run.output;

    const int status =
        replay("--headless --renderer gl --replay run.flog --frames 61 --eye 0 0 9 9 9");
    if (says("no pictures: ")) GTEST_SKIP() << "no OpenGL without a display here";
    EXPECT_EQ(status, 0) << run.output;
    EXPECT_TRUE(says("compared, all equal")) << run.output;
}

TEST_F(Replays, NameWhatDiffersAndThatALogIsCut) {
    const std::filesystem::path panels =
        run.folder.path() / "config/Logic_Nerith_Heli_Final.interface.yaml";
    std::filesystem::remove(panels);
    run.folder.write("config/Logic_Nerith_Heli_Final.interface.yaml", "panels: {width: 900}\n");
    EXPECT_EQ(replay("--null --replay run.flog"), 1);
    EXPECT_TRUE(says("config/Logic_Nerith_Heli_Final.interface.yaml is not the log's"))
        << run.output;
    EXPECT_TRUE(says("differs from the log in frame 59: panels")) << run.output;

    std::filesystem::remove(panels);
    std::filesystem::create_symlink(
        std::filesystem::current_path() / "config/Logic_Nerith_Heli_Final.interface.yaml", panels);
    const std::filesystem::path log = run.folder.path() / "run.flog";
    std::filesystem::resize_file(log, std::filesystem::file_size(log) - 9);
    EXPECT_EQ(replay("--null --replay run.flog"), 0) << run.output;
    EXPECT_TRUE(says("is cut off")) << run.output;
    EXPECT_TRUE(says("compared, all equal")) << run.output;
}

/// The logic would end the process there, and no summary would tell of it.
TEST_F(Replays, EndBeforeAFrameInWhichTheKeysThatEndTheProcessAreDown) {
    const std::string path = (run.folder.path() / "").string();
    frames::LogReader reader;
    ASSERT_TRUE(reader.open(path + "run.flog")) << reader.getMessage();
    frames::LogWriter writer;
    ASSERT_TRUE(writer.open(path + "forced.flog", reader.getHead()));
    frames::FrameInput input;
    std::vector<frames::PartDigest> digests;
    using Kind = frames::OperatorEvent::Kind;
    for (int i = 0; i < 12; i++) {
        ASSERT_EQ(reader.next(input, digests), frames::LogItem::frame);
        if (i == 10) input.events = {{.kind = Kind::key, .code = ig::KEY_F4, .down = true}};
        if (i == 11) input.events = {{.kind = Kind::modifiers, .alt = true}};
        ASSERT_TRUE(writer.append(input));
    }
    ASSERT_TRUE(writer.close());
    EXPECT_EQ(replay("--null --replay forced.flog --record new.flog"), 0) << run.output;
    EXPECT_TRUE(says("12 frames, nothing compared")) << run.output;

    ASSERT_TRUE(reader.open(path + "new.flog")) << reader.getMessage();
    frames::LogItem last = frames::LogItem::end;
    while ((last = reader.next(input, digests)) < frames::LogItem::end) {
    }
    EXPECT_TRUE(last == frames::LogItem::cut_off && reader.getFrames() == 12) << "as a flight's";
}

/// The whole system against a flight of before: what is meant to change it renews the log, see
/// docs/operator.md.
TEST(GoldenLog, TheWeaponsMissionGoesAsItDid) {
    Program replay(CHANNEL, "--null --quiet --replay tests/golden/weapons.flog");
    std::string output;
    EXPECT_EQ(replay.finish(&output), 0) << output;
    EXPECT_NE(output.find("1599 frames, 27 compared, all equal"), std::string::npos) << output;
}

} // namespace
