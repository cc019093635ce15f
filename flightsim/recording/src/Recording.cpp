// SPDX-License-Identifier: MIT
#include "flightsim/recording/Recording.h"

#include "program/InputFile.h"
#include "program/OutputFile.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

static_assert(std::endian::native == std::endian::little, "numbers are copied as they lie");

namespace flightsim {

namespace {

constexpr char MAGIC[8] = {'H', 'R', 'E', 'C', '1', '4', '9', '0'};
constexpr std::uint32_t HEADER_REST = 16;
constexpr std::int64_t HEADER_SIZE = 24;
constexpr std::uint16_t WHOLE_DATAGRAM = 0xffff;
constexpr std::size_t RUN_HEAD = 4; ///< bytes that a run costs beside its content
constexpr std::size_t BLOCK_SIZE = 256 * 1024;

template <class T>
T decode(const std::uint8_t* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

std::string systemError() { return std::strerror(errno); }

} // namespace

bool RecordingReader::open(const std::string& path) {
    m_path = path;
    m_status = ReadStatus::end;
    m_file = std::ifstream();
    m_log.reset();
    m_format = RecordingFormat::whole;
    if (frames::LogReader::isLog(path)) return openLog();
    const std::string why = program::whyUnreadable(path);
    if (why.empty()) m_file.open(path, std::ios::binary);
    if (!why.empty() || !m_file) {
        m_message = "cannot open \"" + path + "\": " + (why.empty() ? systemError() : why);
        return false;
    }
    std::uint8_t header[HEADER_SIZE];
    if (!take(header, sizeof header)) {
        m_message = "\"" + path + "\": byte " + std::to_string(m_offset) +
                    ": ends within the header of " + std::to_string(HEADER_SIZE) + " bytes";
        return false;
    }
    const auto refuse = [&](int offset, const std::string& what) {
        m_message = "\"" + path + "\": byte " + std::to_string(offset) + ": " + what;
        return false;
    };
    if (std::memcmp(header, MAGIC, sizeof MAGIC) != 0)
        return refuse(0, "not a recording (\"HREC1490\" is missing), nor a frame log");
    const auto version = decode<std::uint32_t>(header + 8);
    if (version != 1 && version != 2)
        return refuse(8, "version " + std::to_string(version) + " is neither 1 nor 2");
    if (decode<std::uint32_t>(header + 12) != HEADER_REST)
        return refuse(12, "header size is not " + std::to_string(HEADER_REST));
    m_format = static_cast<RecordingFormat>(version);
    m_start_wall_ns = decode<std::int64_t>(header + 16);
    rewind();
    return true;
}

bool RecordingReader::openLog() {
    m_log.emplace();
    m_frame = {};
    m_frame_records = 0;
    m_number = 0;
    m_last_time_ns = 0;
    m_status = m_log->open(m_path) ? ReadStatus::record : ReadStatus::malformed;
    m_start_wall_ns = m_log->getHead().start_wall_ns;
    m_offset = m_log->getOffset();
    m_message = m_log->getMessage();
    return m_status == ReadStatus::record;
}

void RecordingReader::rewind() {
    if (m_log) {
        openLog();
        return;
    }
    m_file.clear();
    m_file.seekg(HEADER_SIZE);
    m_offset = HEADER_SIZE;
    m_number = 0;
    m_last_time_ns = 0;
    m_datagram.clear();
    m_status = ReadStatus::record;
}

ReadStatus RecordingReader::next(Record& record) {
    if (m_status != ReadStatus::record) return m_status;
    if (m_log) return nextLogged(record);
    m_record_offset = m_offset;
    std::uint8_t head[12];
    if (!take(head, sizeof head)) {
        if (m_offset == m_record_offset) return m_status = ReadStatus::end;
        return truncated("its head");
    }
    const auto time_ns = decode<std::int64_t>(head);
    const auto length = decode<std::uint32_t>(head + 8);
    if (time_ns < m_last_time_ns || time_ns > MAX_RECORD_TIME_NS)
        return fail(ReadStatus::malformed,
                    "time " + std::to_string(time_ns) + " ns goes back or is beyond a year");
    if (length > MAX_DATAGRAM_SIZE)
        return fail(ReadStatus::malformed,
                    "length " + std::to_string(length) + " is beyond the 65507 of a datagram");
    if (readBody(length) != ReadStatus::record) return m_status;
    m_last_time_ns = time_ns;
    record = {m_number++, time_ns, m_datagram, 0, 0};
    return ReadStatus::record;
}

ReadStatus RecordingReader::nextLogged(Record& record) {
    std::vector<frames::PartDigest> digests; // which are none of ours
    while (m_frame_records == m_frame.datagrams.size()) {
        const frames::LogItem item = m_log->next(m_frame, digests);
        m_offset = m_log->getOffset();
        m_message = m_log->getMessage();
        if (item == frames::LogItem::frame) m_frame_records = 0;
        if (item < frames::LogItem::end) continue;
        return m_status = item == frames::LogItem::end       ? ReadStatus::end
                          : item == frames::LogItem::cut_off ? ReadStatus::truncated
                                                             : ReadStatus::malformed;
    }
    const frames::Datagram& datagram = m_frame.datagrams[m_frame_records++];
    // What had come before the run began counts as come then. Several sockets may be out of order.
    const double time_ns = std::clamp(datagram.arrival * 1e9, 0.0, double(MAX_RECORD_TIME_NS));
    m_last_time_ns = std::max(m_last_time_ns, static_cast<std::int64_t>(std::llround(time_ns)));
    record = {m_number++, m_last_time_ns, datagram.bytes, datagram.address,
              static_cast<std::uint16_t>(datagram.port)};
    return ReadStatus::record;
}

ReadStatus RecordingReader::readBody(std::uint32_t length) {
    std::uint16_t runs = WHOLE_DATAGRAM;
    if (m_format == RecordingFormat::compact && !take(&runs, sizeof runs))
        return truncated("its head");
    if (runs != WHOLE_DATAGRAM) return readRuns(length, runs);
    m_datagram.resize(length);
    return take(m_datagram.data(), length) ? ReadStatus::record : truncated("its datagram");
}

ReadStatus RecordingReader::readRuns(std::uint32_t length, std::uint16_t runs) {
    if (m_number == 0 || length != m_datagram.size())
        return fail(ReadStatus::malformed, "differs from a datagram that is absent or of another "
                                           "length");
    std::uint32_t end = 0; // of the run before
    for (std::uint16_t i = 0; i < runs; i++) {
        std::uint16_t run[2]; // offset, length
        if (!take(run, sizeof run)) return truncated("a run of changed bytes");
        if (run[0] < end || run[1] == 0 || std::uint32_t{run[0]} + run[1] > length)
            return fail(ReadStatus::malformed, "run " + std::to_string(i) + " of " +
                                                   std::to_string(run[1]) + " bytes at " +
                                                   std::to_string(run[0]) + " is out of place");
        if (!take(m_datagram.data() + run[0], run[1])) return truncated("a run of changed bytes");
        end = std::uint32_t{run[0]} + run[1];
    }
    return ReadStatus::record;
}

bool RecordingReader::take(void* to, std::size_t size) {
    m_file.read(static_cast<char*>(to), size);
    m_offset += m_file.gcount();
    return static_cast<std::size_t>(m_file.gcount()) == size;
}

ReadStatus RecordingReader::fail(ReadStatus status, const std::string& what) {
    m_message = "\"" + m_path + "\": record " + std::to_string(m_number) + " at byte " +
                std::to_string(m_record_offset) + ": " + what;
    return m_status = status;
}

ReadStatus RecordingReader::truncated(const char* where) {
    return fail(ReadStatus::truncated,
                "the file ends at byte " + std::to_string(m_offset) + " within " + where);
}

RecordingWriter::~RecordingWriter() { close(); }

bool RecordingWriter::open(const std::string& path, RecordingFormat format,
                           std::int64_t start_wall_ns) {
    close();
    m_path = path;
    m_format = format;
    m_size = m_last_time_ns = m_records = m_waiting_records = 0;
    m_waiting.clear();
    m_has_previous = false;
    m_message.clear();
    const std::string why = program::OutputFile::whyNot(path, program::OutputFile::Kind::growing);
    if (!why.empty()) {
        m_message = "cannot write \"" + path + "\": " + why;
        m_path.clear(); // what stands there is not this writer's to discard
        return false;
    }
    m_file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (m_file < 0) return fail("cannot create");
    const auto version = static_cast<std::uint32_t>(format);
    put(MAGIC, sizeof MAGIC);
    put(&version, sizeof version);
    put(&HEADER_REST, sizeof HEADER_REST);
    put(&start_wall_ns, sizeof start_wall_ns);
    return flush();
}

bool RecordingWriter::append(std::int64_t time_ns, std::span<const std::uint8_t> datagram) {
    if (m_file < 0) return false;
    m_last_time_ns = std::clamp(time_ns, m_last_time_ns, MAX_RECORD_TIME_NS);
    const auto length = static_cast<std::uint32_t>(std::min(datagram.size(), MAX_DATAGRAM_SIZE));
    datagram = datagram.first(length);
    put(&m_last_time_ns, sizeof m_last_time_ns);
    put(&length, sizeof length);
    if (m_format == RecordingFormat::whole) {
        put(datagram.data(), length);
    } else {
        if (!putRuns(datagram)) {
            put(&WHOLE_DATAGRAM, sizeof WHOLE_DATAGRAM);
            put(datagram.data(), length);
        }
        m_previous.assign(datagram.begin(), datagram.end());
        m_has_previous = true;
    }
    m_waiting_records++;
    return m_waiting.size() < BLOCK_SIZE || flush();
}

/// Puts the difference to the datagram before, or nothing and false when there is none or when it
/// is not the smaller form. Runs that lie closer together than a run's head are joined.
bool RecordingWriter::putRuns(std::span<const std::uint8_t> datagram) {
    if (!m_has_previous || m_previous.size() != datagram.size()) return false;
    const std::size_t begin = m_waiting.size();
    std::uint16_t runs = 0;
    put(&runs, sizeof runs);
    const std::size_t n = datagram.size();
    for (std::size_t i = 0; i < n;) {
        if (datagram[i] == m_previous[i]) {
            i++;
            continue;
        }
        std::size_t end = i + 1; // behind the last changed byte of this run
        for (std::size_t j = end; j < n && j - end < RUN_HEAD; j++)
            if (datagram[j] != m_previous[j]) end = j + 1;
        const std::uint16_t head[2] = {static_cast<std::uint16_t>(i),
                                       static_cast<std::uint16_t>(end - i)};
        put(head, sizeof head);
        put(datagram.data() + i, end - i);
        runs++;
        i = end;
    }
    if (m_waiting.size() - begin > sizeof runs + n) {
        m_size -= static_cast<std::int64_t>(m_waiting.size() - begin);
        m_waiting.resize(begin);
        return false;
    }
    std::memcpy(m_waiting.data() + begin, &runs, sizeof runs);
    return true;
}

void RecordingWriter::put(const void* bytes, std::size_t size) {
    const auto* from = static_cast<const std::uint8_t*>(bytes);
    m_waiting.insert(m_waiting.end(), from, from + size);
    m_size += size;
}

bool RecordingWriter::flush() {
    if (m_file < 0) return false;
    const std::int64_t kept = m_size - static_cast<std::int64_t>(m_waiting.size());
    for (std::size_t done = 0; done < m_waiting.size();) {
        const ssize_t n = ::write(m_file, m_waiting.data() + done, m_waiting.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            fail("cannot write");
            // Takes back the part of the block that did fit, which may end within a record.
            if (::ftruncate(m_file, kept) != 0) m_message += "; its last record may be cut off";
            m_size = kept;
            m_waiting.clear();
            if (m_records == 0) {
                discard();
            } else {
                ::close(m_file);
                m_file = -1;
            }
            return false;
        }
        done += n;
    }
    m_waiting.clear();
    m_records += std::exchange(m_waiting_records, 0);
    return true;
}

bool RecordingWriter::close() {
    if (m_file < 0) return false;
    if (!flush()) return false;
    const bool closed = ::close(m_file) == 0;
    m_file = -1;
    return closed || fail("cannot close");
}

void RecordingWriter::discard() {
    if (m_file >= 0) ::close(m_file);
    m_file = -1;
    m_records = m_waiting_records = 0;
    program::OutputFile::remove(m_path);
}

bool RecordingWriter::fail(const char* what) {
    m_message = std::string(what) + " \"" + m_path + "\": " + systemError();
    return false;
}

Selection Selection::ofSeconds(double from, double seconds) {
    // Seconds beyond the longest recording select to its end; that also keeps the casts in range.
    const auto ns = [](double s) {
        return static_cast<std::int64_t>(std::min(s * 1e9, double(MAX_RECORD_TIME_NS)));
    };
    Selection selection;
    selection.from_ns = ns(from);
    if (seconds >= 0) selection.until_ns = selection.from_ns + ns(seconds);
    return selection;
}

bool survey(RecordingReader& reader, const std::string& path, const Selection& selection,
            Survey& result, std::string& message) {
    result = {};
    Record record;
    ReadStatus status;
    reader.rewind();
    while ((status = reader.next(record)) == ReadStatus::record) {
        result.records++;
        if (!selection.contains(record)) continue;
        if (result.selected++ == 0) result.first_ns = record.time_ns;
        result.last_ns = record.time_ns;
    }
    message.clear();
    if (status == ReadStatus::malformed || (status == ReadStatus::truncated && !result.records))
        message = reader.getMessage();
    else if (!result.records)
        message = "\"" + path + "\" holds no records";
    else if (!result.selected)
        message = "\"" + path + "\": none of its " + std::to_string(result.records) +
                  " records lies in the part asked for";
    if (status == ReadStatus::truncated) result.warning = reader.getMessage();
    reader.rewind();
    return message.empty();
}

} // namespace flightsim
