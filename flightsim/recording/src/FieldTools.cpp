// SPDX-License-Identifier: MIT
#include "flightsim/recording/FieldTools.h"

#include "common/wire/UdpRecvData.h"
#include "common/wire/UdpSendData.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>

namespace flightsim {

namespace {

using Fields = std::vector<const WireField*>;

bool isFeedback(const Record& record) { return record.datagram.size() == sizeof(UdpSendData); }

/// The fields that mean something.
Fields meaningfulFields(bool feedback) {
    Fields fields;
    for (const WireField& field : fieldsOf(feedback))
        if (field.use != WireField::Use::RESERVED) fields.push_back(&field);
    return fields;
}

void printCsv(const Fields& fields, const Record& record, std::FILE* out) {
    std::fprintf(out, "%lld,%.9f,%zu", static_cast<long long>(record.number),
                 double(record.time_ns) * 1e-9, record.datagram.size());
    for (const WireField* field : fields)
        std::fprintf(out, ",%s", field->getText(record.datagram).c_str());
    std::fprintf(out, "\n");
}

/// The unit as it stands behind a value, if there is one.
std::string unitBehind(const WireField& field) {
    if (field.unit.empty()) return {};
    return (std::isdigit(field.unit.front()) ? " x " : " ") + std::string(field.unit);
}

/// `before`: the datagram before, when only changes are wanted; else empty.
void printBlock(const Fields& fields, const Record& record, const std::vector<std::uint8_t>& before,
                std::FILE* out) {
    std::string lines;
    for (const WireField* field : fields) {
        const std::string value = describeValue(*field, record.datagram);
        if (!before.empty() && value == describeValue(*field, before)) continue;
        std::string name(field->name);
        name.resize(std::max<std::size_t>(name.size(), 20), ' ');
        lines += "  " + name + " " + value + unitBehind(*field) + "\n";
    }
    if (lines.empty()) return;
    std::fprintf(out, "%s %lld at %.6f s, %zu bytes\n%s",
                 isFeedback(record) ? "feedback" : "record", static_cast<long long>(record.number),
                 double(record.time_ns) * 1e-9, record.datagram.size(), lines.c_str());
}

/// What a recording holds of one field.
struct FieldSummary {
    const WireField* field;
    std::string first, last; ///< values as they are shown
    double least = std::numeric_limits<double>::infinity();
    double greatest = -least;
    std::int64_t changes = 0;

    void add(std::span<const std::uint8_t> datagram) {
        const auto value = field->read(datagram);
        if (!value) return;
        std::string text = describeValue(*field, datagram);
        if (first.empty())
            first = text;
        else if (text != last)
            changes++;
        last = std::move(text);
        if (!std::isfinite(*value)) return;
        least = std::min(least, *value);
        greatest = std::max(greatest, *value);
    }
};

void printSummary(const std::vector<FieldSummary>& summaries, std::int64_t count, const char* what,
                  std::FILE* out) {
    if (count == 0) return;
    std::fprintf(out, "\n%-20s %20s %20s %14s %14s %8s  unit\n",
                 (std::to_string(count) + what).c_str(), "first", "last", "least", "greatest",
                 "changes");
    for (const FieldSummary& s : summaries) {
        const WireField& f = *s.field;
        const int digits = f.type == WireField::Type::F64 ? 11 : 7;
        const std::string name(f.name), unit = f.unit.empty() ? "" : "  " + std::string(f.unit);
        std::fprintf(out, "%-20s %20s %20s %14.*g %14.*g %8lld%s\n", name.c_str(), s.first.c_str(),
                     s.last.c_str(), digits, s.least, digits, s.greatest,
                     static_cast<long long>(s.changes), unit.c_str());
    }
}

} // namespace

std::span<const WireField> fieldsOf(bool feedback) {
    return feedback ? feedbackFields() : recordFields();
}

std::string describeValue(const WireField& field, std::span<const std::uint8_t> datagram) {
    std::string text = field.getText(datagram);
    if (text.empty()) return "-";
    const auto value = field.read(datagram);
    const std::string_view name = value ? field.getCodeName(*value) : std::string_view();
    return name.empty() ? text : text + " (" + std::string(name) + ")";
}

bool dumpRecording(const DumpOptions& options, std::FILE* out, std::string& warning,
                   std::string& message) {
    RecordingReader reader;
    Survey found;
    const Fields fields =
        options.fields.empty() ? meaningfulFields(options.feedback) : options.fields;
    if (!reader.open(options.in)) {
        message = reader.getMessage();
        return false;
    }
    if (!survey(reader, options.in, options.selection, found, message)) return false;
    warning = found.warning;
    if (options.csv) {
        std::fprintf(out, "number,time_s,size");
        for (const WireField* field : fields)
            std::fprintf(out, ",%.*s", static_cast<int>(field->name.size()), field->name.data());
        std::fprintf(out, "\n");
    }
    std::int64_t printed = 0;
    std::vector<std::uint8_t> before;
    Record record;
    while (reader.next(record) == ReadStatus::record) {
        if (!options.selection.contains(record) || isFeedback(record) != options.feedback) continue;
        printed++;
        if (options.csv)
            printCsv(fields, record, out);
        else
            printBlock(fields, record, before, out);
        if (options.changes) before.assign(record.datagram.begin(), record.datagram.end());
    }
    if (printed > 0) return true;
    message = "\"" + options.in + "\": none of the " + std::to_string(found.selected) +
              (options.feedback ? " datagrams is feedback"
                                : " datagrams is a host data record, all "
                                  "are feedback: see --feedback");
    return false;
}

bool printFieldSummary(const std::string& path, std::FILE* out, std::string& message) {
    RecordingReader reader;
    if (!reader.open(path)) {
        message = reader.getMessage();
        return false;
    }
    std::vector<FieldSummary> summaries[2]; // of the records, of the feedback
    std::int64_t counts[2] = {};
    for (const bool feedback : {false, true})
        for (const WireField* field : meaningfulFields(feedback))
            summaries[feedback].push_back({field, {}, {}});
    Record record;
    while (reader.next(record) == ReadStatus::record) {
        counts[isFeedback(record)]++;
        for (FieldSummary& summary : summaries[isFeedback(record)])
            summary.add(record.datagram);
    }
    printSummary(summaries[false], counts[false], " records", out);
    printSummary(summaries[true], counts[true], " feedback", out);
    return true;
}

} // namespace flightsim
