// SPDX-License-Identifier: MIT
#include "ReplayedInputs.h"

#include "EventQueue.h"
#include "Window.h"
#include "ig/net/SocketUDP.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace {

// The system's answer is in the input of the frame after, behind digests too.
TEST(ReplayedInputs, ASocketOfALaterFrameIsRefusedAsItWas) {
    const TempFolder folder;
    const LogCapture log;
    const std::string path = (folder.path() / "a.flog").string();
    frames::LogWriter writer;
    ASSERT_TRUE(writer.open(path, {.width = 64, .height = 64}));
    ASSERT_TRUE(writer.append(frames::FrameInput{}) && writer.append({{"sea", 1}}));
    using Step = frames::SocketAnswer::Step;
    ASSERT_TRUE(writer.append({.number = 1, .answers = {{0, Step::bind, EADDRINUSE}}}));
    ASSERT_TRUE(writer.close());

    EventQueue queue;
    Window window(queue);
    ReplayedInputs inputs(path, false, window, queue, [] { return false; });
    ASSERT_TRUE(inputs.open());
    frames::FrameInput input;
    ASSERT_TRUE(inputs.next({}, input));
    {
        ig::SocketUDP socket;
        EXPECT_TRUE(socket.create());
        EXPECT_FALSE(socket.bind(4711));
    }
    inputs.compare([] { return ReplayedInputs::Digests{{"sea", 1}}; });
    EXPECT_TRUE(inputs.next({}, input));
    EXPECT_FALSE(inputs.next({}, input));
    EXPECT_EQ(inputs.getSummary(), "replay: 2 frames, 1 compared, all equal\n");
    ig::SocketUDP::setOnline();
}

TEST(ReplayedInputs, ALongPauseOfTheFlightEndsWhenTheReplayIsStopped) {
    const TempFolder folder;
    const std::string path = (folder.path() / "a.flog").string();
    frames::LogWriter writer;
    ASSERT_TRUE(writer.open(path, {.width = 64, .height = 64}));
    ASSERT_TRUE(writer.append(frames::FrameInput{}));
    ASSERT_TRUE(writer.append({.number = 1, .begin = 80000}) && writer.close());
    EventQueue queue;
    Window window(queue);
    int asked = 0;
    ReplayedInputs inputs(path, true, window, queue, [&asked] { return asked++ > 2; });
    ASSERT_TRUE(inputs.open());
    frames::FrameInput input;
    EXPECT_TRUE(inputs.next({}, input));
    EXPECT_FALSE(inputs.next({}, input));
    ig::SocketUDP::setOnline();
}

} // namespace
