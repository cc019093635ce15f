/* SPDX-License-Identifier: MIT
 *
 * The two datagrams between a flight simulation and the visual channel, for C99 and C++11. Made by
 * wire_files from the tables in common/wire: don't edit it, edit them. docs/connect.md tells more.
 *
 *   vc_record record;
 *   uint8_t bytes[VC_RECORD_SIZE];
 *   vc_record_init(&record);
 *   record.latitude = 19.72; ...
 *   vc_record_encode(&record, bytes);         then send all of them as one datagram
 *
 *   vc_feedback feedback;                     from one datagram received
 *   if (vc_feedback_decode(&feedback, bytes, size)) ... feedback.height_above_ground
 *
 * On the wire the fields are little-endian, lie without padding, and several of them unaligned.
 * The structs here are not that layout: they are ordinary ones, and every field is put into its
 * bytes, or taken from them, one byte at a time. So no compiler extension and no alignment is
 * needed, and it works on machines of either byte order. float and double must be IEEE 754.
 */
#ifndef VISUAL_CHANNEL_WIRE_H
#define VISUAL_CHANNEL_WIRE_H

#include <stdint.h>

/* The record, to the channel. */

enum {
    VC_RECORD_SIZE = 1490, /* bytes */

    /* Where the fields begin, bytes. */
    VC_RECORD_AT_COMMAND = 4,
    VC_RECORD_AT_SYSTEM_CMD = 8,
    VC_RECORD_AT_WEATHER_TYPE = 12,
    VC_RECORD_AT_RAIN_LEVEL = 14,
    VC_RECORD_AT_SNOW_LEVEL = 16,
    VC_RECORD_AT_HAIL_LEVEL = 18,
    VC_RECORD_AT_CLOUD_ENABLE = 24,
    VC_RECORD_AT_CLOUD_PARAM1 = 26,
    VC_RECORD_AT_CLOUD_PARAM2 = 28,
    VC_RECORD_AT_CLOUD_PERCENT = 30,
    VC_RECORD_AT_CLOUD_TOP = 32,
    VC_RECORD_AT_CLOUD_BASE = 36,
    VC_RECORD_AT_WEATHER_ANGLE = 40,
    VC_RECORD_AT_WEATHER_VALUE_A = 44,
    VC_RECORD_AT_WEATHER_VALUE_B = 48,
    VC_RECORD_AT_SEA_CODE = 90,
    VC_RECORD_AT_SEA_SPEED = 92,
    VC_RECORD_AT_SEA_ANGLE = 96,
    VC_RECORD_AT_LATITUDE = 124,
    VC_RECORD_AT_LONGITUDE = 132,
    VC_RECORD_AT_ALTITUDE = 140,
    VC_RECORD_AT_PITCH = 144,
    VC_RECORD_AT_ROLL = 148,
    VC_RECORD_AT_HEADING = 152,
    VC_RECORD_AT_ROTOR_SPEED = 156,
    VC_RECORD_AT_RADAR_VALUE = 420,
    VC_RECORD_AT_RADAR_SECTOR_WIDTH = 424,
    VC_RECORD_AT_RADAR_SECTOR_OFFSET = 428,
    VC_RECORD_AT_HANG_MASS = 1428,
    VC_RECORD_AT_HANG_LENGTH = 1430,
    VC_RECORD_AT_HANG_ENABLE = 1434,

    /* Codes. */
    VC_COMMAND_RESET = 6,
    VC_SYSTEM_CMD_RUN = 1,
    VC_SYSTEM_CMD_FREEZE = 2,
    VC_SYSTEM_CMD_STOP = 3,
    VC_SYSTEM_CMD_EXIT = 4,
    VC_WEATHER_TYPE_CLEAR = 1,
    VC_WEATHER_TYPE_OVERCAST = 2,
    VC_WEATHER_TYPE_STORM = 3,
    VC_WEATHER_TYPE_FOG = 4,
    VC_RAIN_LEVEL_NONE = 0,
    VC_RAIN_LEVEL_LIGHT = 1,
    VC_RAIN_LEVEL_MEDIUM = 2,
    VC_RAIN_LEVEL_HEAVY = 3,
    VC_SNOW_LEVEL_NONE = 0,
    VC_SNOW_LEVEL_LIGHT = 1,
    VC_SNOW_LEVEL_MEDIUM = 2,
    VC_SNOW_LEVEL_HEAVY = 3,
    VC_HAIL_LEVEL_NONE = 0,
    VC_HAIL_LEVEL_LIGHT = 1,
    VC_HAIL_LEVEL_MEDIUM = 2,
    VC_HAIL_LEVEL_HEAVY = 3,
    VC_CLOUD_ENABLE_OFF = 0,
    VC_CLOUD_ENABLE_ON = 1,
    VC_HANG_ENABLE_OFF = 0,
    VC_HANG_ENABLE_ON = 1
};

