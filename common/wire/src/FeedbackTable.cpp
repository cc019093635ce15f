// SPDX-License-Identifier: MIT
#include "TableRow.h"
#include "common/wire/UdpSendData.h"

namespace {

using enum WireField::Type;
using enum WireField::Use;

constexpr double MANY = std::numeric_limits<double>::infinity();

#define ROW(MEMBER, ...) WIRE_ROW(UdpSendData, MEMBER, #MEMBER, __VA_ARGS__)
#define WHEEL_ROW(SIDE, PART, ...)                                                                 \
    WIRE_ROW(UdpSendData, wheel_##SIDE.PART, "wheel_" #SIDE "_" #PART, __VA_ARGS__)
/// The four rows of one wheel, the first at the given offset.
#define WHEEL(SIDE, OFFSET)                                                                        \
    WHEEL_ROW(SIDE, h, .offset = (OFFSET), .type = F32, .use = TOLD, .unit = "deg",                \
              .range = {0, 360}, .sense = "clockwise from true north",                             \
              .zero = "north; also when the model has no node \"wheel_" #SIDE "\"",                \
              .meaning =                                                                           \
                  "Heading of the " #SIDE " wheel as the scene has it, its own turn against "      \
                  "the airframe included"),                                                        \
        WHEEL_ROW(SIDE, p, .offset = (OFFSET) + 4, .type = F32, .use = TOLD, .unit = "deg",        \
                  .range = {-90, 90}, .sense = "nose up positive",                                 \
                  .zero = "level, or no such node", .meaning = "Its pitch"),                       \
        WHEEL_ROW(SIDE, r, .offset = (OFFSET) + 8, .type = F32, .use = TOLD, .unit = "deg",        \
                  .range = {-180, 180}, .sense = "right side down positive",                       \
                  .zero = "level, or no such node", .meaning = "Its roll"),                        \
        WHEEL_ROW(SIDE, reserved, .offset = (OFFSET) + 12, .type = I32, .range = {0, 0},           \
                  .zero = "always", .meaning = "Holds nothing")

constexpr WireField ROWS[] = {
    ROW(frame, .offset = 0, .type = I32, .use = TOLD, .range = {1, 2147483647}, .zero = "never",
        .meaning = "The channel's frame number: 1 at first, one more with each frame"),
    ROW(ground_latitude, .offset = 4, .type = F64, .use = TOLD, .unit = "deg", .range = {-90, 90},
        .sense = "north positive",
        .zero = "the equator; with the two below: no ground within 100 km",
        .meaning =
            "Geodetic latitude (WGS84) of the ground: the nearest visible surface, land, sea, "
            "deck or roof, straight below the helicopter's reference point"),
    ROW(ground_longitude, .offset = 12, .type = F64, .use = TOLD, .unit = "deg",
        .range = {-180, 180}, .sense = "east positive", .zero = "the prime meridian; as above",
        .meaning = "Its longitude (WGS84)"),
    ROW(height_above_ground, .offset = 20, .type = F32, .use = TOLD, .unit = "m",
        .range = {0, MANY}, .zero = "on the ground; as above",
        .meaning = "Height of the reference point above the ground"),
    WHEEL(front, 24),
    WHEEL(left, 40),
    WHEEL(right, 56),
    ROW(reserved72, .offset = 72),
};
static_assert(coversAll(ROWS, sizeof(UdpSendData)));

} // namespace

std::span<const WireField> feedbackFields() { return ROWS; }
