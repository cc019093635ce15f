// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/recording/Recording.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace flightsim {

using Bytes = std::vector<std::uint8_t>;

struct TimedBytes {
    std::int64_t time_ns;
    Bytes bytes;
    bool operator==(const TimedBytes&) const = default;
};

/// A path of its own for each test; removes the file at the end.
class TestFile {
public:
    explicit TestFile(const std::string& name)
        : path(testing::TempDir() + "flightsim_" + std::to_string(getpid()) + "_" + name) {}
    TestFile(const std::string& name, const Bytes& content) : TestFile(name) {
        std::ofstream file(path, std::ios::binary);
        std::ranges::copy(content, std::ostreambuf_iterator<char>(file));
    }
    ~TestFile() { unlink(path.c_str()); }

    Bytes read() const {
        std::ifstream file(path, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }

    const std::string path;
};

/// Builds the bytes of a file by hand, independently of the writer.
class ByteBuilder {
public:
    template <class T>
    ByteBuilder& add(T value) {
        const auto* from = reinterpret_cast<const std::uint8_t*>(&value);
        bytes.insert(bytes.end(), from, from + sizeof value);
        return *this;
    }
    ByteBuilder& add(const Bytes& more) {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return *this;
    }
    static ByteBuilder header(std::uint32_t version) {
        ByteBuilder b;
        b.add(Bytes{'H', 'R', 'E', 'C', '1', '4', '9', '0'});
        return b.add(version).add(std::uint32_t{16}).add(std::int64_t{1'700'000'000'000'000'000});
    }
    /// A whole record of version 1.
    ByteBuilder& record(std::int64_t time_ns, const Bytes& datagram) {
        return add(time_ns).add(static_cast<std::uint32_t>(datagram.size())).add(datagram);
    }

    Bytes bytes;
};

inline void writeRecording(const std::string& path, RecordingFormat format,
                           const std::vector<TimedBytes>& records) {
    RecordingWriter writer;
    ASSERT_TRUE(writer.open(path, format, 1'700'000'000'000'000'000)) << writer.getMessage();
    for (const TimedBytes& r : records)
        ASSERT_TRUE(writer.append(r.time_ns, r.bytes));
    ASSERT_TRUE(writer.close()) << writer.getMessage();
}

/// Reads on to the end of what can be read; `status` tells what ended it.
inline std::vector<TimedBytes> readAll(RecordingReader& reader, ReadStatus& status) {
    std::vector<TimedBytes> records;
    Record record;
    while ((status = reader.next(record)) == ReadStatus::record) {
        EXPECT_EQ(record.number, static_cast<std::int64_t>(records.size()));
        records.push_back({record.time_ns, Bytes(record.datagram.begin(), record.datagram.end())});
    }
    return records;
}

/// The records of a file that is whole.
inline std::vector<TimedBytes> readRecording(const std::string& path) {
    RecordingReader reader;
    EXPECT_TRUE(reader.open(path)) << reader.getMessage();
    ReadStatus status;
    const auto records = readAll(reader, status);
    EXPECT_EQ(status, ReadStatus::end) << reader.getMessage();
    return records;
}

} // namespace flightsim