typedef struct vc_record {
    /* 0: no command. 6 resets the scene, in every record that carries it, before the rest of the
     * record is applied: send it once; others do nothing. */
    uint32_t command;
    /* 0: the last command goes on; the scene runs when there was none. 1 run, 2 freeze, 3 stop
     * (until run or a reset), 4 exit (obeyed by a channel that was started with --obey-exit);
     * others do nothing. */
    uint32_t system_cmd;
    /* 0: the last look stays; clear at the start. Look of the sky: 1 clear, 2 overcast, 3 storm,
     * 4 fog; others: the last one stays. */
    uint16_t weather_type;
    /* 0: no rain. 0 none, 1 light, 2 medium, 3 heavy; others: the last one stays. */
    uint16_t rain_level;
    /* 0: no snow. Likewise, snow. */
    uint16_t snow_level;
    /* 0: no hail. Likewise, hail. */
    uint16_t hail_level;
    /* 0: no layer of clouds. Other than 0: there is a layer of clouds, which the cloud fields
     * below describe. */
    uint16_t cloud_enable;
    /* 0: nothing. Handed on as it is; nothing comes of it. */
    int16_t cloud_param1;
    /* 0: nothing. Handed on as it is; nothing comes of it. */
    int16_t cloud_param2;
    /* %, 0 to 100; 0: no clouds in the layer. How much of the sky the layer covers; what is
     * beyond is clamped. */
    int16_t cloud_percent;
    /* m, above mean sea level, 0 to 20000; 0: not above the base: both are ignored. Altitude of
     * the layer's upper side. */
    float cloud_top;
    /* m, above mean sea level, 0 to 20000; 0: counts as 30 m. Altitude of its lower side, 30 m
     * at least; unless it is below the top both are ignored. */
    float cloud_base;
    /* deg, where the wind comes from, clockwise from true north, 0 to 360; 0: from the north.
     * Direction of the wind. */
    float weather_angle;
    /* m/s, 0 and more; 0: calm. Speed of the wind; below 0 is calm too. */
    float weather_value_a;
    /* m, 20 and more; 0: not said: 60 km, or what the weather leaves of them. Visibility, 20 m
     * at least; 0 and below: nothing is said; fog and falls may leave less. */
    int32_t weather_value_b;
    /* Beaufort, 0 to 12; 0: still water. Height and length of the waves; what is beyond is
     * clamped. */
    int16_t sea_code;
    /* cm/s, 0 to 7500; 0: as the Beaufort number has it. Wind over the sea: ripples, whitecaps
     * and streaks, not the waves; counts as at least 0.6 times the wind of the Beaufort number. */
    float sea_speed;
    /* deg, where the waves come from, clockwise from true north, 0 to 360; 0: from the north.
     * Direction of the waves. */
    float sea_angle;
    /* deg, north positive, -90 to 90; 0: the equator. Geodetic latitude (WGS84) of the reference
     * point, the origin of the helicopter's model. */
    double latitude;
    /* deg, east positive, -180 to 180; 0: the prime meridian. Its longitude (WGS84). */
    double longitude;
    /* m, above mean sea level, -500 to 20000; 0: at sea level. Its height; the sea's mean level
     * is 0 everywhere. */
    float altitude;
    /* deg, nose up positive, -90 to 90; 0: level. Second turn of the attitude, about the axis to
     * the right. */
    float pitch;
    /* deg, right side down positive, -180 to 180; 0: level. Third turn, about the axis ahead. */
    float roll;
    /* deg, clockwise from true north, 0 to 360; 0: north. First turn, about the vertical. */
    float heading;
    /* 60 deg/s, 0 to 270; 0: the rotors stand. Both rotors turn by 60 times this in degrees per
     * second; 270 counts as full collective, which the downwash goes by. */
    float rotor_speed;
    /* 0 and more; 0: no echo. Gain: every echo times this, 1 as it is; below 0: no echo. */
    float radar_value;
    /* deg, half to each side of the sector's middle, 0 to 180; 0: a line. Width of the sector
     * that the radar's picture shows. */
    float radar_sector_width;
    /* deg, right of ahead positive, -90 to 90; 0: straight ahead. Where the sector's middle
     * points. */
    float radar_sector_offset;
    /* kg, 1 to 32767; 0: counts as 1 kg. Mass of the load on the hook; below 1 counts as 1. */
    int16_t hang_mass;
    /* m, 0 to 10000; 0: the load hangs at the winch. Cable between winch and load. */
    float hang_length;
    /* 0: the load is stowed, also when it was the operator who put it out. Other than 0: the
     * load is out, with the two above. */
    uint16_t hang_enable;
} vc_record;

