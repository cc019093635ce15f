// SPDX-License-Identifier: MIT

// How the channel starts, ends and refuses, as a user sees it.

#include "ChannelRun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>

namespace {

TEST(Start, HelpAndWrongUse) {
    EXPECT_EQ(Program(CHANNEL, "--help").finish(), 0);
    EXPECT_EQ(Program(CHANNEL, "--fps many").finish(), 2);
}

TEST(Start, WhatIsMissingIsNamedAndTheExitStatusIsOne) {
    const auto output = [](const std::string& options, const TempFolder& folder) {
        std::string text;
        EXPECT_EQ(
            Program(CHANNEL, "--directory '" + folder.path().string() + "' --seconds 1 " + options)
                .finish(&text),
            1);
        return text;
    };
    ChannelRun run;
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
          empty.path().string(), "perhaps in \"" + std::filesystem::current_path().string(),
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

TEST(Start, FirstFeedbackCostsLittleAndMemoryStaysSmall) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60 --frames 60"));
    EXPECT_EQ(run.program->finish(), 0);
    EXPECT_EQ(run.peer.receive(0).size(), 108u);
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(run.program->cpuSeconds(), 1.5); // 0.4 where this was written
    EXPECT_LT(run.program->megabytes(), 150);
#endif
}

TEST(Start, EndsInOrderOnSignalsAndAfterItsTime) {
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        ChannelRun run;
        ASSERT_TRUE(run.start("--fps 60"));
        EXPECT_EQ(run.peer.receive(5000).size(), 108u);
        run.program->signal(number);
        run.program->signal(SIGTERM); // asked for twice, as supervisors do
        EXPECT_EQ(run.program->finish(&run.output), 0);
        EXPECT_NE(run.output.find("feedback: "), std::string::npos);
    }
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 0 --step 0.02 --seconds 12 --quiet"));
    EXPECT_EQ(run.program->finish(&run.output), 0);
    EXPECT_EQ(run.readTrace().size(), 600u);
    ChannelRun frames;
    ASSERT_TRUE(frames.start("--frames 7"));
    EXPECT_EQ(frames.program->finish(), 0);
    EXPECT_EQ(frames.readTrace().size(), 7u);
}

/// The channel with a pipe in the place of its trace, which holds it: at its opening until there is
/// a reader, and in a frame when that doesn't read.
struct HeldChannel : ChannelRun {
    explicit HeldChannel(bool reads) {
        const std::string pipe = (folder.path() / "trace.csv").string();
        EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        if (reads) reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
        program = std::make_unique<Program>(
            CHANNEL, "--null --fps 0 --step 0.02 --quiet --trace trace.csv --directory '" +
                         folder.path().string() + "'");
        EXPECT_FALSE(program->waitFor("飞仿IP").empty());
    }
    ~HeldChannel() { close(reader); }
    int waiting() const {
        int bytes = 0;
        EXPECT_EQ(ioctl(reader, FIONREAD, &bytes), 0);
        return bytes;
    }
    int reader = -1;
};

TEST(Start, SignalsEndAStartAtOnceAndASecondOneAFrameThatHangs) {
    HeldChannel starting(false);
    starting.program->signal(SIGTERM);
    EXPECT_EQ(starting.program->finish(), -1);

    HeldChannel hanging(true);
    const int full = fcntl(hanging.reader, F_GETPIPE_SZ);
    while (!hanging.program->hasEnded() && hanging.waiting() < full)
        std::this_thread::yield();
    for (int i = 0; i < 200 && !hanging.program->hasEnded(); i++) {
        hanging.program->signal(SIGTERM);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ASSERT_TRUE(hanging.program->hasEnded());
    EXPECT_EQ(hanging.program->finish(), -1);
}

TEST(Start, ClosedOutputsAndAReaderThatGoesAwayEndNothing) {
    ChannelRun run;
    const std::string line =
        "--null --fps 0 --step 0.1 --frames 200 --trace trace.csv --directory '" +
        run.folder.path().string() + "'";
    for (const char* outputs : {" >&- 2>&-", " | head -n 1"}) {
        EXPECT_EQ(Program(CHANNEL, line + outputs).finish(), 0);
        EXPECT_EQ(run.readTrace().size(), 200u) << outputs;
    }
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
