// SPDX-License-Identifier: MIT
#pragma once

#include "frames/FrameLog.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A recording: the datagrams that came in at a port, byte for byte, with their times of arrival.
///
/// All numbers are little-endian, nothing is padded. The file begins with 24 bytes:
///
///     offset  type    content
///          0  char[8] "HREC1490"
///          8  uint32  version: 1 whole, 2 compact
///         12  uint32  16: size of the header behind the eight characters
///         16  int64   the moment that record times count from, nanoseconds of Unix time
///
/// Records follow up to the end of the file. Each begins with
///
///     int64   time, nanoseconds since that moment; never decreases, at most a year
///     uint32  length of the datagram, 0 to 65507 bytes
///
/// In a whole recording the datagram's bytes come next. A compact one stores what differs from the
/// datagram before, which takes a tenth of the room for host data records at 50 Hz and loses
/// nothing:
///
///     uint16  number of runs, or 65535: the whole datagram's bytes come next
///     per run: uint16 offset, uint16 length (1 or more), that many bytes
///
/// Runs ascend, don't overlap and lie inside the datagram, which has the length of the one before.
/// The first datagram, one of another length than its predecessor, and one that runs would not make
/// smaller are stored whole.
///
/// A recording that was cut off (power, full disk, still being written) reads up to its last whole
/// record. Records are numbered from 0.
///
/// A frame log of the channel (`frames/FrameLog.h`) is read like a recording of the datagrams that
/// had come to its sockets: at their times of arrival, from the start of its run on.
namespace flightsim {

/// The most that a UDP datagram carries over IPv4, bytes.
inline constexpr std::size_t MAX_DATAGRAM_SIZE = 65507;
/// Times of a recording stay below this, so that arithmetic on them never overflows: one year.
inline constexpr std::int64_t MAX_RECORD_TIME_NS = 366LL * 86400 * 1'000'000'000;

enum class RecordingFormat : std::uint32_t { whole = 1, compact = 2 };

/// One record, as seen through a reader.
struct Record {
    std::int64_t number = -1;
    std::int64_t time_ns = 0;               ///< since the recording's start
    std::span<const std::uint8_t> datagram; ///< valid until the reader moves on
    std::uint32_t from_address = 0;         ///< of the sender, network byte order; 0: not known
    std::uint16_t from_port = 0;            ///< likewise; only frame logs tell
};

enum class ReadStatus {
    record,    ///< a record was read
    end,       ///< the file ends behind a whole record
    truncated, ///< the file ends within a record: what was read before is good
    malformed  ///< the file is damaged here: nothing behind can be trusted
};

/// Reads a recording of either format, or a frame log, from first to last, one record in memory at
/// a time.
class RecordingReader {
public:
    /// Opens a file and reads its header. False with `getMessage()` when that fails.
    bool open(const std::string& path);
    /// Reads the next record into `record`. Once it has answered anything but `record` it repeats
    /// that answer until `rewind`.
    ReadStatus next(Record& record);
    /// Back to before the first record.
    void rewind();

    RecordingFormat getFormat() const { return m_format; }
    /// When it is a frame log; else null.
    const frames::LogReader* getLog() const { return m_log ? &*m_log : nullptr; }
    std::int64_t getStartWall_ns() const { return m_start_wall_ns; } ///< Unix time
    std::int64_t getOffset() const { return m_offset; }              ///< bytes read so far
    /// What went wrong, with path, record number and byte offset. For `open` that failed, and for
    /// `truncated` and `malformed`.
    const std::string& getMessage() const { return m_message; }

private:
    bool openLog();
    ReadStatus nextLogged(Record& record);
    bool take(void* to, std::size_t size);
    ReadStatus readBody(std::uint32_t length);
    ReadStatus readRuns(std::uint32_t length, std::uint16_t runs);
    ReadStatus fail(ReadStatus status, const std::string& what);
    ReadStatus truncated(const char* where);

