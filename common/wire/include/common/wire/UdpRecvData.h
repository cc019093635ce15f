// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

static_assert(std::endian::native == std::endian::little,
              "the records are read in place, as they come off the wire");

#pragma pack(push, 1)

/// The host data record: the one message that the flight simulation sends to the visual channel,
/// one record per datagram, at whatever rate it likes. 1490 bytes, little-endian, no padding:
/// several fields are unaligned, so copy a field out before taking its address. Floating-point
/// fields are IEEE 754.
///
/// The flight simulation fills every field; the channel writes none. Each record says everything
/// anew: all of it is applied, in the order of arrival, whatever the record before said, and holds
/// until the next. Nothing is smoothed or extrapolated on the way. So 0 is a value like any other,
/// and what a simulation does not know must still be filled in. What a datagram is short of reads
/// as 0, what it has too much is ignored.
///
/// What each field means, its unit, range and sign, whether it is shown, and what 0 does in it says
/// the table of `recordFields` (WireField.h), against which this is held; docs/connect.md shows it.
/// A value that no helicopter, weather or winch has is named in the channel's log; a pose that is
/// not finite leaves the last one. Frames: geodetic ones are WGS84, the sea's mean level is
/// altitude 0 of the ellipsoid; attitudes are turns from the local east-north-up frame, heading
/// first, then pitch, then roll. Wind and waves are told by where they come from, clockwise from
/// true north.
///
/// Reserved ranges hold nothing: they are never read, and may be filled with anything.
struct UdpRecvData {
    std::uint8_t reserved0[4];

    // Commands.
    std::uint32_t command;
    std::uint32_t system_cmd;

    // Weather.
    std::uint16_t weather_type;
    std::uint16_t rain_level;
    std::uint16_t snow_level;
    std::uint16_t hail_level;
    std::uint8_t reserved20[4];
    std::uint16_t cloud_enable;
    std::int16_t cloud_param1;
    std::int16_t cloud_param2;
    std::int16_t cloud_percent;
    float cloud_top;
    float cloud_base;
    float weather_angle;
    float weather_value_a;
    std::int32_t weather_value_b;
    std::uint8_t reserved52[38];

    // Sea.
    std::int16_t sea_code;
    float sea_speed;
    float sea_angle;
    std::uint8_t reserved100[24];

    // The own helicopter.
    double latitude;
    double longitude;
    float altitude;
    float pitch;
    float roll;
    float heading;
    float rotor_speed;
    std::uint8_t reserved160[260];

    // Weather radar.
    float radar_value;
    float radar_sector_width;
    float radar_sector_offset;
    std::uint8_t reserved432[996];

    // Rescue winch.
    std::int16_t hang_mass;
    float hang_length;
    std::uint16_t hang_enable;
    std::uint8_t reserved1436[54];
};

#pragma pack(pop)

static_assert(sizeof(UdpRecvData) == 1490 && std::is_trivially_copyable_v<UdpRecvData>);
