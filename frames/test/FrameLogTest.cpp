// SPDX-License-Identifier: MIT

// A full disk is a limit on the size of files.

#include "frames/FrameLog.h"

#include "frames/Digest.h"
#include "program/Process.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <unistd.h>
#include <zstd.h>

namespace frames {
namespace {

LogHead someHead() {
    LogHead head{"channel 1.0", 1'700'000'000'123'456'789, 640, 480, 1.1f};
    head.options = {"--eye", "two words \\n", ""};
    head.files = {{"config/a file.cfg", 0xfedcba9876543210}, {"b", 1}};
    head.libraries = {"zstd 1.5"};
    return head;
}

FrameInput frameNumber(std::uint64_t number) {
    FrameInput input{.number = number, .length = 0.01f, .begin = 0.01 * double(number)};
    std::vector<std::uint8_t> record(40, 7);
    record[5] = static_cast<std::uint8_t>(number * 37);
    input.datagrams = {{0, input.begin, 1, 2, record}};
    return input;
}

/// What a reader makes of a file.
struct Contents {
    bool opened = false;
    LogItem last = LogItem::damaged;
    std::vector<FrameInput> frames;
    std::vector<std::vector<PartDigest>> digests;
    std::string message;
};

struct FrameLog : testing::Test {
    ~FrameLog() override { std::filesystem::remove(path); }

