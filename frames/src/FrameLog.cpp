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
#include <new>
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

void LogEncoder::FreeCompressor::operator()(ZSTD_CCtx_s* compressor) const {
    ZSTD_freeCCtx(compressor);
}

bool LogEncoder::begin(const LogHead& head, Bytes& to) {
    m_message.clear();
    const std::string text = writeHead(head);
    LogHead read;
    if (std::string what; !frames::readHead(text, read, what)) return fail(what);
    if (text.size() > MAX_HEAD_SIZE) return fail("its head would be longer than a head may be");
    m_compressor.reset(ZSTD_createCCtx());
    if (!m_compressor) return fail("out of memory");
    ZSTD_CCtx_setParameter(m_compressor.get(), ZSTD_c_compressionLevel, LEVEL);
    ZSTD_CCtx_setParameter(m_compressor.get(), ZSTD_c_windowLog, WINDOW_BITS);
    return compress(text, Stage::go_on, to);
}

bool LogEncoder::append(const FrameInput& input, Bytes& to) {
    if (!m_compressor) return false;
    m_record.assign(RECORD_HEAD, 0);
    m_record.push_back('F');
    encode(input, m_record);
    FrameInput read;
    std::string why;
    const auto content = std::span(m_record).subspan(RECORD_HEAD + 1);
    if (!decode(content, read, why))
        return fail("frame " + std::to_string(input.number) +
                    " is none that a log can hold: " + why);
    return addRecord(to);
}

bool LogEncoder::append(const std::vector<PartDigest>& digests, Bytes& to) {
    if (!m_compressor) return false;
    m_record.assign(RECORD_HEAD, 0);
    m_record.push_back('H');
    ByteWriter bytes(m_record);
    bytes.putCount(digests.size());
    for (const PartDigest& part : digests) {
        bytes.putText(part.part);
        bytes.put(part.digest);
    }
    return addRecord(to);
}

bool LogEncoder::end(Bytes& to) {
    const bool ended = m_compressor && compress({}, Stage::end, to);
    m_compressor.reset();
    return ended;
}

/// Puts the head of the record that was made in its place, and the record behind the others.
bool LogEncoder::addRecord(Bytes& to) {
    const auto content = std::span(m_record).subspan(RECORD_HEAD);
    if (content.size() > MAX_INPUT_SIZE) return fail("a frame took in more than a log can hold");
    const auto size = static_cast<std::uint32_t>(content.size());
    const std::uint32_t head[3] = {size, ~size, check(content)};
    static_assert(sizeof head == RECORD_HEAD);
    std::memcpy(m_record.data(), head, sizeof head);
    return compress({reinterpret_cast<const char*>(m_record.data()), m_record.size()}, Stage::go_on,
                    to);
}

bool LogEncoder::compress(std::string_view bytes, Stage stage, Bytes& to) {
    ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
    const ZSTD_EndDirective directive = stage == Stage::end ? ZSTD_e_end : ZSTD_e_flush;
    for (std::size_t rest = 1; rest > 0;) {
        const std::size_t before = to.size();
        to.resize(before + ZSTD_compressBound(in.size - in.pos));
        ZSTD_outBuffer out{to.data() + before, to.size() - before, 0};
        rest = ZSTD_compressStream2(m_compressor.get(), &out, &in, directive);
        to.resize(before + out.pos);
        if (ZSTD_isError(rest)) return fail(ZSTD_getErrorName(rest));
    }
    return true;
}

bool LogEncoder::fail(const std::string& why) {
    m_message = why;
    m_compressor.reset();
    return false;
}

bool LogWriter::open(const std::string& path, const LogHead& head) {
    close();
    m_path = path;
    m_message.clear();
    const std::string why = program::OutputFile::whyNot(path, program::OutputFile::Kind::growing);
    if (!why.empty()) return fail(why);
    m_bytes.clear();
    if (!m_encoder.begin(head, m_bytes)) return fail(m_encoder.getMessage());
    m_file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (m_file < 0) return fail(std::strerror(errno));
    if (writeOut(true)) return true;
    program::OutputFile::remove(path);
    return false;
}

bool LogWriter::append(const FrameInput& input) {
    return isOpen() && writeOut(m_encoder.append(input, m_bytes));
}

bool LogWriter::append(const std::vector<PartDigest>& digests) {
    return isOpen() && writeOut(m_encoder.append(digests, m_bytes));
}

