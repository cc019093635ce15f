-- SPDX-License-Identifier: MIT
--
-- Wireshark and tshark show the two datagrams between a flight simulation and the visual channel
-- field by field. Made by wire_files from the tables in common/wire: don't edit it, edit them.
--
-- Put it into the folder that Help > About Wireshark > Folders names "Personal Lua Plugins", or
-- start either program with `-X lua_script:visual_channel.lua`. Datagrams to or from the default
-- ports are taken, and any others that look like one (size, position, zeros); other ports are set in
-- Preferences > Protocols > VC_RECORD and VC_FEEDBACK. Filters are named as the fields:
-- `vc_record.altitude < 10`, `vc_feedback.height_above_ground < 2`.

local record = {name = "VC_RECORD", size = 1490, port = 10004, title = "host data record"}
-- In the order of the bytes, which they account for: field, bytes.
record.entries = {
    {ProtoField.bytes("vc_record.reserved0", "reserved0",
        base.SPACE), 4},
    {ProtoField.uint32("vc_record.command", "command",
        base.DEC, {[6] = "reset"}, nil, "6 resets the scene, in every record that carries it, before the rest of the record is applied: send it once; others do nothing"), 4},
    {ProtoField.uint32("vc_record.system_cmd", "system_cmd",
        base.DEC, {[1] = "run", [2] = "freeze", [3] = "stop", [4] = "exit"}, nil, "1 run, 2 freeze, 3 stop (until run or a reset), 4 exit (obeyed by a channel that was started with --obey-exit); others do nothing"), 4},
    {ProtoField.uint16("vc_record.weather_type", "weather_type",
        base.DEC, {[1] = "clear", [2] = "overcast", [3] = "storm", [4] = "fog"}, nil, "Look of the sky: 1 clear, 2 overcast, 3 storm, 4 fog; others: the last one stays"), 2},
    {ProtoField.uint16("vc_record.rain_level", "rain_level",
        base.DEC, {[0] = "none", [1] = "light", [2] = "medium", [3] = "heavy"}, nil, "0 none, 1 light, 2 medium, 3 heavy; others: the last one stays"), 2},
    {ProtoField.uint16("vc_record.snow_level", "snow_level",
        base.DEC, {[0] = "none", [1] = "light", [2] = "medium", [3] = "heavy"}, nil, "Likewise, snow"), 2},
    {ProtoField.uint16("vc_record.hail_level", "hail_level",
        base.DEC, {[0] = "none", [1] = "light", [2] = "medium", [3] = "heavy"}, nil, "Likewise, hail"), 2},
    {ProtoField.bytes("vc_record.reserved20", "reserved20",
        base.SPACE), 4},
    {ProtoField.uint16("vc_record.cloud_enable", "cloud_enable",
        base.DEC, {[0] = "off", [1] = "on"}, nil, "Other than 0: there is a layer of clouds, which the cloud fields below describe"), 2},
    {ProtoField.int16("vc_record.cloud_param1", "cloud_param1",
        base.DEC, nil, nil, "Handed on as it is; nothing comes of it"), 2},
    {ProtoField.int16("vc_record.cloud_param2", "cloud_param2",
        base.DEC, nil, nil, "Handed on as it is; nothing comes of it"), 2},
    {ProtoField.int16("vc_record.cloud_percent", "cloud_percent (%)",
        base.DEC, nil, nil, "How much of the sky the layer covers; what is beyond is clamped"), 2},
    {ProtoField.float("vc_record.cloud_top", "cloud_top (m)",
        nil, "Altitude of the layer's upper side; above mean sea level"), 4},
    {ProtoField.float("vc_record.cloud_base", "cloud_base (m)",
        nil, "Altitude of its lower side, 30 m at least; unless it is below the top both are ignored; above mean sea level"), 4},
    {ProtoField.float("vc_record.weather_angle", "weather_angle (deg)",
        nil, "Direction of the wind; where the wind comes from, clockwise from true north"), 4},
    {ProtoField.float("vc_record.weather_value_a", "weather_value_a (m/s)",
        nil, "Speed of the wind; below 0 is calm too"), 4},
    {ProtoField.int32("vc_record.weather_value_b", "weather_value_b (m)",
        base.DEC, nil, nil, "Visibility, 20 m at least; 0 and below: nothing is said; fog and falls may leave less"), 4},
    {ProtoField.bytes("vc_record.reserved52", "reserved52",
        base.SPACE), 38},
    {ProtoField.int16("vc_record.sea_code", "sea_code (Beaufort)",
        base.DEC, nil, nil, "Height and length of the waves; what is beyond is clamped"), 2},
    {ProtoField.float("vc_record.sea_speed", "sea_speed (cm/s)",
        nil, "Wind over the sea: ripples, whitecaps and streaks, not the waves; counts as at least 0.6 times the wind of the Beaufort number"), 4},
    {ProtoField.float("vc_record.sea_angle", "sea_angle (deg)",
        nil, "Direction of the waves; where the waves come from, clockwise from true north"), 4},
    {ProtoField.bytes("vc_record.reserved100", "reserved100",
        base.SPACE), 24},
    {ProtoField.double("vc_record.latitude", "latitude (deg)",
        nil, "Geodetic latitude (WGS84) of the reference point, the origin of the helicopter's model; north positive"), 8},
    {ProtoField.double("vc_record.longitude", "longitude (deg)",
        nil, "Its longitude (WGS84); east positive"), 8},
    {ProtoField.float("vc_record.altitude", "altitude (m)",
        nil, "Its height; the sea's mean level is 0 everywhere; above mean sea level"), 4},
    {ProtoField.float("vc_record.pitch", "pitch (deg)",
        nil, "Second turn of the attitude, about the axis to the right; nose up positive"), 4},
    {ProtoField.float("vc_record.roll", "roll (deg)",
        nil, "Third turn, about the axis ahead; right side down positive"), 4},
    {ProtoField.float("vc_record.heading", "heading (deg)",
        nil, "First turn, about the vertical; clockwise from true north"), 4},
    {ProtoField.float("vc_record.rotor_speed", "rotor_speed (60 deg/s)",
        nil, "Both rotors turn by 60 times this in degrees per second; 270 counts as full collective, which the downwash goes by"), 4},
    {ProtoField.bytes("vc_record.reserved160", "reserved160",
        base.SPACE), 260},
    {ProtoField.float("vc_record.radar_value", "radar_value",
        nil, "Gain: every echo times this, 1 as it is; below 0: no echo"), 4},
    {ProtoField.float("vc_record.radar_sector_width", "radar_sector_width (deg)",
        nil, "Width of the sector that the radar's picture shows; half to each side of the sector's middle"), 4},
    {ProtoField.float("vc_record.radar_sector_offset", "radar_sector_offset (deg)",
        nil, "Where the sector's middle points; right of ahead positive"), 4},
    {ProtoField.bytes("vc_record.reserved432", "reserved432",
        base.SPACE), 996},
    {ProtoField.int16("vc_record.hang_mass", "hang_mass (kg)",
        base.DEC, nil, nil, "Mass of the load on the hook; below 1 counts as 1"), 2},
    {ProtoField.float("vc_record.hang_length", "hang_length (m)",
        nil, "Cable between winch and load"), 4},
    {ProtoField.uint16("vc_record.hang_enable", "hang_enable",
        base.DEC, {[0] = "off", [1] = "on"}, nil, "Other than 0: the load is out, with the two above"), 2},
    {ProtoField.bytes("vc_record.reserved1436", "reserved1436",
        base.SPACE), 54},
}
record.proto = Proto("vc_record", "Visual channel: host data record")
record.rest = ProtoField.bytes("vc_record.rest", "of no whole field", base.SPACE)
record.wrong_size = ProtoExpert.new("vc_record.wrong_size", "wrong size",
    expert.group.MALFORMED, expert.severity.WARN)
