// SPDX-License-Identifier: MIT
#pragma once

#include "frames/FrameInput.h"

#include <cstdint>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct ZSTD_CCtx_s;
struct ZSTD_DCtx_s;

/// A frame log: what the frames of a run took in, so that the run can be played again, and digests
/// of the scene, to tell whether it went the same way.
///
/// The file is one zstd frame; `zstd -dc FILE | head -30` shows its head. Inside, it begins with
/// lines of text, in this order, up to an empty one; in values a backslash stands as \\, and
/// control characters there are none:
///
///     FRAMELOG 1                  the version
///     program: visual_channel 1.0
///     start: 1700000000000000000  of the run, nanoseconds of Unix time
///     size: 1280 720              of the picture, pixels
///     density: 1.25               pixels per 1/96 inch
///     option: --script            a word of the command line; any number of these, in their order
///     file: 0123456789abcdef data/sea.png
///                                 digest of a file that the run read, its path; any number. Of a
///                                 large file its size and its ends are digested; a path that ends
///                                 with / stands for all that lies below it
///     library: Bullet 3.24        that the results may depend on; any number
///
/// Records follow up to the end. All numbers are little-endian, nothing is padded:
///
///     uint32  size of the content, 1 byte to MAX_INPUT_SIZE
///     uint32  the same with all bits inverted
///     uint32  the lower half of the content's digest (`Digest.h`)
///     uint8   content: 'F' and a frame's input (`encode`), whose number is one more than the
///             last's, and which begins not before it and at most MAX_PAUSE after, or 'H' and
///             digests, once behind a frame: uint32 count, for each a text (uint32 size, bytes) and
///             uint64
///
/// Each record is handed to the system at once, in whole blocks of zstd, so that a process that is
/// killed loses none. A file that was cut off reads up to its last whole record. Writer and reader
/// hold one frame in memory and some 2 MB.
namespace frames {

/// The longest that the beginnings of two frames may be apart, s: a day, in a debugger.
inline constexpr double MAX_PAUSE = 86400;

/// A file that a run read.
struct LoggedFile {
    std::string path = {};
    std::uint64_t digest = 0;

    bool operator==(const LoggedFile&) const = default;
};

/// What a run was started with.
struct LogHead {
    std::string program = {};       ///< name and version
    std::int64_t start_wall_ns = 0; ///< of the run, Unix time
    int width = 0;                  ///< of the picture, pixels
    int height = 0;
    float density = 1;                       ///< pixels per 1/96 inch
    std::vector<std::string> options = {};   ///< the words of the command line
    std::vector<LoggedFile> files = {};      ///< configuration and data
    std::vector<std::string> libraries = {}; ///< name and version

    bool operator==(const LogHead&) const = default;
};

/// The digest of one part of the scene.
struct PartDigest {
    std::string part = {};
    std::uint64_t digest = 0;

    bool operator==(const PartDigest&) const = default;
};

/// Makes a log's bytes, for a file or for whoever else takes them. What it makes is appended.
class LogEncoder {
public:
    using Bytes = std::vector<std::uint8_t>;

    /// Begins a log with its head. False with `getMessage()` when that can't be; so are the
    /// following, behind which the log ends where it was.
    bool begin(const LogHead& head, Bytes& to);
    /// Adds a frame. False also for one that a reader would refuse.
    bool append(const FrameInput& input, Bytes& to);
    /// Adds digests of the scene, as the frame added last leaves it; once a frame.
    bool append(const std::vector<PartDigest>& digests, Bytes& to);
    /// Ends the log.
    bool end(Bytes& to);

    const std::string& getMessage() const { return m_message; }

private:
    enum class Stage { go_on, end };

    bool addRecord(Bytes& to);
    bool compress(std::string_view bytes, Stage stage, Bytes& to);
    bool fail(const std::string& why);

    struct FreeCompressor {
        void operator()(ZSTD_CCtx_s* compressor) const;
    };
    std::unique_ptr<ZSTD_CCtx_s, FreeCompressor> m_compressor;
    Bytes m_record; ///< the one being made
    std::string m_message;
};

/// Writes a log. What the disk refuses is told once, by the operation that meets it: the file then
/// keeps the whole records that fitted, nothing is open any more, and the run can go on. A file
/// into which not even the head fits is removed.
class LogWriter {
public:
    LogWriter() = default;
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;
    ~LogWriter() { close(); }

