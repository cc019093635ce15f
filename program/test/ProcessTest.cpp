// SPDX-License-Identifier: MIT
#include "program/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

TEST(Process, AFullPipeTakesNoOutputUntilSomebodyReads) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
    EXPECT_TRUE(program::takesOutput(ends[1]));
    char page[4096] = {};
    while (write(ends[1], page, sizeof page) > 0) {
    }
    EXPECT_FALSE(program::takesOutput(ends[1]));
    EXPECT_GT(read(ends[0], page, sizeof page), 0);
    EXPECT_TRUE(program::takesOutput(ends[1]));
    close(ends[0]);
    EXPECT_TRUE(program::takesOutput(ends[1])); // it fails, but at once
    close(ends[1]);
}

TEST(Process, ThreadsWithoutSignalsLeaveThemToTheOthers) {
    const auto isBlocked = [] {
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        return sigismember(&blocked, SIGTERM) == 1;
    };
    bool in_thread = false;
    {
        const program::WithoutSignals without;
        std::thread([&] { in_thread = isBlocked(); }).join();
    }
    EXPECT_TRUE(in_thread);
    EXPECT_FALSE(isBlocked());
}