record.proto.fields = {record.rest}
for _, entry in ipairs(record.entries) do record.proto.fields[#record.proto.fields + 1] = entry[1] end
record.proto.experts = {record.wrong_size}

local feedback = {name = "VC_FEEDBACK", size = 108, port = 10005, title = "feedback"}
-- In the order of the bytes, which they account for: field, bytes.
feedback.entries = {
    {ProtoField.int32("vc_feedback.frame", "frame",
        base.DEC, nil, nil, "The channel's frame number: 1 at first, one more with each frame"), 4},
    {ProtoField.double("vc_feedback.ground_latitude", "ground_latitude (deg)",
        nil, "Geodetic latitude (WGS84) of the ground: the nearest visible surface, land, sea, deck or roof, straight below the helicopter's reference point; north positive"), 8},
    {ProtoField.double("vc_feedback.ground_longitude", "ground_longitude (deg)",
        nil, "Its longitude (WGS84); east positive"), 8},
    {ProtoField.float("vc_feedback.height_above_ground", "height_above_ground (m)",
        nil, "Height of the reference point above the ground"), 4},
    {ProtoField.float("vc_feedback.wheel_front_h", "wheel_front_h (deg)",
        nil, "Heading of the front wheel as the scene has it, its own turn against the airframe included; clockwise from true north"), 4},
    {ProtoField.float("vc_feedback.wheel_front_p", "wheel_front_p (deg)",
        nil, "Its pitch; nose up positive"), 4},
    {ProtoField.float("vc_feedback.wheel_front_r", "wheel_front_r (deg)",
        nil, "Its roll; right side down positive"), 4},
    {ProtoField.int32("vc_feedback.wheel_front_reserved", "wheel_front_reserved",
        base.DEC, nil, nil, "Holds nothing"), 4},
    {ProtoField.float("vc_feedback.wheel_left_h", "wheel_left_h (deg)",
        nil, "Heading of the left wheel as the scene has it, its own turn against the airframe included; clockwise from true north"), 4},
    {ProtoField.float("vc_feedback.wheel_left_p", "wheel_left_p (deg)",
        nil, "Its pitch; nose up positive"), 4},
    {ProtoField.float("vc_feedback.wheel_left_r", "wheel_left_r (deg)",
        nil, "Its roll; right side down positive"), 4},
    {ProtoField.int32("vc_feedback.wheel_left_reserved", "wheel_left_reserved",
        base.DEC, nil, nil, "Holds nothing"), 4},
    {ProtoField.float("vc_feedback.wheel_right_h", "wheel_right_h (deg)",
        nil, "Heading of the right wheel as the scene has it, its own turn against the airframe included; clockwise from true north"), 4},
    {ProtoField.float("vc_feedback.wheel_right_p", "wheel_right_p (deg)",
        nil, "Its pitch; nose up positive"), 4},
    {ProtoField.float("vc_feedback.wheel_right_r", "wheel_right_r (deg)",
        nil, "Its roll; right side down positive"), 4},
    {ProtoField.int32("vc_feedback.wheel_right_reserved", "wheel_right_reserved",
        base.DEC, nil, nil, "Holds nothing"), 4},
    {ProtoField.bytes("vc_feedback.reserved72", "reserved72",
        base.SPACE), 36},
}
feedback.proto = Proto("vc_feedback", "Visual channel: feedback")
feedback.rest = ProtoField.bytes("vc_feedback.rest", "of no whole field", base.SPACE)
feedback.wrong_size = ProtoExpert.new("vc_feedback.wrong_size", "wrong size",
    expert.group.MALFORMED, expert.severity.WARN)
feedback.proto.fields = {feedback.rest}
for _, entry in ipairs(feedback.entries) do feedback.proto.fields[#feedback.proto.fields + 1] = entry[1] end
feedback.proto.experts = {feedback.wrong_size}

-- Where some fields begin.
local COMMAND = 4
local LATITUDE = 124
local LONGITUDE = 132
local ALTITUDE = 140
local HEADING = 152
local FRAME = 0
local GROUND_LATITUDE = 4
local HEIGHT = 20
local ZEROS = 72

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
