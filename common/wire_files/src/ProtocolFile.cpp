// SPDX-License-Identifier: MIT
#include "Texts.h"
#include "Writers.h"

namespace {

using Type = WireField::Type;

const char* const HEAD = R"(<?xml version="1.0"?>
<!-- SPDX-License-Identifier: MIT

FlightGear's end of the link to the visual channel, as a generic protocol: "output" is the host data
record, "input" the feedback. Made by wire_files from the tables in common/wire: don't edit it, edit
them. docs/connect.md tells how to use it.

What FlightGear has no property for stands below /visual-channel, where it may be set by hand: the
command (6 resets the scene; then 0 again), weather_type, hail_level, hang_length, hang_enable. What
the channel tells is below /visual-channel/feedback.
-->
<PropertyList>
 <generic>
)";

/// Where a field's value comes from in FlightGear's property tree: property × factor + offset.
/// Integers are cut off, not rounded.
struct Source {
    const char* field;
    const char* property;
    const char* factor = nullptr; ///< null: 1
    const char* offset = nullptr; ///< null: 0
};
constexpr const char* FEET = "0.3048";
const Source SOURCES[] = {
    {"command", "/visual-channel/command"},
    {"system_cmd", "/sim/freeze/master", nullptr, "1"}, // 1 run, 2 freeze
    {"weather_type", "/visual-channel/weather_type"},
    {"rain_level", "/environment/rain-norm", "3", "0.5"},
    {"snow_level", "/environment/snow-norm", "3", "0.5"},
    {"hail_level", "/visual-channel/hail_level"},
    {"cloud_enable", "/environment/clouds/status"},
    // 0 overcast, 1 broken, 2 scattered, 3 few, 4 thin, 5 clear.
    {"cloud_percent", "/environment/clouds/layer[0]/coverage-type", "-20", "100"},
    {"cloud_top", "/environment/clouds/layer[0]/elevation-ft", FEET, "600"},
    {"cloud_base", "/environment/clouds/layer[0]/elevation-ft", FEET},
    {"weather_angle", "/environment/wind-from-heading-deg"},
    {"weather_value_a", "/environment/wind-speed-kt", "0.514444"},
    {"weather_value_b", "/environment/visibility-m"},
    // The Beaufort number of a wind up to 45 knots, or the one next to it.
    {"sea_code", "/environment/config/boundary/entry[0]/wind-speed-kt", "0.2", "1.5"},
    {"sea_speed", "/environment/config/boundary/entry[0]/wind-speed-kt", "51.4444"},
    {"sea_angle", "/environment/config/boundary/entry[0]/wind-from-heading-deg"},
    {"latitude", "/position/latitude-deg"},
    {"longitude", "/position/longitude-deg"},
    {"altitude", "/position/altitude-ft", FEET},
    {"pitch", "/orientation/pitch-deg"},
    {"roll", "/orientation/roll-deg"},
    {"heading", "/orientation/heading-deg"},
    {"rotor_speed", "/rotors/main/rpm", "0.61"}, // 442 a minute, a light helicopter's, is 270
    {"hang_length", "/visual-channel/hang_length"},
    {"hang_enable", "/visual-channel/hang_enable"},
};

/// A 16-bit integer that is written as a signed one has the same bytes.
std::string chunkType(const WireField& field) {
    switch (field.type) {
    case Type::U16:
    case Type::I16:
        return "word";
    case Type::U32:
    case Type::I32:
        return "int";
    case Type::F32:
        return "float";
    case Type::F64:
        return "double";
    case Type::BYTES:
        break;
    }
    return field.size == 4 ? "int" : "string";
}

std::string element(const char* name, const std::string& text) {
    return std::string("<") + name + '>' + text + "</" + name + '>';
}

std::string chunk(const WireField& field, const std::string& rest) {
    return "   <chunk>" + element("name", std::string(field.name)) +
           element("type", chunkType(field)) + rest + "</chunk>\n";
}

/// A text is preceded by its length, four bytes.
std::string filling(const WireField& field) {
    return element("const", field.size == 4 ? "0" : std::string(field.size - 4, '.'));
}

std::string sent(const WireField& field) {
    if (field.type == Type::BYTES) return chunk(field, filling(field));
    for (const Source& source : SOURCES)
        if (source.field == field.name) {
            std::string text = element("node", source.property);
            if (source.factor) text += element("factor", source.factor);
            if (source.offset) text += element("offset", source.offset);
            return chunk(field, text);
        }
    return chunk(field, element("const", numberText(field.unused.value())));
}

} // namespace

std::string protocolFile() {
    const char* const mode = "   <binary_mode>true</binary_mode>\n"
                             "   <byte_order>host</byte_order>\n"; // little-endian ones
    std::string text = HEAD + std::string("  <output>\n") + mode;
    for (const WireField& field : recordFields())
        text += sent(field);
    text += std::string("  </output>\n  <input>\n") + mode + "   " +
            element("record_length", std::to_string(sizeOf(feedbackFields()))) + '\n';
    for (const WireField& field : feedbackFields())
        if (field.type != Type::BYTES)
            text += chunk(field,
                          element("node", "/visual-channel/feedback/" + std::string(field.name)));
    return text + "  </input>\n </generic>\n</PropertyList>\n";
}