    /// Creates or empties the file and writes the head. False with `getMessage()` when it can't; so
    /// are the following.
    bool open(const std::string& path, const LogHead& head);
    bool isOpen() const { return m_file >= 0; }
    /// Adds a frame, before it runs, so that one that ends the process is in the log. False also
    /// for one that a reader would refuse.
    bool append(const FrameInput& input);
    /// Adds digests of the scene, as the frame added last leaves it; once a frame.
    bool append(const std::vector<PartDigest>& digests);
    /// Ends the log.
    bool close();
    /// Leaves it without its end, as a process that is killed does.
    void abandon();

    const std::string& getMessage() const { return m_message; }

private:
    bool writeOut(bool made);
    bool fail(const std::string& why);

    std::string m_path;
    int m_file = -1;
    LogEncoder m_encoder;
    LogEncoder::Bytes m_bytes; ///< on their way to the file
    std::string m_message;
};

/// What a reader met.
enum class LogItem {
    frame,   ///< a frame's input
    more,    ///< nothing before there are more bytes
    digests, ///< those of the scene as the frame before left it
    end,     ///< of a whole log
    cut_off, ///< the file ends before its end: what was read before is good
    damaged  ///< nothing from here on can be trusted
};

/// Takes a log's bytes, piece by piece, and reads what they hold.
class LogDecoder {
public:
    /// A log of that name, in messages, begins.
    explicit LogDecoder(std::string name);

    /// Its next bytes. What they hold is to be read before the next ones are added.
    void add(std::span<const std::uint8_t> bytes);
    /// There are no more bytes.
    void end();

    /// Reads the head, which comes before `next`: `frame` when it has been read.
    LogItem readHead();
    const LogHead& getHead() const { return m_head; }
    /// Reads the next record into that of the two which it is for. Once it has answered `end`,
    /// `cut_off` or `damaged` it repeats that.
    LogItem next(FrameInput& input, std::vector<PartDigest>& digests);
    /// All has been read, up to the log's end.
    bool isWhole() const { return m_whole && available() == 0; }
    std::int64_t getFrames() const { return m_frames; } ///< read so far
    std::int64_t getOffset() const { return m_offset; } ///< bytes added so far
    /// What is wrong, with name, place and remedy. For `cut_off` and `damaged`.
    const std::string& getMessage() const { return m_message; }

private:
    LogItem readRecord(FrameInput& input, std::vector<PartDigest>& digests);
    LogItem readDigests(std::span<const std::uint8_t> content, std::vector<PartDigest>& digests);
    bool fill(std::size_t size);
    bool decompress();
    LogItem stop(LogItem item, const std::string& what);
    LogItem stopped() const { return m_state == LogItem::frame ? LogItem::more : m_state; }
    std::size_t available() const { return m_plain.size() - m_taken; }

    struct FreeDecompressor {
        void operator()(ZSTD_DCtx_s* decompressor) const;
    };
    std::string m_name;
    std::unique_ptr<ZSTD_DCtx_s, FreeDecompressor> m_decompressor;
    std::vector<std::uint8_t> m_packed; ///< added
    std::size_t m_unpacked = 0;         ///< bytes of that
    std::vector<std::uint8_t> m_plain;
    std::size_t m_taken = 0;     ///< bytes of that
    bool m_more = false;         ///< the decompressor may hold more of what it was given
    bool m_whole = false;        ///< the end was met
    bool m_begun = false;        ///< it is a log
    bool m_behind_frame = false; ///< where digests may stand
    std::int64_t m_offset = 0;
    std::int64_t m_frames = 0;
    std::uint64_t m_last_number = 0;
    double m_last_begin = 0;
    LogHead m_head;
    LogItem m_state = LogItem::frame; ///< `frame` while there may be more
    std::string m_message;
};

/// Reads a log's file from first to last.
class LogReader {
public:
    /// Whether a file is a log, or at least compressed as one.
    static bool isLog(const std::string& path);

    /// Opens a file and reads its head. False with `getMessage()` when that fails.
    bool open(const std::string& path);
    const LogHead& getHead() const { return m_decoder.getHead(); }
    /// As `LogDecoder::next`; never `more`.
    LogItem next(FrameInput& input, std::vector<PartDigest>& digests);
    std::int64_t getFrames() const { return m_decoder.getFrames(); } ///< read so far
    std::int64_t getOffset() const { return m_decoder.getOffset(); } ///< bytes of the file, too
    /// What is wrong, with path, place and remedy. For `open` that failed, `cut_off` and `damaged`.
    const std::string& getMessage() const { return m_message; }

private:
    void readOn();

    std::ifstream m_file;
    LogDecoder m_decoder{""};
    std::vector<std::uint8_t> m_chunk; ///< read from the file
    std::string m_message;
};

} // namespace frames