    std::string m_path;
    std::ifstream m_file;
    RecordingFormat m_format = RecordingFormat::whole;
    std::int64_t m_start_wall_ns = 0;
    std::int64_t m_offset = 0;
    std::int64_t m_record_offset = 0; ///< where the record being read begins
    std::int64_t m_number = 0;        ///< of the record being read
    std::int64_t m_last_time_ns = 0;
    std::vector<std::uint8_t> m_datagram;
    std::optional<frames::LogReader> m_log;
    frames::FrameInput m_frame;      ///< of the log
    std::size_t m_frame_records = 0; ///< read of that
    ReadStatus m_status = ReadStatus::end;
    std::string m_message;
};

/// Writes a recording. The file on disk holds whole records at any moment: bytes are handed over in
/// blocks of whole records, and a block that doesn't fit on the disk is taken back. A file into
/// which not even the first block fits is removed.
class RecordingWriter {
public:
    RecordingWriter() = default;
    RecordingWriter(const RecordingWriter&) = delete;
    RecordingWriter& operator=(const RecordingWriter&) = delete;
    ~RecordingWriter();

    /// Creates or empties a file and writes the header. False with `getMessage()` when that fails.
    bool open(const std::string& path, RecordingFormat format, std::int64_t start_wall_ns);
    /// Adds a datagram of at most `MAX_DATAGRAM_SIZE` bytes. A time before the last one's counts as
    /// that. False with `getMessage()` once the file can't be written any more; it stays readable.
    bool append(std::int64_t time_ns, std::span<const std::uint8_t> datagram);
    /// Hands what is waiting to the operating system. False like `append`.
    bool flush();
    /// Flushes and closes; the destructor does the same without a result.
    bool close();

    /// Closes and removes the file, for those to whom a part of it is of no use.
    void discard();

    std::int64_t getSize() const { return m_size; }       ///< of the file once flushed, bytes
    std::int64_t getRecords() const { return m_records; } ///< that the file holds
    const std::string& getMessage() const { return m_message; }

private:
    void put(const void* bytes, std::size_t size);
    bool putRuns(std::span<const std::uint8_t> datagram);
    bool fail(const char* what);

    std::string m_path;
    int m_file = -1;
    RecordingFormat m_format = RecordingFormat::whole;
    std::int64_t m_size = 0;
    std::int64_t m_last_time_ns = 0;
    std::int64_t m_records = 0;           ///< in the file
    std::int64_t m_waiting_records = 0;   ///< in `m_waiting`
    std::vector<std::uint8_t> m_waiting;  ///< whole records that are not in the file yet
    std::vector<std::uint8_t> m_previous; ///< datagram, for the compact format
    bool m_has_previous = false;
    std::string m_message;
};

/// A part of a recording, by time, by record number, or both. Both ends of a range: first included,
/// last not.
struct Selection {
    std::int64_t from_ns = 0;
    std::int64_t until_ns = std::numeric_limits<std::int64_t>::max();
    std::int64_t from_number = 0;
    std::int64_t until_number = std::numeric_limits<std::int64_t>::max();

    /// The part from a second of the recording on, for a duration when that isn't negative.
    static Selection ofSeconds(double from, double seconds);
    bool contains(const Record& record) const {
        return record.time_ns >= from_ns && record.time_ns < until_ns &&
               record.number >= from_number && record.number < until_number;
    }
};

/// What one pass over a whole recording tells.
struct Survey {
    std::int64_t records = 0;  ///< in the recording
    std::int64_t selected = 0; ///< in the selection
    std::int64_t first_ns = 0; ///< time of the first selected record
    std::int64_t last_ns = 0;  ///< time of the last
    std::string warning;       ///< not empty: the recording's last record is cut off

    /// Mean time from one selected record to the next; a 50 Hz host's when there is only one.
    std::int64_t meanInterval_ns() const {
        return selected > 1 && last_ns > first_ns ? (last_ns - first_ns) / (selected - 1)
                                                  : 20'000'000;
    }
};

/// Checks a recording from end to end, so that a fault shows before anything is done with it, and
/// leaves the reader rewound. False with `message` when it is malformed, when it breaks off within
/// its first record, or when the selection is empty.
bool survey(RecordingReader& reader, const std::string& path, const Selection& selection,
            Survey& result, std::string& message);

} // namespace flightsim
