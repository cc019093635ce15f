// SPDX-License-Identifier: MIT
#include "flightsim/capture/Capture.h"
#include "flightsim/capture/Convert.h"
#include "flightsim/testkit/TestFiles.h"

#include <numeric>

namespace flightsim {
namespace {

constexpr int ETHERNET = 1, RAW = 101, COOKED = 113, WIRELESS = 105;

Bytes net16(std::size_t value) {
    return {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

/// Lays a capture out by hand.
struct CaptureBuilder {
    CaptureBuilder(bool swap, bool in_nano, int link) : swapped(swap), nano(in_nano) {
        add32(nano ? 0xa1b23c4d : 0xa1b2c3d4);
        const Bytes version = swapped ? Bytes{0, 2, 0, 4} : Bytes{2, 0, 4, 0};
        bytes.insert(bytes.end(), version.begin(), version.end());
        for (const std::uint32_t value : {0U, 0U, 262144U, static_cast<std::uint32_t>(link)})
            add32(value);
    }
    void add32(std::uint32_t value) {
        const Bytes number = ByteBuilder().add(swapped ? __builtin_bswap32(value) : value).bytes;
        bytes.insert(bytes.end(), number.begin(), number.end());
    }
    /// `lost`: bytes that were not captured.
    CaptureBuilder& packet(std::uint32_t second, const Bytes& content, std::uint32_t lost = 0) {
        add32(second);
        add32(nano ? 7'000 : 7);
        add32(static_cast<std::uint32_t>(content.size()));
        add32(static_cast<std::uint32_t>(content.size()) + lost);
        bytes.insert(bytes.end(), content.begin(), content.end());
        return *this;
    }
    bool swapped, nano;
    Bytes bytes;
};

/// UDP to `port` in one piece.
Bytes udp(const Bytes& content, std::size_t port = 10004) {
    return ByteBuilder()
        .add(net16(4711))
        .add(net16(port))
        .add(net16(8 + content.size()))
        .add(Bytes{0, 0})
        .add(content)
        .bytes;
}

/// IPv4, or a fragment: from `begin` up to `end` of the content.
Bytes ip(const Bytes& content, std::size_t id = 1, std::size_t begin = 0, std::size_t end = 99999) {
    end = std::min(end, content.size());
    const std::size_t more = end < content.size() ? 0x2000 : 0;
    ByteBuilder b;
    b.add(Bytes{0x45, 0}).add(net16(20 + end - begin)).add(net16(id)).add(net16(more | begin / 8));
    b.add(Bytes{64, 17, 0, 0, 10, 0, 0, 1, 10, 0, 0, 2});
    return b.add(Bytes(content.begin() + long(begin), content.begin() + long(end))).bytes;
}

Bytes behind(Bytes head, const Bytes& packet) {
    head.insert(head.end(), packet.begin(), packet.end());
    return head;
}

Bytes sawtooth(std::size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

/// Contents of the datagrams that can be read; `reader` tells what else there was.
std::vector<Bytes> contents(const TestFile& file, CaptureReader& reader, CaptureStatus& status) {
    std::vector<Bytes> result;
    CapturedDatagram datagram;
    EXPECT_TRUE(reader.open(file.path)) << reader.getMessage();
    while ((status = reader.next(datagram)) == CaptureStatus::datagram)
        result.emplace_back(datagram.bytes.begin(), datagram.bytes.end());
    return result;
}

TEST(Capture, ReadsEitherByteOrderAndUnitBehindEveryHead) {
    const Bytes content = sawtooth(1490), packet = ip(udp(content));
    Bytes tagged(12), cooked(14);
    tagged.insert(tagged.end(), {0x81, 0, 0, 5, 8, 0});
    cooked.insert(cooked.end(), {8, 0});
    for (const bool swapped : {false, true})
        for (const bool nano : {false, true})
            for (const auto& [link, head] :
                 {std::pair(ETHERNET, tagged), {RAW, Bytes{}}, {COOKED, cooked}}) {
                CaptureBuilder b(swapped, nano, link);
                b.packet(1'700'000'000, behind(head, packet));
                TestFile file("heads", b.bytes);
                CaptureReader reader;
                CapturedDatagram datagram;
                ASSERT_TRUE(CaptureReader::isCapture(file.path) && reader.open(file.path));
                ASSERT_EQ(reader.next(datagram), CaptureStatus::datagram) << link;
                EXPECT_EQ(datagram.wall_ns, 1'700'000'000'000'007'000);
                EXPECT_EQ(datagram.from.port, 4711);
                EXPECT_EQ(datagram.to.port, 10004);
                EXPECT_EQ(datagram.to.address, 0x0200000aU);
                EXPECT_TRUE(std::ranges::equal(datagram.bytes, content));
                EXPECT_EQ(reader.next(datagram), CaptureStatus::end);
            }
    TestFile file("wireless", CaptureBuilder(false, false, WIRELESS).bytes);
    CaptureReader reader;
    EXPECT_FALSE(reader.open(file.path));
    EXPECT_NE(reader.getMessage().find("IEEE802_11"), std::string::npos) << reader.getMessage();
}

TEST(Capture, PutsFragmentsTogetherAndCountsWhatItLeavesOut) {
    const Bytes first = sawtooth(1490), second(1490, 9), third(3000, 5);
    CaptureBuilder b(false, true, RAW);
    b.packet(1, ip(udp(first), 1, 0, 1480)).packet(1, ip(udp(second), 2, 1480)); // out of order
    b.packet(2, ip(udp(second), 2, 0, 1480)).packet(2, ip(udp(first), 1, 1480));
    b.packet(3, ip(udp(third), 3, 0, 1480)).packet(3, ip(udp(third), 3, 2960)); // not the middle
    b.packet(4, ip(udp(first), 5, 1480)); // its number comes again
    b.packet(1204, ip(udp(second), 5, 0, 1480)).packet(1204, ip(udp(second), 5, 1480));
    Bytes cut = ip(udp(first)), tcp = ip(udp(first)), liar = ip(udp(first)), padded = ip(udp({}));
    cut.resize(96);
    tcp[9] = 6;
    liar[24] = 0xff; // more than there is
    padded.resize(46);
    b.packet(4, cut, 1422).packet(4, tcp).packet(4, liar).packet(4, {}).packet(5, padded);
    TestFile file("fragments", b.bytes);
    CaptureReader reader;
    CaptureStatus status;
    EXPECT_EQ(contents(file, reader, status), (std::vector<Bytes>{second, first, second, {}}));
    EXPECT_EQ(reader.getStats().incomplete, 2);
    EXPECT_EQ(reader.getStats().cut, 1);
    EXPECT_EQ(reader.getStats().other, 2);
    EXPECT_EQ(reader.getStats().malformed, 1);
}

TEST(Capture, BrokenOffItReadsUpToTheLastWholePacket) {
    CaptureBuilder b(true, false, RAW);
    b.packet(1, ip(udp({1}))).packet(2, ip(udp({2})));
    const std::size_t packet = 16 + 29;
    for (std::size_t size = 24; size < b.bytes.size(); size++) {
        TestFile file("broken", Bytes(b.bytes.begin(), b.bytes.begin() + long(size)));
        CaptureReader reader;
        CaptureStatus status;
        ASSERT_EQ(contents(file, reader, status).size(), (size - 24) / packet) << size;
        const bool whole = (size - 24) % packet == 0;
        ASSERT_EQ(status, whole ? CaptureStatus::end : CaptureStatus::truncated) << size;
    }
}

TEST(Capture, LeavesOutPacketsWhoseTimeNoClockTells) {
    const Bytes packet = ip(udp({1, 2, 3, 4}));
    ByteBuilder b;
    b.add(0x0a0d0d0aU).add(28U).add(0x1a2b3c4dU).add(1U).add(std::int64_t{-1}).add(28U);
    b.add(1U).add(32U).add(static_cast<std::uint32_t>(RAW)).add(262144U);
    b.add(0x00010009U).add(0U).add(0U).add(32U); // times in seconds
    for (const std::uint64_t second :
         {5ULL, (1ULL << 32) - 1, 1ULL << 32, 1ULL << 40, 1ULL << 63}) {
        b.add(6U).add(64U).add(0U).add(static_cast<std::uint32_t>(second >> 32));
        b.add(static_cast<std::uint32_t>(second)).add(32U).add(32U).add(packet).add(64U);
    }
    TestFile file("times.pcapng", b.bytes);
    CaptureReader reader;
    CaptureStatus status;
    EXPECT_EQ(contents(file, reader, status).size(), 2u);
    EXPECT_EQ(status, CaptureStatus::end) << reader.getMessage();
    EXPECT_EQ(reader.getStats().malformed, 3);

    TestFile late("late.pcap", CaptureBuilder(false, true, RAW).packet(0xf0000000, packet).bytes);
    CapturedDatagram datagram;
    ASSERT_TRUE(reader.open(late.path));
    ASSERT_EQ(reader.next(datagram), CaptureStatus::datagram);
    EXPECT_EQ(datagram.wall_ns, 0xf0000000LL * 1'000'000'000 + 7'000);
}

TEST(Convert, ARecordingThroughACaptureIsTheSame) {
    TestFile recording("there.hrec"), capture("there.pcap"), back("back.hrec");
    const std::vector<TimedBytes> records = {{1'000'000'001, sawtooth(1490)},
                                             {1'000'000'001, {}},
                                             {2'999'999'999, sawtooth(1)},
                                             {3'000'000'000, sawtooth(65507)}};
    auto with_feedback = records;
    with_feedback.push_back({4'000'000'000, sawtooth(108)});
    writeRecording(recording.path, RecordingFormat::compact, with_feedback);
    ConvertOptions options{recording.path, capture.path};
    ConvertResult result;
    std::string message;
    ASSERT_TRUE(convert(options, result, message)) << message;
    // The sums of IPv4 and UDP, each with its own in it, are all ones; the odd byte counts too.
    const Bytes bytes = capture.read();
    const auto sum = [&](std::size_t from, std::size_t to, std::size_t begin) {
        for (std::size_t i = from; i < to; i++)
            begin += std::size_t{bytes[i]} << ((i - from) % 2 == 0 ? 8 : 0);
        return begin % 0xffff;
    };
    const std::size_t packet = 24 + 2 * (16 + 42) + 1490, udp = packet + 16 + 34;
    EXPECT_EQ(sum(packet + 16 + 14, udp, 0), 0u);
    EXPECT_EQ(sum(udp - 8, udp + 9, 17 + 9), 0u) << "of the datagram of one byte";

    options.in = capture.path;
    options.out = back.path;
    ASSERT_TRUE(convert(options, result, message)) << message;
    EXPECT_EQ(result.warning, "left out 1 to port 10005");
    auto expected = records; // which begin when the first one came
    for (TimedBytes& r : expected)
        r.time_ns -= 1'000'000'001;
    EXPECT_EQ(readRecording(back.path), expected);
    options.port = 10014;
    EXPECT_FALSE(convert(options, result, message));
    EXPECT_NE(message.find("no datagram to port 10014, but 4 to port 10004, 1 to port 10005"),
              std::string::npos)
        << message;
    EXPECT_EQ(readRecording(back.path), expected) << "untouched";
}

TEST(Convert, WhenNoRecordIsLeftItTellsWhatWasLeftOut) {
    Bytes cut = ip(udp(sawtooth(1490)));
    cut.resize(96);
    CaptureBuilder b(false, true, RAW);
    b.packet(1, ip(udp(sawtooth(1490)), 1, 1480)).packet(2, cut, 1422).packet(3, ip(udp({}, 53)));
    TestFile capture("filtered.pcap", b.bytes), recording("filtered.hrec");
    ConvertResult result;
    std::string message;
    EXPECT_FALSE(convert({capture.path, recording.path}, result, message));
    EXPECT_NE(message.find("no datagram to port 10004, but 1 to port 53"), std::string::npos);
    EXPECT_EQ(result.warning, "1 packets were captured only in part (capture with -s 0); "
                              "1 datagrams lack a fragment");
}

} // namespace
} // namespace flightsim