    std::string write(std::uint64_t count) {
        LogWriter writer;
        EXPECT_TRUE(writer.open(path, someHead())) << writer.getMessage();
        for (std::uint64_t i = 0; i < count; i++) {
            EXPECT_TRUE(writer.append(frameNumber(i)));
            EXPECT_TRUE(i % 3 || writer.append({{"sea", i}, {"ships", ~i}}));
        }
        EXPECT_TRUE(writer.close()) << writer.getMessage();
        return getBytes();
    }
    std::string getBytes() const {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    void setBytes(const std::string& bytes) const {
        std::filesystem::remove(path); // file systems take care of what is written over
        std::ofstream(path, std::ios::binary) << bytes;
    }
    /// A log of that content, whatever it is.
    void setContent(const std::string& content, int window_bits = 18) const {
        std::string bytes(ZSTD_compressBound(content.size()) + 100, 0);
        ZSTD_CCtx* compressor = ZSTD_createCCtx();
        ZSTD_CCtx_setParameter(compressor, ZSTD_c_contentSizeFlag, 0);
        ZSTD_CCtx_setParameter(compressor, ZSTD_c_windowLog, window_bits);
        ZSTD_inBuffer in{content.data(), content.size(), 0};
        ZSTD_outBuffer out{bytes.data(), bytes.size(), 0};
        EXPECT_EQ(ZSTD_compressStream2(compressor, &out, &in, ZSTD_e_end), 0u);
        ZSTD_freeCCtx(compressor);
        setBytes(bytes.substr(0, out.pos));
    }
    Contents read() const {
        Contents contents;
        LogReader reader;
        contents.opened = reader.open(path);
        FrameInput input;
        std::vector<PartDigest> digests;
        while (contents.opened && (contents.last = reader.next(input, digests)) < LogItem::end)
            if (contents.last == LogItem::frame)
                contents.frames.push_back(input);
            else
                contents.digests.push_back(digests);
        contents.message = reader.getMessage();
        EXPECT_TRUE(!contents.opened || reader.getHead() == someHead());
        return contents;
    }

    const std::string path = testing::TempDir() + "frames_" + std::to_string(getpid());
};

TEST_F(FrameLog, GivesBackHeadFramesAndDigestsAndSaysThatItIsWhole) {
    LogWriter writer;
    ASSERT_TRUE(writer.open(path, someHead()));
    std::vector<FrameInput> inputs;
    for (std::uint64_t i = 100; i < 140; i++) {
        inputs.push_back(frameNumber(i));
        inputs.back().datagrams[0].bytes.resize(i % 9 ? 100 : 60000, 3);
        inputs.back().clipboard = std::string(i % 13 == 9 ? 1 << 20 : 0, 'x'); // compresses well
        ASSERT_TRUE(writer.append(inputs.back()));
        EXPECT_TRUE(i % 9 || read().frames == inputs) << "each is in the file at once";
    }
    ASSERT_TRUE(writer.append({{"sea", 5}, {"", 0}}));
    ASSERT_TRUE(writer.close());
    const Contents contents = read();
    EXPECT_EQ(contents.last, LogItem::end);
    EXPECT_EQ(contents.frames, inputs);
    EXPECT_EQ(contents.digests, (std::vector<std::vector<PartDigest>>{{{"sea", 5}, {"", 0}}}));
    EXPECT_TRUE(LogReader::isLog(path));
    setBytes("HREC1490");
    EXPECT_FALSE(LogReader::isLog(path) || read().opened);
}

TEST_F(FrameLog, CutAnywhereItReadsUpToItsLastWholeFrame) {
    const std::string whole = write(20);
    std::size_t most = 0;
    for (std::size_t size = 0; size < whole.size(); size++) {
        setBytes(whole.substr(0, size));
        const Contents contents = read();
        ASSERT_FALSE(contents.message.empty());
        if (!contents.opened) continue;
        ASSERT_EQ(contents.last, LogItem::cut_off) << size << contents.message;
        ASSERT_GE(contents.frames.size(), most);
        most = contents.frames.size();
        for (std::size_t i = 0; i < most; i++)
            ASSERT_EQ(contents.frames[i], frameNumber(i));
    }
    EXPECT_EQ(most, 20u);
    EXPECT_NE(read().message.find(", behind frame 19: "), std::string::npos) << read().message;
}

TEST_F(FrameLog, DamageIsToldAndNeverTakenForFrames) {
    const std::string whole = write(12);
    for (std::size_t at = 0; at < whole.size(); at++)
        for (const int change : {1, 0x10, 0xff}) {
            std::string bytes = whole;
            bytes[at] = static_cast<char>(bytes[at] ^ change);
            setBytes(bytes);
            LogReader reader; // whose head may be another one now
            FrameInput input;
            std::vector<PartDigest> digests;
            std::uint64_t frames = 0;
            LogItem item = LogItem::damaged;
            const bool opened = reader.open(path);
            while (opened && (item = reader.next(input, digests)) < LogItem::end)
                ASSERT_TRUE(item != LogItem::frame || input == frameNumber(frames++)) << at;
            ASSERT_TRUE(item != LogItem::end || frames == 12) << at;
            ASSERT_TRUE(item == LogItem::end || !reader.getMessage().empty());
        }
    setBytes(whole + whole);
    EXPECT_EQ(read().last, LogItem::damaged);
}

TEST_F(FrameLog, ContentThatNoWriterMakesIsRefused) {
    const std::string head = "FRAMELOG 1\nprogram: p\n";
    const auto refuses = [this](const std::string& content, const char* why) {
        setContent(content);
        LogReader reader;
        FrameInput input;
        std::vector<PartDigest> digests;
        EXPECT_TRUE(!reader.open(path) || reader.next(input, digests) == LogItem::damaged) << why;
        EXPECT_NE(reader.getMessage().find(why), std::string::npos) << reader.getMessage();
    };
    const auto record = [](const std::string& content, std::uint32_t size) {
        Digest digest;
        digest.add(content.data(), content.size());
        const std::uint32_t words[] = {size, ~size, static_cast<std::uint32_t>(digest.get())};
        return std::string(reinterpret_cast<const char*>(words), sizeof words) + content;
    };
    refuses("FRAMELOG 2\n\n", "version");
    refuses("FRAMELOG 2\x1b[2J\n\n", "control");
    for (const char* text : {"a\x1b[2J", "a\\nb", "a\x7f", "a\xc2\x9b"})
        refuses(head + "option: " + text + "\n\n", "line 3 of the head holds a control");
    for (const char* line : {"size: 640", "size: 640 100000", "size: 0 9", "density: 1e9",
                             "density: 0", "density: nan"})
        refuses(head + line + "\n\n", "line 3");
    refuses(head + std::string(2 << 20, 'x'), "does not end");
    refuses(head + '\n' + record("", 0), "no record");
    refuses(head + '\n' + record("F", MAX_INPUT_SIZE + 1), "no record");
    refuses(head + '\n' + record("?", 1), "kind");
    refuses(head + '\n' + record("Fx", 2), "ends here");
    refuses(head + '\n' + record(std::string("H\xff\0\0\0", 5), 5), "counted");
    refuses(head + '\n' + record("F", 9), "within a record");
    setContent(head + std::string(1 << 20, '\n'), 27); // needs 128 MB to read
    EXPECT_FALSE(read().opened);

    LogWriter writer;
    ASSERT_TRUE(writer.open(path, someHead()));
    ASSERT_TRUE(writer.append(frameNumber(7)) && writer.append(frameNumber(9)) && writer.close());
    EXPECT_EQ(read().last, LogItem::damaged) << "one is missing";
    for (const double begin : {0.06, 1e5}) { // earlier, and more than a day later
        ASSERT_TRUE(writer.open(path, someHead()) && writer.append(frameNumber(7)));
        ASSERT_TRUE(writer.append({.number = 8, .begin = begin}) && writer.close());
        EXPECT_EQ(read().last, LogItem::damaged) << begin;
    }
    for (const int frames : {0, 1}) { // digests of no frame, and twice of one
        ASSERT_TRUE(writer.open(path, someHead()) && (!frames || writer.append(frameNumber(0))));
        ASSERT_TRUE(writer.append({{"sea", 1}}) && writer.append({{"sea", 1}}) && writer.close());
        EXPECT_NE(read().message.find("are of no frame"), std::string::npos) << frames;
    }
    ASSERT_TRUE(writer.open(path, someHead()) && writer.append(frameNumber(0)));
    EXPECT_FALSE(writer.append({.number = 1, .length = -1}));
    EXPECT_NE(writer.getMessage().find("frame 1 is none that a log can hold: "), std::string::npos);
    EXPECT_EQ(read().frames.size(), 1u);
}

TEST_F(FrameLog, AFullDiskIsToldOnceAndWhatFittedCanBeRead) {
    program::letWritesFail();
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    LogWriter writer;
    ASSERT_TRUE(writer.open(path, someHead()));
    std::size_t fitted = 0;
    while (fitted < 1000 && writer.append(frameNumber(fitted)))
        fitted++;
    EXPECT_FALSE(writer.isOpen() || writer.append(frameNumber(fitted)) || writer.close());
    EXPECT_EQ(writer.getMessage(), "cannot write \"" + path + "\": " + std::strerror(EFBIG));
    setrlimit(RLIMIT_FSIZE, &before);
    const Contents contents = read();
    EXPECT_EQ(contents.last, LogItem::cut_off);
    EXPECT_EQ(contents.frames.size(), fitted);
    EXPECT_GT(fitted, 3u);
    EXPECT_FALSE(writer.open(path + "/no/folder", {}));
    std::filesystem::remove(path);
    const rlimit smaller{10, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &smaller);
    EXPECT_FALSE(writer.open(path, someHead()));
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace frames
