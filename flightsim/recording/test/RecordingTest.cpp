// SPDX-License-Identifier: MIT
#include "flightsim/recording/RecordingTools.h"
#include "flightsim/testkit/TestFiles.h"

#include <algorithm>
#include <random>

namespace flightsim {
namespace {

/// Datagrams that try the difference coder: equal, changed at the ends, changed with every distance
/// between changes, changed everywhere, and of odd sizes, the empty and the largest one included.
std::vector<TimedBytes> oddDatagrams() {
    std::mt19937 random(7);
    const auto noise = [&](std::size_t size) {
        Bytes bytes(size);
        for (auto& b : bytes)
            b = static_cast<std::uint8_t>(random());
        return bytes;
    };
    Bytes base = noise(1490), ends = base, spaced = base;
    ends.front() ^= 1;
    ends.back() ^= 1;
    for (std::size_t i = 0, step = 1; i < spaced.size(); i += step++)
        spaced[i] ^= 0x80;
    return {{0, base},
            {0, base},
            {5, ends},
            {6, spaced},
            {7, noise(1490)},
            {8, {}},
            {9, {}},
            {10, {42}},
            {11, noise(65507)},
            {12, noise(65507)},
            {13, Bytes(65507)},
            {14, base},
            {15, noise(1491)},
            {MAX_RECORD_TIME_NS, Bytes(1491, 0xff)}};
}

TEST(Recording, BothFormatsGiveBackWhatWasWritten) {
    const auto records = oddDatagrams();
    for (const auto format : {RecordingFormat::whole, RecordingFormat::compact}) {
        TestFile file("round_trip");
        writeRecording(file.path, format, records);
        RecordingReader reader;
        ASSERT_TRUE(reader.open(file.path)) << reader.getMessage();
        EXPECT_EQ(reader.getFormat(), format);
        EXPECT_EQ(reader.getStartWall_ns(), 1'700'000'000'000'000'000);
        for (int pass = 0; pass < 2; pass++) { // the second one after a rewind in mid-file
            ReadStatus status;
            EXPECT_EQ(readAll(reader, status), records);
            EXPECT_EQ(status, ReadStatus::end);
            reader.rewind();
            Record record;
            for (int i = 0; i < 4; i++)
                reader.next(record);
            reader.rewind();
        }
    }
}

TEST(Recording, BytesInTheFileAreTheDocumentedOnes) {
    const Bytes first(12, 7);
    Bytes second = first;
    second[1] = second[11] = 9;
    const auto whole = ByteBuilder::header(1).record(100, first).record(250, second);
    auto compact = ByteBuilder::header(2);
    compact.add(std::int64_t{100}).add(std::uint32_t{12}).add(std::uint16_t{0xffff}).add(first);
    compact.add(std::int64_t{250}).add(std::uint32_t{12}).add(std::uint16_t{2});
    compact.add(std::uint16_t{1}).add(std::uint16_t{1}).add(Bytes{9});
    compact.add(std::uint16_t{11}).add(std::uint16_t{1}).add(Bytes{9});
    for (const auto& [format, expected] : {std::pair(RecordingFormat::whole, whole.bytes),
                                           std::pair(RecordingFormat::compact, compact.bytes)}) {
        TestFile written("layout");
        writeRecording(written.path, format, {{100, first}, {250, second}});
        EXPECT_EQ(written.read(), expected);
    }
}

TEST(Recording, RefusesFilesThatAreNoRecordings) {
    const Bytes good = ByteBuilder::header(1).bytes;
    const auto changed = [&](std::size_t at, std::uint8_t to) {
        Bytes bytes = good;
        bytes[at] = to;
        return bytes;
    };
    const std::pair<Bytes, const char*> cases[] = {{Bytes(good.begin(), good.end() - 1), "byte 23"},
                                                   {changed(7, '1'), "byte 0: not a recording"},
                                                   {changed(8, 3), "byte 8: version 3"},
                                                   {changed(12, 17), "byte 12: header"}};
    for (const auto& [bytes, message] : cases) {
        TestFile file("header", bytes);
        RecordingReader reader;
        EXPECT_FALSE(reader.open(file.path));
        EXPECT_NE(reader.getMessage().find(message), std::string::npos) << reader.getMessage();
    }
}

TEST(Recording, NamesTheDamagedRecordAndItsOffset) {
    const Bytes four = {1, 2, 3, 4};
    const auto v1 = [&] { return ByteBuilder::header(1).record(50, four); };
    const auto v2 = [&](std::uint32_t length, std::uint16_t runs) {
        auto b = ByteBuilder::header(2);
        b.add(std::int64_t{50}).add(std::uint32_t{4}).add(std::uint16_t{0xffff}).add(four);
        return b.add(std::int64_t{60}).add(length).add(runs);
    };
    const auto run = [](ByteBuilder b, std::uint16_t offset, std::uint16_t length) {
        return b.add(offset).add(length).add(Bytes(length));
    };
    auto orphan = ByteBuilder::header(2);
    orphan.add(std::int64_t{0}).add(std::uint32_t{0}).add(std::uint16_t{0});
    const std::pair<ByteBuilder, const char*> cases[] = {
        {v1().record(49, four), "record 1 at byte 40: time 49"},
        {ByteBuilder::header(1).record(-1, four), "record 0 at byte 24: time -1"},
        {v1().record(MAX_RECORD_TIME_NS + 1, four), "record 1 at byte 40: time"},
        {v1().record(60, Bytes(65508)), "record 1 at byte 40: length 65508"},
        {orphan, "record 0 at byte 24: differs"},
        {v2(5, 0), "record 1 at byte 42: differs"},
        {run(v2(4, 1), 2, 3), "record 1 at byte 42: run 0"},
        {run(v2(4, 1), 1, 0), "record 1 at byte 42: run 0"},
        {run(run(v2(4, 2), 1, 2), 2, 1), "record 1 at byte 42: run 1"},
    };
    for (const auto& [content, message] : cases) {
        TestFile file("damaged", content.bytes);
        RecordingReader reader;
        ASSERT_TRUE(reader.open(file.path));
        ReadStatus status;
        readAll(reader, status);
        EXPECT_EQ(status, ReadStatus::malformed) << message;
        EXPECT_NE(reader.getMessage().find(message), std::string::npos) << reader.getMessage();
        Record record;
        EXPECT_EQ(reader.next(record), ReadStatus::malformed) << "nothing behind it can be trusted";
    }
}

TEST(Recording, KeepsWholeRecordsOfAFileCutOffAnywhere) {
    const std::vector<TimedBytes> records = {
        {1, Bytes(20, 1)}, {2, Bytes(20, 2)}, {3, {}}, {4, {1, 2, 3}}, {5, {1, 9, 3}}};
    for (const auto format : {RecordingFormat::whole, RecordingFormat::compact}) {
        TestFile file("whole");
        writeRecording(file.path, format, records);
        const Bytes all = file.read();
        std::vector<std::size_t> ends; // offsets behind the header and each whole record
        RecordingReader whole;
        ASSERT_TRUE(whole.open(file.path));
        for (Record r; ends.size() <= records.size(); whole.next(r))
            ends.push_back(static_cast<std::size_t>(whole.getOffset()));
        ASSERT_EQ(ends.back(), all.size());
        for (std::size_t size = ends[0]; size <= all.size(); size++) {
            const auto n = std::ranges::upper_bound(ends, size) - ends.begin() - 1;
            TestFile cut("cut_off", Bytes(all.begin(), all.begin() + long(size)));
            RecordingReader reader;
            ASSERT_TRUE(reader.open(cut.path));
            ReadStatus status;
            ASSERT_EQ(readAll(reader, status), std::vector(records.begin(), records.begin() + n));
            ASSERT_EQ(status,
                      size == ends[std::size_t(n)] ? ReadStatus::end : ReadStatus::truncated);
        }
    }
}

/// A log of a frame for each of the lists of datagrams.
void writeLog(const std::string& path,
              const std::vector<std::vector<frames::Datagram>>& datagrams) {
    frames::LogHead head{"channel 1.0", 1'700'000'000'000'000'000, 640, 480};
    head.options = {"--script", "my file"};
    frames::LogWriter writer;
    ASSERT_TRUE(writer.open(path, head)) << writer.getMessage();
    frames::FrameInput input;
    for (const auto& frame : datagrams) {
        input.datagrams = frame;
        ASSERT_TRUE(writer.append(input) && writer.append({{"sea", 1}}));
        input.number++;
    }
    ASSERT_TRUE(writer.close());
}

TEST(Recording, AFrameLogIsReadLikeARecordingOfItsDatagrams) {
    TestFile log("log"), out("out");
    const auto datagram = [](double arrival, Bytes bytes) {
        return frames::Datagram{0, arrival, 0, 0, std::move(bytes)};
    };
    writeLog(log.path, {{},
                        {datagram(-0.5, {1}), datagram(0.25, {2})},
                        {},
                        {datagram(0.125, Bytes(1490, 3)), datagram(1e300, {4})}});
    const std::vector<TimedBytes> records = {
        {0, {1}}, {250'000'000, {2}}, {250'000'000, Bytes(1490, 3)}, {MAX_RECORD_TIME_NS, {4}}};
    RecordingReader reader;
    ASSERT_TRUE(reader.open(log.path)) << reader.getMessage();
    for (int pass = 0; pass < 2; pass++) {
        ReadStatus status;
        EXPECT_EQ(readAll(reader, status), records);
        EXPECT_EQ(status, ReadStatus::end);
        reader.rewind();
        Record record;
        reader.next(record); // of two in its frame
        reader.rewind();
    }
    CutResult result;
    std::string message, warning;
    ASSERT_TRUE(cutRecording({log.path, out.path, {}, RecordingFormat::compact}, result, message));
    EXPECT_EQ(readRecording(out.path), records);

    testing::internal::CaptureStdout();
    EXPECT_TRUE(printInfo(log.path, stdout, warning, message));
    const std::string info = testing::internal::GetCapturedStdout();
    EXPECT_NE(info.find("frame log, "), std::string::npos) << info;
    EXPECT_NE(info.find("log       of channel 1.0: 4 frames, picture 640 x 480, options --script "
                        "\"my file\"\nrecords   4 over"),
              std::string::npos)
        << info;

    const Bytes all = log.read(); // breaks off, then is damaged
    TestFile cut("cut_off", Bytes(all.begin(), all.end() - 1));
    EXPECT_TRUE(printInfo(cut.path, stdout, warning, message));
    EXPECT_NE(warning.find("cut off"), std::string::npos) << warning;
    TestFile damaged("damaged", Bytes(all.begin(), all.end()));
    std::ofstream(damaged.path, std::ios::binary | std::ios::app) << "more";
    EXPECT_FALSE(printInfo(damaged.path, stdout, warning, message));
    EXPECT_NE(message.find("damaged near byte"), std::string::npos) << message;
}

TEST(Recording, CutsByTimeAndNumberAndConvertsWithoutLoss) {
    TestFile in("in"), out("out"), back("back");
    writeRecording(in.path, RecordingFormat::whole, oddDatagrams());
    CutResult result;
    std::string message;
    ASSERT_TRUE(cutRecording({in.path, out.path, {}, RecordingFormat::compact}, result, message));
    EXPECT_EQ(result.bytes, static_cast<std::int64_t>(out.read().size()));
    ASSERT_TRUE(cutRecording({out.path, back.path, {}, RecordingFormat::whole}, result, message));
    EXPECT_EQ(back.read(), in.read());

    Selection part;
    part.from_ns = 6;
    part.until_ns = 13;
    part.from_number = 4;
    part.until_number = 100;
    ASSERT_TRUE(cutRecording({out.path, back.path, part, RecordingFormat::whole}, result, message));
    RecordingReader reader;
    ASSERT_TRUE(reader.open(back.path));
    ReadStatus status;
    const auto cut = readAll(reader, status);
    ASSERT_EQ(cut.size(), 6u); // numbers 4 to 9 at 7 to 12 ns
    EXPECT_EQ(cut.front(), (TimedBytes{0, oddDatagrams()[4].bytes}));
    EXPECT_EQ(cut.back(), (TimedBytes{5, oddDatagrams()[9].bytes}));
    EXPECT_EQ(reader.getStartWall_ns(), 1'700'000'000'000'000'007) << "keeps the moment";

    const Bytes untouched = in.read();
    EXPECT_FALSE(cutRecording({in.path, in.path, {}, RecordingFormat::compact}, result, message));
    EXPECT_EQ(in.read(), untouched);
    part.from_ns = part.until_ns;
    EXPECT_FALSE(cutRecording({in.path, out.path, part, RecordingFormat::whole}, result, message));
}

} // namespace
} // namespace flightsim