/* The feedback, from the channel. */

enum {
    VC_FEEDBACK_SIZE = 108, /* bytes */

    /* Where the fields begin, bytes. */
    VC_FEEDBACK_AT_FRAME = 0,
    VC_FEEDBACK_AT_GROUND_LATITUDE = 4,
    VC_FEEDBACK_AT_GROUND_LONGITUDE = 12,
    VC_FEEDBACK_AT_HEIGHT_ABOVE_GROUND = 20,
    VC_FEEDBACK_AT_WHEEL_FRONT_H = 24,
    VC_FEEDBACK_AT_WHEEL_FRONT_P = 28,
    VC_FEEDBACK_AT_WHEEL_FRONT_R = 32,
    VC_FEEDBACK_AT_WHEEL_LEFT_H = 40,
    VC_FEEDBACK_AT_WHEEL_LEFT_P = 44,
    VC_FEEDBACK_AT_WHEEL_LEFT_R = 48,
    VC_FEEDBACK_AT_WHEEL_RIGHT_H = 56,
    VC_FEEDBACK_AT_WHEEL_RIGHT_P = 60,
    VC_FEEDBACK_AT_WHEEL_RIGHT_R = 64
};

typedef struct vc_feedback {
    /* 1 to 2147483647; 0: never. The channel's frame number: 1 at first, one more with each
     * frame. */
    int32_t frame;
    /* deg, north positive, -90 to 90; 0: the equator; with the two below: no ground within 100
     * km. Geodetic latitude (WGS84) of the ground: the nearest visible surface, land, sea, deck
     * or roof, straight below the helicopter's reference point. */
    double ground_latitude;
    /* deg, east positive, -180 to 180; 0: the prime meridian; as above. Its longitude (WGS84). */
    double ground_longitude;
    /* m, 0 and more; 0: on the ground; as above. Height of the reference point above the ground. */
    float height_above_ground;
    /* deg, clockwise from true north, 0 to 360; 0: north; also when the model has no node
     * "wheel_front". Heading of the front wheel as the scene has it, its own turn against the
     * airframe included. */
    float wheel_front_h;
    /* deg, nose up positive, -90 to 90; 0: level, or no such node. Its pitch. */
    float wheel_front_p;
    /* deg, right side down positive, -180 to 180; 0: level, or no such node. Its roll. */
    float wheel_front_r;
    /* deg, clockwise from true north, 0 to 360; 0: north; also when the model has no node
     * "wheel_left". Heading of the left wheel as the scene has it, its own turn against the
     * airframe included. */
    float wheel_left_h;
    /* deg, nose up positive, -90 to 90; 0: level, or no such node. Its pitch. */
    float wheel_left_p;
    /* deg, right side down positive, -180 to 180; 0: level, or no such node. Its roll. */
    float wheel_left_r;
    /* deg, clockwise from true north, 0 to 360; 0: north; also when the model has no node
     * "wheel_right". Heading of the right wheel as the scene has it, its own turn against the
     * airframe included. */
    float wheel_right_h;
    /* deg, nose up positive, -90 to 90; 0: level, or no such node. Its pitch. */
    float wheel_right_p;
    /* deg, right side down positive, -180 to 180; 0: level, or no such node. Its roll. */
    float wheel_right_r;
} vc_feedback;

