// SPDX-License-Identifier: MIT

// How the channel starts, ends and refuses, as a user sees it.

#include "ChannelRun.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace {

TEST(Start, HelpAndWrongUse) {
    std::string output;
    EXPECT_EQ(Program(CHANNEL, "--help").finish(&output), 0);
    EXPECT_NE(output.find("--fps"), std::string::npos);
    EXPECT_EQ(Program(CHANNEL, "--fps many").finish(&output), 2);
    EXPECT_NE(output.find("--fps"), std::string::npos);
}

TEST(Start, WhatIsMissingIsNamedAndTheExitStatusIsOne) {
    const auto expectRefusal = [](ChannelRun& run, const std::string& options,
                                  const std::string& text) {
        EXPECT_FALSE(run.start(options + " --seconds 1"));
        EXPECT_EQ(run.program->finish(&run.output), 1) << text;
    };
    const auto output = [](const std::string& options, const TempFolder& folder) {
        std::string text;
        EXPECT_EQ(
            Program(CHANNEL, "--directory '" + folder.path().string() + "' --seconds 1 " + options)
                .finish(&text),
            1);
        return text;
    };
    ChannelRun run;
    expectRefusal(run, "--logic none.so", "logic");
    std::string text = output("--logic none.so", run.folder);
    EXPECT_EQ(countOf(text, "error"), 1) << text;
    EXPECT_NE(text.find("none.so"), std::string::npos) << text;
    text = output("--logic " LOGIC_FOLDER "/libig.so", run.folder);
    EXPECT_NE(text.find("doesn't export CreateLogic"), std::string::npos) << text;
    text.clear();
    EXPECT_EQ(Program(CHANNEL, "--directory /nowhere").finish(&text), 1);
    EXPECT_NE(text.find("/nowhere"), std::string::npos) << text;

    TempFolder empty;
    text = output("", empty);
    EXPECT_EQ(countOf(text, "error"), 1) << text;
    for (const std::string& part :
         {std::string("no \"data/PELMAR_PROJECT/PELMAR_PROJECT.world\" in \""),
          empty.path().string(), ", but in \"" + std::filesystem::current_path().string(),
          std::string("--directory")})
        EXPECT_NE(text.find(part), std::string::npos) << text;
    empty.write("data/PELMAR_PROJECT/PELMAR_PROJECT.world", "nodes:\n- {name: a\n");
    text = output("", empty);
    EXPECT_EQ(countOf(text, "error"), 1) << text;
    EXPECT_NE(text.find("PELMAR_PROJECT.world:"), std::string::npos) << text;
    empty.write("data/PELMAR_PROJECT/PELMAR_PROJECT.world", "nodes: [{name: sea, type: ocean}]\n");
    text = output("", empty);
    EXPECT_NE(text.find("start_heli"), std::string::npos) << text;
}

TEST(Start, FirstFeedbackComesSoonAndMemoryStaysSmall) {
    { // warm the caches
        ChannelRun run;
        ASSERT_TRUE(run.start("--frames 3"));
        run.program->finish();
    }
    ChannelRun run;
    const double begin = steadyNow();
    ASSERT_TRUE(run.start("--fps 60"));
    ASSERT_EQ(run.peer.receive(5000).size(), 108u);
    const double start_up = steadyNow() - begin;
    for (int i = 0; i < 60; i++)
        run.peer.receive(100);
    std::ifstream status("/proc/" + std::to_string(run.program->id()) + "/status");
    double megabytes = 0;
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmRSS:", 0) == 0) megabytes = std::atof(line.c_str() + 6) / 1024;
    EXPECT_EQ(run.stop(), 0);
    RecordProperty("start_up_ms", static_cast<int>(start_up * 1000));
    RecordProperty("resident_mb", static_cast<int>(megabytes));
    EXPECT_GT(megabytes, 1);
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(start_up, 1.0);
    EXPECT_LT(megabytes, 150);
#endif
}

TEST(Start, EndsInOrderOnSignalsAndAfterItsTime) {
    for (int number : {SIGINT, SIGTERM}) {
        ChannelRun run;
        ASSERT_TRUE(run.start("--fps 60"));
        EXPECT_EQ(run.peer.receive(5000).size(), 108u);
        run.program->signal(number);
        EXPECT_EQ(run.program->finish(&run.output), 0);
        EXPECT_NE(run.output.find("feedback: "), std::string::npos);
    }
    ChannelRun run; // a fixed step needs no real time: twelve seconds of scene in a moment
    [[maybe_unused]] const double begin = steadyNow();
    ASSERT_TRUE(run.start("--fps 0 --step 0.02 --seconds 12 --quiet"));
    EXPECT_EQ(run.program->finish(&run.output), 0);
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(steadyNow() - begin, 12);
#endif
    EXPECT_EQ(run.readTrace().size(), 600u);
    ChannelRun frames;
    ASSERT_TRUE(frames.start("--frames 7"));
    EXPECT_EQ(frames.program->finish(), 0);
    EXPECT_EQ(frames.readTrace().size(), 7u);
}

TEST(Start, OtherSendersAreFilteredWhenAskedFor) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60 --allow-sender 127.0.0.2"));
    const char record[1490] = {};
    run.send(record, sizeof record);
    run.peer.receive(1000);
    run.peer.receive(1000);
    EXPECT_EQ(run.stop(), 0);
    EXPECT_NE(run.output.find("1 from others"), std::string::npos) << run.output;
    EXPECT_EQ(run.readTrace().back().records, 0);
}

} // namespace
