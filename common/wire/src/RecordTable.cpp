// SPDX-License-Identifier: MIT
#include "TableRow.h"
#include "common/wire/UdpRecvData.h"

namespace {

using enum WireField::Type;
using enum WireField::Use;

constexpr double MANY = std::numeric_limits<double>::infinity();
/// What counts is that the value is finite and not one with its bytes swapped.
constexpr WireRange SANE = {-1e6, 1e6};
constexpr WireRange TURN = {-360, 360}, TURNS = {-720, 720};

constexpr WireCode COMMANDS[] = {{6, "reset"}};
constexpr WireCode SYSTEM[] = {{1, "run"}, {2, "freeze"}, {3, "stop"}, {4, "exit"}};
constexpr WireCode LOOKS[] = {{1, "clear"}, {2, "overcast"}, {3, "storm"}, {4, "fog"}};
constexpr WireCode LEVELS[] = {{0, "none"}, {1, "light"}, {2, "medium"}, {3, "heavy"}};
constexpr WireCode SWITCH[] = {{0, "off"}, {1, "on"}};

#define ROW(MEMBER, ...) WIRE_ROW(UdpRecvData, MEMBER, #MEMBER, __VA_ARGS__)

constexpr WireField ROWS[] = {
    ROW(reserved0, .offset = 0),

    // --- Commands.
    ROW(command, .offset = 4, .type = U32, .use = SHOWN, .is_code = true, .range = {0, 6},
        .zero = "no command",
        .meaning = "6 resets the scene, in every record that carries it, before the rest of the "
                   "record is applied: send it once; others do nothing",
        .codes = COMMANDS),
    ROW(system_cmd, .offset = 8, .type = U32, .use = ANNOUNCED, .is_code = true, .range = {0, 4},
        .unused = 1, .zero = "the last command goes on; the scene runs when there was none",
        .meaning =
            "1 run, 2 freeze, 3 stop (until run or a reset), 4 exit (obeyed by a channel that "
            "was started with --obey-exit); others do nothing",
        .codes = SYSTEM),

    // --- Weather. The picture follows a change within seconds, the wind at once.
    ROW(weather_type, .offset = 12, .type = U16, .use = ANNOUNCED, .is_code = true, .range = {1, 4},
        .unused = 1, .zero = "the last look stays; clear at the start",
        .meaning =
            "Look of the sky: 1 clear, 2 overcast, 3 storm, 4 fog; others: the last one stays",
        .codes = LOOKS),
    ROW(rain_level, .offset = 14, .type = U16, .use = ANNOUNCED, .range = {0, 3}, .zero = "no rain",
        .meaning = "0 none, 1 light, 2 medium, 3 heavy; others: the last one stays",
        .codes = LEVELS),
    ROW(snow_level, .offset = 16, .type = U16, .use = ANNOUNCED, .range = {0, 3}, .zero = "no snow",
        .meaning = "Likewise, snow", .codes = LEVELS),
    ROW(hail_level, .offset = 18, .type = U16, .use = ANNOUNCED, .range = {0, 3}, .zero = "no hail",
        .meaning = "Likewise, hail", .codes = LEVELS),
    ROW(reserved20, .offset = 20),
    ROW(cloud_enable, .offset = 24, .type = U16, .use = ANNOUNCED, .is_code = true, .range = {0, 1},
        .zero = "no layer of clouds",
        .meaning =
            "Other than 0: there is a layer of clouds, which the cloud fields below describe",
        .codes = SWITCH),
    ROW(cloud_param1, .offset = 26, .type = I16, .use = NOT_SHOWN, .zero = "nothing",
        .meaning = "Handed on as it is; nothing comes of it"),
    ROW(cloud_param2, .offset = 28, .type = I16, .use = NOT_SHOWN, .zero = "nothing",
        .meaning = "Handed on as it is; nothing comes of it"),
    ROW(cloud_percent, .offset = 30, .type = I16, .use = ANNOUNCED, .unit = "%", .range = {0, 100},
        .zero = "no clouds in the layer",
        .meaning = "How much of the sky the layer covers; what is beyond is clamped"),
    ROW(cloud_top, .offset = 32, .type = F32, .use = ANNOUNCED, .unit = "m", .range = {0, 20000},
        .plausible = SANE, .sense = "above mean sea level",
        .zero = "not above the base: both are ignored",
        .meaning = "Altitude of the layer's upper side"),
    ROW(cloud_base, .offset = 36, .type = F32, .use = ANNOUNCED, .unit = "m", .range = {0, 20000},
        .plausible = SANE, .sense = "above mean sea level", .zero = "counts as 30 m",
        .meaning = "Altitude of its lower side, 30 m at least; unless it is below the top both are "
                   "ignored"),
    ROW(weather_angle, .offset = 40, .type = F32, .use = ANNOUNCED, .unit = "deg",
        .range = {0, 360}, .plausible = TURNS,
        .sense = "where the wind comes from, clockwise from true north", .zero = "from the north",
        .meaning = "Direction of the wind"),
    ROW(weather_value_a, .offset = 44, .type = F32, .use = ANNOUNCED, .unit = "m/s",
        .range = {0, MANY}, .plausible = SANE, .zero = "calm",
        .meaning = "Speed of the wind; below 0 is calm too"),
    ROW(weather_value_b, .offset = 48, .type = I32, .use = ANNOUNCED, .unit = "m",
        .range = {20, MANY}, .zero = "not said: 60 km, or what the weather leaves of them",
        .meaning =
            "Visibility, 20 m at least; 0 and below: nothing is said; fog and falls may leave "
            "less"),
    ROW(reserved52, .offset = 52),

    // --- Sea. The waves follow a change within 10 s.
    ROW(sea_code, .offset = 90, .type = I16, .use = ANNOUNCED, .unit = "Beaufort", .range = {0, 12},
        .unused = 2, .zero = "still water",
        .meaning = "Height and length of the waves; what is beyond is clamped"),
    ROW(sea_speed, .offset = 92, .type = F32, .use = SHOWN, .unit = "cm/s", .range = {0, 7500},
        .plausible = SANE, .zero = "as the Beaufort number has it",
        .meaning = "Wind over the sea: ripples, whitecaps and streaks, not the waves; counts as at "
                   "least 0.6 times the wind of the Beaufort number"),
    ROW(sea_angle, .offset = 96, .type = F32, .use = SHOWN, .unit = "deg", .range = {0, 360},
        .plausible = TURNS, .sense = "where the waves come from, clockwise from true north",
        .zero = "from the north", .meaning = "Direction of the waves"),
    ROW(reserved100, .offset = 100),

    // --- The own helicopter, shown where its reference point is told to be. All 0 is a place, in
    // the Gulf of Guinea.
    ROW(latitude, .offset = 124, .type = F64, .use = SHOWN, .unit = "deg", .range = {-90, 90},
        .plausible = {-90, 90}, .unused = {}, .sense = "north positive", .zero = "the equator",
        .meaning =
            "Geodetic latitude (WGS84) of the reference point, the origin of the helicopter's "
            "model"),
    ROW(longitude, .offset = 132, .type = F64, .use = SHOWN, .unit = "deg", .range = {-180, 180},
        .plausible = TURN, .unused = {}, .sense = "east positive", .zero = "the prime meridian",
        .meaning = "Its longitude (WGS84)"),
    ROW(altitude, .offset = 140, .type = F32, .use = SHOWN, .unit = "m", .range = {-500, 20000},
        .plausible = {-500, 20000}, .unused = {}, .sense = "above mean sea level",
        .zero = "at sea level", .meaning = "Its height; the sea's mean level is 0 everywhere"),
    ROW(pitch, .offset = 144, .type = F32, .use = SHOWN, .unit = "deg", .range = {-90, 90},
        .plausible = TURN, .unused = {}, .sense = "nose up positive", .zero = "level",
        .meaning = "Second turn of the attitude, about the axis to the right"),
    ROW(roll, .offset = 148, .type = F32, .use = SHOWN, .unit = "deg", .range = {-180, 180},
        .plausible = TURN, .unused = {}, .sense = "right side down positive", .zero = "level",
        .meaning = "Third turn, about the axis ahead"),
    ROW(heading, .offset = 152, .type = F32, .use = SHOWN, .unit = "deg", .range = {0, 360},
        .plausible = TURN, .unused = {}, .sense = "clockwise from true north", .zero = "north",
        .meaning = "First turn, about the vertical"),
    ROW(rotor_speed, .offset = 156, .type = F32, .use = SHOWN, .unit = "60 deg/s",
        .range = {0, 270}, .plausible = {-1000, 1000}, .unused = 270, .zero = "the rotors stand",
        .meaning = "Both rotors turn by 60 times this in degrees per second; 270 counts as full "
                   "collective, which the downwash goes by"),
    ROW(reserved160, .offset = 160),

    // --- Weather radar, when the operator looks at it.
    ROW(radar_value, .offset = 420, .type = F32, .use = SHOWN, .range = {0, MANY},
        .plausible = SANE, .unused = 1, .zero = "no echo",
        .meaning = "Gain: every echo times this, 1 as it is; below 0: no echo"),
    ROW(radar_sector_width, .offset = 424, .type = F32, .use = SHOWN, .unit = "deg",
        .range = {0, 180}, .plausible = TURNS, .unused = 90,
        .sense = "half to each side of the sector's middle", .zero = "a line",
        .meaning = "Width of the sector that the radar's picture shows"),
    ROW(radar_sector_offset, .offset = 428, .type = F32, .use = SHOWN, .unit = "deg",
        .range = {-90, 90}, .plausible = TURNS, .sense = "right of ahead positive",
        .zero = "straight ahead", .meaning = "Where the sector's middle points"),
    ROW(reserved432, .offset = 432),

    // --- Rescue winch.
    ROW(hang_mass, .offset = 1428, .type = I16, .use = SHOWN, .unit = "kg", .range = {1, 32767},
        .unused = 80, .zero = "counts as 1 kg",
        .meaning = "Mass of the load on the hook; below 1 counts as 1"),
    ROW(hang_length, .offset = 1430, .type = F32, .use = SHOWN, .unit = "m", .range = {0, 10000},
        .plausible = {0, 10000}, .unused = 2, .zero = "the load hangs at the winch",
        .meaning = "Cable between winch and load"),
    ROW(hang_enable, .offset = 1434, .type = U16, .use = SHOWN, .is_code = true, .range = {0, 1},
        .zero = "the load is stowed, also when it was the operator who put it out",
        .meaning = "Other than 0: the load is out, with the two above", .codes = SWITCH),
    ROW(reserved1436, .offset = 1436),
};
static_assert(coversAll(ROWS, sizeof(UdpRecvData)));

} // namespace

std::span<const WireField> recordFields() { return ROWS; }