/* Bytes. */

typedef char vc_check_float_is_32_bits[sizeof(float) == 4 ? 1 : -1];
typedef char vc_check_double_is_64_bits[sizeof(double) == 8 ? 1 : -1];

static inline void vc_put(uint8_t* to, uint64_t bits, int size) {
    int i;
    for (i = 0; i < size; i++)
        to[i] = (uint8_t)(bits >> (8 * i));
}

static inline uint64_t vc_get(const uint8_t* from, int size) {
    uint64_t bits = 0;
    int i;
    for (i = 0; i < size; i++)
        bits |= (uint64_t)from[i] << (8 * i);
    return bits;
}

/* Bytes of one object as those of another of the same size: no aliasing, no memcpy. */
static inline void vc_copy(void* to, const void* from, int size) {
    int i;
    for (i = 0; i < size; i++)
        ((unsigned char*)to)[i] = ((const unsigned char*)from)[i];
}

static inline void vc_put_float(uint8_t* to, float value) {
    uint32_t bits;
    vc_copy(&bits, &value, 4);
    vc_put(to, bits, 4);
}

static inline void vc_put_double(uint8_t* to, double value) {
    uint64_t bits;
    vc_copy(&bits, &value, 8);
    vc_put(to, bits, 8);
}

static inline float vc_get_float(const uint8_t* from) {
    uint32_t bits = (uint32_t)vc_get(from, 4);
    float value;
    vc_copy(&value, &bits, 4);
    return value;
}

static inline double vc_get_double(const uint8_t* from) {
    uint64_t bits = vc_get(from, 8);
    double value;
    vc_copy(&value, &bits, 8);
    return value;
}

/* Fills a record with what a simulation sends that has nothing to say: calm, clear weather, a
 * light sea, rotors turning. The position is left for the caller, at 0. */
static inline void vc_record_init(vc_record* record) {
    record->command = 0;
    record->system_cmd = 1;
    record->weather_type = 1;
    record->rain_level = 0;
    record->snow_level = 0;
    record->hail_level = 0;
    record->cloud_enable = 0;
    record->cloud_param1 = 0;
    record->cloud_param2 = 0;
    record->cloud_percent = 0;
    record->cloud_top = 0;
    record->cloud_base = 0;
    record->weather_angle = 0;
    record->weather_value_a = 0;
    record->weather_value_b = 0;
    record->sea_code = 2;
    record->sea_speed = 0;
    record->sea_angle = 0;
    record->latitude = 0;
    record->longitude = 0;
    record->altitude = 0;
    record->pitch = 0;
    record->roll = 0;
    record->heading = 0;
    record->rotor_speed = 270;
    record->radar_value = 1;
    record->radar_sector_width = 90;
    record->radar_sector_offset = 0;
    record->hang_mass = 80;
    record->hang_length = 2;
    record->hang_enable = 0;
}

