// SPDX-License-Identifier: MIT
#include "Texts.h"
#include "Writers.h"

namespace {

using Type = WireField::Type;
using Use = WireField::Use;

const char* const HEAD = R"(-- SPDX-License-Identifier: MIT
--
-- Wireshark and tshark show the two datagrams between a flight simulation and the visual channel
-- field by field. Made by wire_files from the tables in common/wire: don't edit it, edit them.
--
-- Put it into the folder that Help > About Wireshark > Folders names "Personal Lua Plugins", or
-- start either program with `-X lua_script:visual_channel.lua`. Datagrams to or from the default
-- ports are taken, and any others that look like one (size, position, zeros); other ports are set in
-- Preferences > Protocols > VC_RECORD and VC_FEEDBACK. Filters are named as the fields:
-- `vc_record.altitude < 10`, `vc_feedback.height_above_ground < 2`.

)";

const char* const TAIL = R"(
-- Everything of a datagram, field by field; what is left over is shown as such.
local function show(kind, buffer, info, tree)
    local size = buffer:len()
    local branch = tree:add(kind.proto, buffer(), kind.title)
    info.cols.protocol = kind.name
    if size ~= kind.size then
        branch:add_proto_expert_info(kind.wrong_size,
            string.format("%d bytes, expected %d", size, kind.size))
    end
    local at = 0
    for _, entry in ipairs(kind.entries) do
        local field, length = entry[1], entry[2]
        if at + length > size then break end
        branch:add_le(field, buffer(at, length))
        at = at + length
    end
    if at < size then branch:add(kind.rest, buffer(at)) end
    if size >= kind.size then info.cols.info = kind.summary(buffer) end
    return size
end

record.summary = function(buffer)
    return string.format("latitude %.6f longitude %.6f altitude %.1f m heading %.1f command %d",
        buffer(LATITUDE, 8):le_float(), buffer(LONGITUDE, 8):le_float(),
        buffer(ALTITUDE, 4):le_float(), buffer(HEADING, 4):le_float(),
        buffer(COMMAND, 4):le_uint())
end

feedback.summary = function(buffer)
    return string.format("frame %d height above ground %.2f m", buffer(FRAME, 4):le_int(),
        buffer(HEIGHT, 4):le_float())
end

-- By size; one of a wrong size by the port that it goes to.
local function take(buffer, info, tree)
    local size, kind = buffer:len(), feedback
    if size == record.size or
        (size ~= feedback.size and info.dst_port == record.proto.prefs.port) then
        kind = record
    end
    return show(kind, buffer, info, tree)
end
record.proto.dissector = take
feedback.proto.dissector = take

local function within(value, low, high) return value >= low and value <= high end

record.proto:register_heuristic("udp", function(buffer, info, tree)
    if buffer:len() ~= record.size or
        not within(buffer(LATITUDE, 8):le_float(), -90, 90) or
        not within(buffer(LONGITUDE, 8):le_float(), -360, 360) then return false end
    show(record, buffer, info, tree)
    return true
end)

feedback.proto:register_heuristic("udp", function(buffer, info, tree)
    if buffer:len() ~= feedback.size or buffer(FRAME, 4):le_int() < 1 or
        not within(buffer(GROUND_LATITUDE, 8):le_float(), -90, 90) then return false end
    for at = ZEROS, feedback.size - 1 do
        if buffer(at, 1):uint() ~= 0 then return false end
    end
    show(feedback, buffer, info, tree)
    return true
end)

local ports = DissectorTable.get("udp.port")
for _, kind in ipairs({record, feedback}) do
    local proto, port = kind.proto, kind.port
    proto.prefs.port = Pref.uint("UDP port", port, "Where these datagrams go; 0: none")
    ports:add(port, proto)
    function proto.prefs_changed()
        if port ~= 0 then ports:remove(port, proto) end
        port = proto.prefs.port
        if port ~= 0 then ports:add(port, proto) end
    end
end
)";

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

std::string fieldType(const WireField& field) {
    if (field.type == Type::F32) return "float";
    if (field.type == Type::F64) return "double";
    return std::string(field.getTypeName());
}

std::string valueNames(const WireField& field) {
    if (field.codes.empty()) return "nil";
    std::string text;
    for (const WireCode& code : field.codes)
        text += std::string(text.empty() ? "{" : ", ") + '[' + std::to_string(code.value) +
                "] = " + quoted(code.name);
    return text + '}';
}

/// The arguments of `ProtoField` differ by type: integers have a base and names of values.
std::string entry(const WireField& field, const std::string& name) {
    std::string title(field.name), arguments;
    if (!field.unit.empty()) title += " (" + std::string(field.unit) + ')';
    std::string about(field.meaning);
    if (!field.sense.empty()) about += "; " + std::string(field.sense);
    if (field.type == Type::BYTES)
        arguments = "base.SPACE";
    else if (field.isInteger())
        arguments = "base.DEC, " + valueNames(field) + ", nil, " + quoted(about);
    else
        arguments = "nil, " + quoted(about);
    return "    {ProtoField." + fieldType(field) + '(' +
           quoted(name + '.' + std::string(field.name)) + ", " + quoted(title) + ",\n        " +
           arguments + "), " + std::to_string(field.size) + "},\n";
}

std::string kind(std::span<const WireField> fields, const std::string& variable, int port,
                 const std::string& title) {
    const std::string name = "vc_" + variable;
    std::string text = "local " + variable + " = {name = " + quoted(upperCase(name)) +
                       ", size = " + std::to_string(sizeOf(fields)) +
                       ", port = " + std::to_string(port) + ", title = " + quoted(title) +
                       "}\n-- In the order of the bytes, which they account for: field, bytes.\n" +
                       variable + ".entries = {\n";
    for (const WireField& field : fields)
        text += entry(field, name);
    return text + "}\n" + variable + ".proto = Proto(" + quoted(name) +
           ", \"Visual channel: " + title + "\")\n" + variable + ".rest = ProtoField.bytes(" +
           quoted(name + ".rest") + ", \"of no whole field\", base.SPACE)\n" + variable +
           ".wrong_size = ProtoExpert.new(" + quoted(name + ".wrong_size") +
           ", \"wrong size\",\n    expert.group.MALFORMED, "
           "expert.severity.WARN)\n" +
           variable + ".proto.fields = {" + variable + ".rest}\nfor _, entry in ipairs(" +
           variable + ".entries) do " + variable + ".proto.fields[#" + variable +
           ".proto.fields + 1] = entry[1] end\n" + variable + ".proto.experts = {" + variable +
           ".wrong_size}\n\n";
}

std::string place(std::span<const WireField> fields, const char* variable, const char* name) {
    return std::string("local ") + variable + " = " +
           std::to_string(findField(fields, name)->offset) + '\n';
}

} // namespace

std::string dissector() {
    const auto record = recordFields(), feedback = feedbackFields();
    return HEAD + kind(record, "record", RECORD_PORT, "host data record") +
           kind(feedback, "feedback", FEEDBACK_PORT, "feedback") + "-- Where some fields begin.\n" +
           place(record, "COMMAND", "command") + place(record, "LATITUDE", "latitude") +
           place(record, "LONGITUDE", "longitude") + place(record, "ALTITUDE", "altitude") +
           place(record, "HEADING", "heading") + place(feedback, "FRAME", "frame") +
           place(feedback, "GROUND_LATITUDE", "ground_latitude") +
           place(feedback, "HEIGHT", "height_above_ground") +
           place(feedback, "ZEROS", "reserved72") + TAIL;
}
