// SPDX-License-Identifier: MIT
#include "frames/FrameInput.h"

#include "frames/Digest.h"

#include <gtest/gtest.h>
#include <set>

namespace frames {
namespace {

using Kind = OperatorEvent::Kind;
using Bytes = std::vector<std::uint8_t>;

/// With something in every field of every part.
FrameInput fullInput() {
    FrameInput input{.number = 1ull << 40, .length = 1 / 60.0f, .begin = 1 / 3.0};
    input.events = {{.kind = Kind::key, .code = -7, .down = true, .repeat = true},
                    {.kind = Kind::modifiers, .shift = true, .ctrl = true, .alt = true},
                    {.kind = Kind::text, .text = "海"},
                    {.kind = Kind::button, .code = 2, .down = true, .x = 1.5f, .y = -2},
                    {.kind = Kind::move, .x = 3, .y = 4},
                    {.kind = Kind::wheel, .notches = -0.5f},
                    {.kind = Kind::focus_lost},
                    {.kind = Kind::left},
                    {.kind = Kind::close},
                    {.kind = Kind::resize, .width = 640, .height = 480, .density = 1.25f}};
    input.datagrams = {{1, -0.25, 0x0100007f, 65535, Bytes(300, 9)}, {0, 2, 1, 1, {}}};
    input.answers = {{1, SocketAnswer::Step::bind, 98, 10004}};
    input.news = {{1, 1ull << 33, 5, 6, 7, 8}};
    input.clipboard = "";
    return input;
}

TEST(FrameInput, BytesGiveTheSameValueBackAndAnEmptyFrameIsSmall) {
    std::string message;
    for (const FrameInput& input : {fullInput(), FrameInput{.number = 3, .length = 0.02f}}) {
        Bytes bytes;
        encode(input, bytes);
        FrameInput read = fullInput(); // whatever was in it goes
        EXPECT_TRUE(decode(bytes, read, message)) << message;
        EXPECT_EQ(read, input);
        EXPECT_EQ(bytes.size() == 21, input.events.empty());
    }
}

TEST(FrameInput, BytesThatAreCutOrChangedAreRefusedOrGiveAnotherValue) {
    Bytes bytes;
    encode(fullInput(), bytes);
    FrameInput read;
    std::string message;
    for (std::size_t size = 0; size < bytes.size(); size++)
        EXPECT_FALSE(decode(std::span(bytes).first(size), read, message)) << size;
    EXPECT_NE(message.find("byte "), std::string::npos);
    for (std::size_t at = 0; at < bytes.size(); at++)
        for (const int change : {1, 0x80, 0xff}) {
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ change);
            EXPECT_FALSE(decode(bytes, read, message) && read == fullInput()) << at;
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ change);
        }
    bytes.push_back(0);
    EXPECT_FALSE(decode(bytes, read, message));
}

// A few bytes that ask for a lot get nothing.
TEST(FrameInput, NumbersThatNoFrameHasAreRefused) {
    FrameInput read;
    std::string message;
    const auto refused = [&](FrameInput input) {
        Bytes bytes;
        encode(input, bytes);
        return !decode(bytes, read, message);
    };
    EXPECT_TRUE(refused({.length = -1}));
    for (const double begin : {1e308 * 10, 1e300, 1e9, -0.1})
        EXPECT_TRUE(refused({.begin = begin})) << begin;
    EXPECT_TRUE(refused({.datagrams = {{.bytes = Bytes(MAX_DATAGRAM_SIZE + 1)}}}));
    EXPECT_TRUE(refused({.events = {MAX_LIST_SIZE + 1, {.kind = Kind::left}}}));
    const auto resize = [](int width, int height, float density) {
        return OperatorEvent{
            .kind = Kind::resize, .width = width, .height = height, .density = density};
    };
    EXPECT_FALSE(refused({.events = {resize(1, MAX_SIDE, 1)}}));
    for (const OperatorEvent& event : {resize(0, 1, 1), resize(1, MAX_SIDE + 1, 1),
                                       resize(1 << 30, 1, 1), resize(1, 1, 0), resize(1, 1, 1e9f)})
        EXPECT_TRUE(refused({.events = {event}})) << event.width << ' ' << event.density;
    Bytes bytes;
    encode({.events = {{.kind = Kind::text, .text = "ab"}}}, bytes);
    for (const std::size_t count : {21, 26}) { // of the list, and of its text
        Bytes greedy = bytes;
        std::fill_n(greedy.begin() + static_cast<long>(count), 4, std::uint8_t{0xff});
        EXPECT_FALSE(decode(greedy, read, message));
        EXPECT_EQ(message,
                  "byte " + std::to_string(count + 4) + ": ends within what is counted here");
    }
}

TEST(Digest, EveryBitOrderAndLengthCounts) {
    std::set<std::uint64_t> seen;
    for (std::size_t size = 0; size <= 20; size++) {
        Bytes bytes(size, 0);
        for (std::size_t bit = 0; bit <= 8 * size; bit++) { // with none or one set
            if (bit > 0) bytes[(bit - 1) / 8] = static_cast<std::uint8_t>(1 << (bit - 1) % 8);
            Digest digest;
            digest.add(bytes.data(), size);
            EXPECT_TRUE(seen.insert(digest.get()).second) << size << ' ' << bit;
            if (bit > 0) bytes[(bit - 1) / 8] = 0;
        }
    }
    Digest forth, back;
    forth.add(1), forth.add(2.0);
    back.add(2.0), back.add(1);
    EXPECT_NE(forth.get(), back.get());
}

} // namespace
} // namespace frames
