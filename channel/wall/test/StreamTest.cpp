// SPDX-License-Identifier: MIT
#include "wall/Stream.h"

#include <gtest/gtest.h>

using wall::Stream;
using Bytes = std::vector<std::uint8_t>;

namespace {

TEST(Stream, IsPutTogetherOfPiecesThatComeLateTwiceOrNever) {
    Stream stream;
    const Bytes whole = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    const auto add = [&](std::uint64_t run, std::uint64_t from, std::uint64_t to) {
        stream.add(run, from, to, std::span(whole).subspan(from, to - from));
    };
    add(0, 0, 9);
    EXPECT_EQ(stream.getRun(), 0u);
    add(5, 6, 8);
    add(5, 3, 5);
    EXPECT_TRUE(stream.take().empty()) << "there is a gap";
    EXPECT_EQ(stream.getSize(), 8u);
    add(5, 0, 2);
    EXPECT_EQ(stream.take(), Bytes({0, 1}));
    add(5, 1, 4); // overlaps both sides
    EXPECT_EQ(stream.take(), Bytes({2, 3, 4}));
    add(5, 0, 10);
    EXPECT_EQ(stream.take(), Bytes({5, 6, 7, 8, 9}));
    add(4, 0, 3);
    EXPECT_FALSE(stream.hasMore()) << "an earlier run is over";
    stream.restart();
    EXPECT_EQ(stream.take(), whole);
    add(6, 0, 3);
    EXPECT_EQ(stream.getRun(), 6u);
    EXPECT_EQ(stream.take(), Bytes({0, 1, 2}));
    stream.add(6, 1u << 30, 1, Bytes(std::size_t{65} << 20)); // nobody's memory
    EXPECT_TRUE(stream.take().empty());
}

} // namespace