/// Hands the bytes that were made, if they were, to the system, all of them.
bool LogWriter::writeOut(bool made) {
    if (!made) return fail(m_encoder.getMessage());
    for (std::size_t done = 0; done < m_bytes.size();) {
        const ssize_t written = ::write(m_file, m_bytes.data() + done, m_bytes.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return fail(std::strerror(errno));
        done += static_cast<std::size_t>(written);
    }
    m_bytes.clear();
    return true;
}

bool LogWriter::close() {
    if (!isOpen() || !writeOut(m_encoder.end(m_bytes))) return false;
    const bool closed = ::close(std::exchange(m_file, -1)) == 0;
    return closed || fail(std::strerror(errno));
}

void LogWriter::abandon() {
    if (isOpen()) ::close(std::exchange(m_file, -1));
}

bool LogWriter::fail(const std::string& why) {
    m_message = "cannot write \"" + m_path + "\": " + why;
    abandon();
    return false;
}

// ------------------------------------------------------------------ reading

void LogDecoder::FreeDecompressor::operator()(ZSTD_DCtx_s* decompressor) const {
    ZSTD_freeDCtx(decompressor);
}

LogDecoder::LogDecoder(std::string name)
    : m_name(std::move(name)), m_decompressor(ZSTD_createDCtx()) {
    if (!m_decompressor) throw std::bad_alloc();
    ZSTD_DCtx_setParameter(m_decompressor.get(), ZSTD_d_windowLogMax, WINDOW_BITS);
}

void LogDecoder::add(std::span<const std::uint8_t> bytes) {
    m_packed.erase(m_packed.begin(), m_packed.begin() + static_cast<long>(m_unpacked));
    m_unpacked = 0;
    m_packed.insert(m_packed.end(), bytes.begin(), bytes.end());
    m_offset += static_cast<std::int64_t>(bytes.size());
}

void LogDecoder::end() {
    if (m_state != LogItem::frame) return;
    if (!m_whole)
        stop(LogItem::cut_off, "the run was ended by force, or its disk was full");
    else if (!m_begun || available() > 0)
        stop(LogItem::damaged, "it ends within a record");
    else
        m_state = LogItem::end;
}

LogItem LogDecoder::readHead() {
    constexpr std::string_view END = "\n\n", MAGIC = LOG_MAGIC;
    if (!fill(MAGIC.size())) return stopped();
    if (!std::equal(MAGIC.begin(), MAGIC.end(), m_plain.begin()))
        return stop(LogItem::damaged, "it begins otherwise");
    m_begun = true;
    auto end = m_plain.begin();
    while ((end = std::search(m_plain.begin(), m_plain.end(), END.begin(), END.end())) ==
           m_plain.end()) {
        if (m_plain.size() > MAX_HEAD_SIZE) return stop(LogItem::damaged, "its head does not end");
        if (!fill(m_plain.size() + 1)) return stopped();
    }
    m_taken = static_cast<std::size_t>(end - m_plain.begin()) + END.size();
    std::string why;
    if (frames::readHead({m_plain.begin(), m_plain.begin() + static_cast<long>(m_taken)}, m_head,
                         why))
        return LogItem::frame;
    m_message = m_name + ' ' + why;
    return m_state = LogItem::damaged;
}

LogItem LogDecoder::next(FrameInput& input, std::vector<PartDigest>& digests) {
    return m_state == LogItem::frame ? readRecord(input, digests) : m_state;
}

LogItem LogDecoder::readRecord(FrameInput& input, std::vector<PartDigest>& digests) {
    if (!fill(RECORD_HEAD)) return stopped();
    std::uint32_t head[3]; // size, inverted, check
    std::memcpy(head, m_plain.data() + m_taken, sizeof head);
    if (head[0] != ~head[1] || head[0] == 0 || head[0] > MAX_INPUT_SIZE)
        return stop(LogItem::damaged, "no record begins there");
    if (!fill(RECORD_HEAD + head[0])) return stopped();
    const auto content = std::span(m_plain).subspan(m_taken + RECORD_HEAD, head[0]);
    m_taken += RECORD_HEAD + head[0];
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

LogItem LogDecoder::readDigests(std::span<const std::uint8_t> content,
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

/// Sees to it that so many bytes can be taken. False when there are not enough yet, or when it has
/// stopped.
bool LogDecoder::fill(std::size_t size) {
    if (available() >= size) return true;
    m_plain.erase(m_plain.begin(), m_plain.begin() + static_cast<long>(m_taken));
    m_taken = 0;
    while (available() < size)
        if (!decompress()) return false;
    return true;
}

/// Adds what the next of the added bytes hold.
bool LogDecoder::decompress() {
    if (!m_more && m_unpacked == m_packed.size()) return false;
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

LogItem LogDecoder::stop(LogItem item, const std::string& what) {
    m_state = item;
    if (!m_begun) {
        m_message = m_name + " is not a frame log";
        return m_state = LogItem::damaged;
    }
    const std::int64_t byte = m_offset - static_cast<std::int64_t>(m_packed.size() - m_unpacked);
    const std::string place = m_frames ? " behind frame " + std::to_string(m_last_number)
                                       : std::string(" before its first frame");
    m_message = m_name + " is ";
    if (item == LogItem::cut_off)
        m_message += "cut off at byte " + std::to_string(byte) + "," + place + ": " + what;
    else
        m_message += "damaged near byte " + std::to_string(byte) + "," + place + ": " + what +
                     "; copy it anew from where it was made";
    return item;
}

bool LogReader::isLog(const std::string& path) {
    if (!program::whyUnreadable(path).empty()) return false;
    std::uint8_t magic[4] = {};
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(magic), sizeof magic);
    return std::equal(std::begin(magic), std::end(magic), ZSTD_MAGIC);
}

bool LogReader::open(const std::string& path) {
    m_file = std::ifstream();
    m_decoder = LogDecoder('"' + path + '"');
    std::string why = program::whyUnreadable(path);
    if (why.empty()) m_file.open(path, std::ios::binary);
    if (why.empty() && !m_file) why = std::strerror(errno);
    if (!why.empty()) {
        m_message = "cannot open \"" + path + "\": " + why;
        return false;
    }
    LogItem item = LogItem::more;
    while ((item = m_decoder.readHead()) == LogItem::more)
        readOn();
    m_message = m_decoder.getMessage();
    return item == LogItem::frame;
}

LogItem LogReader::next(FrameInput& input, std::vector<PartDigest>& digests) {
    LogItem item = LogItem::more;
    while ((item = m_decoder.next(input, digests)) == LogItem::more)
        readOn();
    m_message = m_decoder.getMessage();
    return item;
}

/// Gives the next bytes of the file to the decoder.
void LogReader::readOn() {
    m_chunk.resize(CHUNK);
    m_file.read(reinterpret_cast<char*>(m_chunk.data()), static_cast<std::streamsize>(CHUNK));
    m_chunk.resize(static_cast<std::size_t>(m_file.gcount()));
    if (m_chunk.empty())
        m_decoder.end();
    else
        m_decoder.add(m_chunk);
}

} // namespace frames
