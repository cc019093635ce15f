// SPDX-License-Identifier: MIT
#include "frames/FrameLog.h"

#include "Bytes.h"
#include "LogHead.h"
#include "frames/Digest.h"
#include "program/InputFile.h"
#include "program/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <zstd.h>

namespace frames {

namespace {

// 3 is where more costs much and gains little. The window holds more than a second of records, so
// that each finds its like, and bounds what a reader needs.
constexpr int LEVEL = 3;
constexpr int WINDOW_BITS = 18;
constexpr std::size_t RECORD_HEAD = 12;
constexpr std::size_t CHUNK = 64 * 1024; ///< bytes read, and decompressed, at a time
constexpr std::uint8_t ZSTD_MAGIC[4] = {0x28, 0xb5, 0x2f, 0xfd};

std::uint32_t check(std::span<const std::uint8_t> content) {
    Digest digest;
    digest.add(content.data(), content.size());
    return static_cast<std::uint32_t>(digest.get());
}

} // namespace

// ------------------------------------------------------------------ writing

void LogWriter::FreeCompressor::operator()(ZSTD_CCtx_s* compressor) const {
    ZSTD_freeCCtx(compressor);
}

bool LogWriter::open(const std::string& path, const LogHead& head) {
    close();
    m_path = path;
    m_message.clear();
    const std::string why = program::OutputFile::whyNot(path, program::OutputFile::Kind::growing);
    if (!why.empty()) return fail(why);
    const std::string text = writeHead(head);
    LogHead read;
    if (std::string what; !frames::readHead(text, read, what)) return fail(what);
    if (text.size() > MAX_HEAD_SIZE) return fail("its head would be longer than a head may be");
    m_compressor.reset(ZSTD_createCCtx());
    if (!m_compressor) return fail("out of memory");
    ZSTD_CCtx_setParameter(m_compressor.get(), ZSTD_c_compressionLevel, LEVEL);
    ZSTD_CCtx_setParameter(m_compressor.get(), ZSTD_c_windowLog, WINDOW_BITS);
    m_block.resize(ZSTD_CStreamOutSize());
    m_file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (m_file < 0) return fail(std::strerror(errno));
    if (compress(text, Stage::go_on)) return true;
    program::OutputFile::remove(path);
    return false;
}

bool LogWriter::append(const FrameInput& input) {
    if (!isOpen()) return false;
    m_record.assign(RECORD_HEAD, 0);
    m_record.push_back('F');
    encode(input, m_record);
    FrameInput read;
    std::string why;
    const auto content = std::span(m_record).subspan(RECORD_HEAD + 1);
    if (!decode(content, read, why))
        return fail("frame " + std::to_string(input.number) +
                    " is none that a log can hold: " + why);
    return writeRecord();
}

bool LogWriter::append(const std::vector<PartDigest>& digests) {
    if (!isOpen()) return false;
    m_record.assign(RECORD_HEAD, 0);
    m_record.push_back('H');
    ByteWriter to(m_record);
    to.putCount(digests.size());
    for (const PartDigest& part : digests) {
        to.putText(part.part);
        to.put(part.digest);
    }
    return writeRecord();
}

/// Puts the head of the record that was made in its place, and the record into the file.
bool LogWriter::writeRecord() {
    const auto content = std::span(m_record).subspan(RECORD_HEAD);
    if (content.size() > MAX_INPUT_SIZE) return fail("a frame took in more than a log can hold");
    const auto size = static_cast<std::uint32_t>(content.size());
    const std::uint32_t head[3] = {size, ~size, check(content)};
    static_assert(sizeof head == RECORD_HEAD);
    std::memcpy(m_record.data(), head, sizeof head);
    return compress({reinterpret_cast<const char*>(m_record.data()), m_record.size()},
                    Stage::go_on);
}

/// Hands all of the bytes to the system, in compressed form. False when that failed.
bool LogWriter::compress(std::string_view bytes, Stage stage) {
    ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
    const ZSTD_EndDirective directive = stage == Stage::end ? ZSTD_e_end : ZSTD_e_flush;
    for (std::size_t rest = 1; rest > 0;) {
        ZSTD_outBuffer out{m_block.data(), m_block.size(), 0};
        rest = ZSTD_compressStream2(m_compressor.get(), &out, &in, directive);
        if (ZSTD_isError(rest)) return fail(ZSTD_getErrorName(rest));
        if (!writeOut(m_block.data(), out.pos)) return fail(std::strerror(errno));
    }
    return true;
}

bool LogWriter::writeOut(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(m_file, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool LogWriter::close() {
    if (!isOpen() || !compress({}, Stage::end)) return false;
    const bool closed = ::close(std::exchange(m_file, -1)) == 0;
    m_compressor.reset();
    return closed || fail(std::strerror(errno));
}

void LogWriter::abandon() {
    if (isOpen()) ::close(std::exchange(m_file, -1));
    m_compressor.reset();
}

bool LogWriter::fail(const std::string& why) {
    m_message = "cannot write \"" + m_path + "\": " + why;
    abandon();
    return false;
}

// ------------------------------------------------------------------ reading

void LogReader::FreeDecompressor::operator()(ZSTD_DCtx_s* decompressor) const {
    ZSTD_freeDCtx(decompressor);
}

bool LogReader::isLog(const std::string& path) {
    if (!program::whyUnreadable(path).empty()) return false;
    std::uint8_t magic[4] = {};
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(magic), sizeof magic);
    return std::equal(std::begin(magic), std::end(magic), ZSTD_MAGIC);
}

bool LogReader::open(const std::string& path) {
    m_path = path;
    m_file = std::ifstream();
    m_state = LogItem::damaged;
    m_packed.clear();
    m_plain.clear();
    m_unpacked = m_taken = 0;
    m_offset = m_frames = 0;
    m_whole = m_more = m_behind_frame = false;
    std::string why = program::whyUnreadable(path);
    if (why.empty()) m_file.open(path, std::ios::binary);
    if (why.empty() && !m_file) why = std::strerror(errno);
    m_decompressor.reset(ZSTD_createDCtx());
    if (why.empty() && !m_decompressor) why = "out of memory";
    if (!why.empty()) {
        m_message = "cannot open \"" + path + "\": " + why;
        return false;
    }
    ZSTD_DCtx_setParameter(m_decompressor.get(), ZSTD_d_windowLogMax, WINDOW_BITS);
    return readHead();
}

bool LogReader::readHead() {
    constexpr std::string_view END = "\n\n", MAGIC = LOG_MAGIC;
    m_state = LogItem::frame; // unless something stops it
    if (!fill(MAGIC.size()) || !std::equal(MAGIC.begin(), MAGIC.end(), m_plain.begin())) {
        m_message = "\"" + m_path + "\" is not a frame log";
        m_state = LogItem::damaged;
        return false;
    }
    auto end = m_plain.begin();
    while ((end = std::search(m_plain.begin(), m_plain.end(), END.begin(), END.end())) ==
           m_plain.end()) {
        if (m_plain.size() > MAX_HEAD_SIZE) {
            stop(LogItem::damaged, "its head does not end");
            return false;
        }
        if (!fill(m_plain.size() + 1)) return false;
    }
    m_taken = static_cast<std::size_t>(end - m_plain.begin()) + END.size();
    std::string why;
    if (frames::readHead({m_plain.begin(), m_plain.begin() + static_cast<long>(m_taken)}, m_head,
                         why))
        return true;
    m_message = "\"" + m_path + "\" " + why;
    m_state = LogItem::damaged;
    return false;
}

LogItem LogReader::next(FrameInput& input, std::vector<PartDigest>& digests) {
    return m_state == LogItem::frame ? readRecord(input, digests) : m_state;
}

LogItem LogReader::readRecord(FrameInput& input, std::vector<PartDigest>& digests) {
    if (!fill(RECORD_HEAD)) return m_state;
    std::uint32_t head[3]; // size, inverted, check
    std::memcpy(head, m_plain.data() + m_taken, sizeof head);
    if (head[0] != ~head[1] || head[0] == 0 || head[0] > MAX_INPUT_SIZE)
        return stop(LogItem::damaged, "no record begins there");
    m_taken += RECORD_HEAD;
    if (!fill(head[0])) return m_state;
    const auto content = std::span(m_plain).subspan(m_taken, head[0]);
    m_taken += head[0];
    if (check(content) != head[2]) return stop(LogItem::damaged, "the check does not fit");
    if (content[0] == 'H') return readDigests(content.subspan(1), digests);
    std::string why;
    if (content[0] != 'F') return stop(LogItem::damaged, "a record of no known kind");
    if (!decode(content.subspan(1), input, why)) return stop(LogItem::damaged, why);
    if (m_frames > 0 && input.number != m_last_number + 1)
        return stop(LogItem::damaged, "frame " + std::to_string(input.number) + " follows");
    const double pause = input.begin - m_last_begin;
    if (m_frames > 0 && (pause < 0 || pause > MAX_PAUSE))
        return stop(LogItem::damaged, "a frame begins " + std::to_string(pause) + " s after it");
    m_last_number = input.number;
    m_last_begin = input.begin;
    m_frames++;
    m_behind_frame = true;
    return LogItem::frame;
}

LogItem LogReader::readDigests(std::span<const std::uint8_t> content,
                               std::vector<PartDigest>& digests) {
    ByteReader from(content);
    digests.clear();
    constexpr std::size_t LEAST = 12; // bytes of a part
    for (std::uint32_t n = from.takeCount(LEAST); n > 0 && from.isGood(); n--) {
        PartDigest& part = digests.emplace_back();
        part.part = from.takeText();
        part.digest = from.take<std::uint64_t>();
    }
    if (!from.isAtEnd()) from.fail("goes on behind the last part");
    if (!std::exchange(m_behind_frame, false)) from.fail("digests that are of no frame");
    return from.isGood() ? LogItem::digests : stop(LogItem::damaged, from.getMessage());
}

/// Sees to it that so many bytes can be taken. False when there are no more: at the end of a log,
/// when that is its state from now on, or with a message.
bool LogReader::fill(std::size_t size) {
    if (available() >= size) return true;
    m_plain.erase(m_plain.begin(), m_plain.begin() + static_cast<long>(m_taken));
    m_taken = 0;
    while (available() < size)
        if (!decompress()) return false;
    return true;
}

/// Adds what the next bytes of the file hold.
bool LogReader::decompress() {
    if (!m_more && m_unpacked == m_packed.size() && !readOn()) return false;
    if (m_whole) {
        stop(LogItem::damaged, "it goes on behind its end");
        return false;
    }
    const std::size_t before = m_plain.size();
    m_plain.resize(before + CHUNK);
    ZSTD_inBuffer in{m_packed.data(), m_packed.size(), m_unpacked};
    ZSTD_outBuffer out{m_plain.data() + before, CHUNK, 0};
    const std::size_t rest = ZSTD_decompressStream(m_decompressor.get(), &out, &in);
    m_plain.resize(before + out.pos);
    m_unpacked = in.pos;
    m_whole = rest == 0;
    m_more = !m_whole && out.pos == CHUNK;
    if (!ZSTD_isError(rest)) return true;
    stop(LogItem::damaged, ZSTD_getErrorName(rest));
    return false;
}

/// Reads the next bytes of the file. False, as `fill` is, when there are none.
bool LogReader::readOn() {
    m_packed.resize(CHUNK);
    m_file.read(m_packed.data(), static_cast<std::streamsize>(CHUNK));
    m_packed.resize(static_cast<std::size_t>(m_file.gcount()));
    m_offset += m_file.gcount();
    m_unpacked = 0;
    if (!m_packed.empty()) return true;
    if (!m_whole)
        stop(LogItem::cut_off, "the run was ended by force, or its disk was full");
    else if (available() > 0)
        stop(LogItem::damaged, "it ends within a record");
    else
        m_state = LogItem::end;
    return false;
}

LogItem LogReader::stop(LogItem item, const std::string& what) {
    const std::int64_t byte = m_offset - static_cast<std::int64_t>(m_packed.size() - m_unpacked);
    const std::string place = m_frames ? " behind frame " + std::to_string(m_last_number)
                                       : std::string(" before its first frame");
    m_message = "\"" + m_path + "\" is ";
    if (item == LogItem::cut_off)
        m_message += "cut off at byte " + std::to_string(byte) + "," + place + ": " + what;
    else
        m_message += "damaged near byte " + std::to_string(byte) + "," + place + ": " + what +
                     "; copy it anew from where it was made";
    return m_state = item;
}

} // namespace frames
