// SPDX-License-Identifier: MIT
#include "Send.h"

#include "Place.h"
#include "flightsim/mission/Nearest.h"
#include "flightsim/mission/RecordFields.h"
#include "flightsim/recording/FieldTools.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace flightsim {

namespace {

/// What a field takes, for the message about a value that it doesn't: "uint16 from 0 to 65535, or
/// clear, overcast, storm, fog".
std::string whatItTakes(const WireField& field) {
    std::string text(field.getTypeName());
    char range[80];
    if (field.isInteger()) {
        std::snprintf(range, sizeof range, " from %.0f to %.0f", field.getLeast(),
                      field.getGreatest());
        text += range;
    }
    const char* separator = ", or ";
    for (const WireCode& code : field.codes) {
        text += separator + std::string(code.name);
        separator = ", ";
    }
    return text;
}

/// Whether something comes of a value, as of what the field holds when there is nothing to say.
bool hasMeaning(const WireField& field, double value) {
    if (value == field.unused) return true;
    if (!field.is_code) return field.range.has(value);
    const bool is_switch = field.range == WireRange{0, 1}; // all but 0 is on
    return value == 0 || is_switch || !field.getCodeName(value).empty();
}

/// How a value without a meaning is wrong: " is not from 0 to 360", or of a code " means nothing".
std::string whyNot(const WireField& field) {
    const auto [low, high] = field.range;
    char text[80] = " means nothing";
    if (!field.is_code && std::isinf(high))
        std::snprintf(text, sizeof text, " is not %g and more", low);
    else if (!field.is_code)
        std::snprintf(text, sizeof text, " is not from %g to %g", low, high);
    return text;
}

} // namespace

const WireField* findFieldOrNearest(bool feedback, const std::string& name, std::string& message) {
    const WireField* field = findField(fieldsOf(feedback), name);
    if (field) return field;
    std::vector<std::string> known;
    for (const WireField& other : fieldsOf(feedback))
        if (other.use != WireField::Use::RESERVED) known.emplace_back(other.name);
    message = std::string(feedback ? "the feedback" : "the host data record") + " has no field \"" +
              name + "\"" + nearest(name, known);
    return nullptr;
}

bool Send::open(const SendOptions& options, std::string& message) {
    m_options = options;
    if (!takeBase(message)) return false;
    for (const std::string& text : options.values)
        if (!setField(text, message)) return false;
    if (options.rate > 0) return m_link.open(options.link, message);
    return UdpAddress::parse(options.link.to, message).has_value();
}

/// What the record holds before the fields that are given.
bool Send::takeBase(std::string& message) {
    m_record = fairWeatherRecord();
    m_record.latitude = PAD_LATITUDE;
    m_record.longitude = PAD_LONGITUDE;
    m_record.altitude = static_cast<float>(PAD_ALTITUDE);
    if (m_options.base.empty()) return true;
    RecordingReader reader;
    Record record;
    bool found = reader.open(m_options.base);
    while (found && (found = reader.next(record) == ReadStatus::record))
        if (record.number == m_options.base_record) break;
    if (found && record.datagram.size() == sizeof m_record) {
        std::ranges::copy(record.datagram, bytesOf(m_record).begin());
        return true;
    }
    message = reader.getMessage();
    const std::string number = std::to_string(m_options.base_record);
    if (found)
        message = "\"" + m_options.base + "\": record " + number + " has " +
                  std::to_string(record.datagram.size()) + " bytes and is no host data record";
    else if (message.empty())
        message = "\"" + m_options.base + "\" has no record " + number;
    return false;
}

bool Send::setField(const std::string& text, std::string& message) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) {
        message = "\"" + text + "\" is not FIELD=VALUE, such as sea_code=4";
        return false;
    }
    const std::string name = text.substr(0, sign), value = text.substr(sign + 1);
    const WireField* field = findFieldOrNearest(false, name, message);
    if (!field) return false;
    if (field->use == WireField::Use::RESERVED) {
        message = "\"" + name + "\" is reserved: nothing reads it";
        return false;
    }
    if (std::ranges::find(m_given, field) != m_given.end()) {
        message = "\"" + name + "\" is given twice";
        return false;
    }
    const auto number = field->parse(value);
    if (!number || !field->write(bytesOf(m_record), *number)) {
        message = name + "=" + value + ": the field takes " + whatItTakes(*field);
        return false;
    }
    m_given.push_back(field);
    if (!hasMeaning(*field, *number))
        m_warning += (m_warning.empty() ? "" : "; ") + text + whyNot(*field) + ": " +
                     std::string(field->meaning);
    return true;
}

bool Send::run(const StopFlag& stop, std::string& message) {
    if (m_options.rate <= 0) return sendOnce(message);
    for (std::int64_t n = 0;; n++) {
        const std::int64_t time_ns = recordTime_ns(n, m_options.rate);
        if (m_options.seconds >= 0 && double(time_ns) * 1e-9 >= m_options.seconds) break;
        if (!m_link.sendAt(time_ns, bytesOf(m_record), stop)) break;
        m_record.command = 0;
    }
    return m_link.finish(message);
}

bool Send::sendOnce(std::string& message) {
    UdpSocket socket;
    const auto to = UdpAddress::parse(m_options.link.to, message);
    if (!to || !socket.open(message)) return false;
    if (!socket.send(*to, bytesOf(m_record))) {
        message = "cannot send to " + to->text() + ": " + std::strerror(errno);
        return false;
    }
    std::fprintf(m_options.link.out, "sent one record to %s\n", to->text().c_str());
    for (const WireField* field : m_given)
        std::fprintf(m_options.link.out, "  %-20s %s\n", std::string(field->name).c_str(),
                     describeValue(*field, bytesOf(m_record)).c_str());
    return true;
}

} // namespace flightsim