/* Writes the record's bytes, the reserved ones as 0. */
static inline void vc_record_encode(const vc_record* record, uint8_t bytes[VC_RECORD_SIZE]) {
    int i;
    for (i = 0; i < VC_RECORD_SIZE; i++)
        bytes[i] = 0;
    vc_put(bytes + VC_RECORD_AT_COMMAND, (uint64_t)record->command, 4);
    vc_put(bytes + VC_RECORD_AT_SYSTEM_CMD, (uint64_t)record->system_cmd, 4);
    vc_put(bytes + VC_RECORD_AT_WEATHER_TYPE, (uint64_t)record->weather_type, 2);
    vc_put(bytes + VC_RECORD_AT_RAIN_LEVEL, (uint64_t)record->rain_level, 2);
    vc_put(bytes + VC_RECORD_AT_SNOW_LEVEL, (uint64_t)record->snow_level, 2);
    vc_put(bytes + VC_RECORD_AT_HAIL_LEVEL, (uint64_t)record->hail_level, 2);
    vc_put(bytes + VC_RECORD_AT_CLOUD_ENABLE, (uint64_t)record->cloud_enable, 2);
    vc_put(bytes + VC_RECORD_AT_CLOUD_PARAM1, (uint64_t)record->cloud_param1, 2);
    vc_put(bytes + VC_RECORD_AT_CLOUD_PARAM2, (uint64_t)record->cloud_param2, 2);
    vc_put(bytes + VC_RECORD_AT_CLOUD_PERCENT, (uint64_t)record->cloud_percent, 2);
    vc_put_float(bytes + VC_RECORD_AT_CLOUD_TOP, record->cloud_top);
    vc_put_float(bytes + VC_RECORD_AT_CLOUD_BASE, record->cloud_base);
    vc_put_float(bytes + VC_RECORD_AT_WEATHER_ANGLE, record->weather_angle);
    vc_put_float(bytes + VC_RECORD_AT_WEATHER_VALUE_A, record->weather_value_a);
    vc_put(bytes + VC_RECORD_AT_WEATHER_VALUE_B, (uint64_t)record->weather_value_b, 4);
    vc_put(bytes + VC_RECORD_AT_SEA_CODE, (uint64_t)record->sea_code, 2);
    vc_put_float(bytes + VC_RECORD_AT_SEA_SPEED, record->sea_speed);
    vc_put_float(bytes + VC_RECORD_AT_SEA_ANGLE, record->sea_angle);
    vc_put_double(bytes + VC_RECORD_AT_LATITUDE, record->latitude);
    vc_put_double(bytes + VC_RECORD_AT_LONGITUDE, record->longitude);
    vc_put_float(bytes + VC_RECORD_AT_ALTITUDE, record->altitude);
    vc_put_float(bytes + VC_RECORD_AT_PITCH, record->pitch);
    vc_put_float(bytes + VC_RECORD_AT_ROLL, record->roll);
    vc_put_float(bytes + VC_RECORD_AT_HEADING, record->heading);
    vc_put_float(bytes + VC_RECORD_AT_ROTOR_SPEED, record->rotor_speed);
    vc_put_float(bytes + VC_RECORD_AT_RADAR_VALUE, record->radar_value);
    vc_put_float(bytes + VC_RECORD_AT_RADAR_SECTOR_WIDTH, record->radar_sector_width);
    vc_put_float(bytes + VC_RECORD_AT_RADAR_SECTOR_OFFSET, record->radar_sector_offset);
    vc_put(bytes + VC_RECORD_AT_HANG_MASS, (uint64_t)record->hang_mass, 2);
    vc_put_float(bytes + VC_RECORD_AT_HANG_LENGTH, record->hang_length);
    vc_put(bytes + VC_RECORD_AT_HANG_ENABLE, (uint64_t)record->hang_enable, 2);
}

/* Reads a datagram of `size` bytes. 0, with nothing written, when it is no feedback by its
 * size; else 1. */
static inline int vc_feedback_decode(vc_feedback* feedback, const uint8_t* bytes, long size) {
    if (size != VC_FEEDBACK_SIZE) return 0;
    feedback->frame = (int32_t)vc_get(bytes + VC_FEEDBACK_AT_FRAME, 4);
    feedback->ground_latitude = vc_get_double(bytes + VC_FEEDBACK_AT_GROUND_LATITUDE);
    feedback->ground_longitude = vc_get_double(bytes + VC_FEEDBACK_AT_GROUND_LONGITUDE);
    feedback->height_above_ground = vc_get_float(bytes + VC_FEEDBACK_AT_HEIGHT_ABOVE_GROUND);
    feedback->wheel_front_h = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_FRONT_H);
    feedback->wheel_front_p = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_FRONT_P);
    feedback->wheel_front_r = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_FRONT_R);
    feedback->wheel_left_h = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_LEFT_H);
    feedback->wheel_left_p = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_LEFT_P);
    feedback->wheel_left_r = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_LEFT_R);
    feedback->wheel_right_h = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_RIGHT_H);
    feedback->wheel_right_p = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_RIGHT_P);
    feedback->wheel_right_r = vc_get_float(bytes + VC_FEEDBACK_AT_WHEEL_RIGHT_R);
    return 1;
}

#endif
