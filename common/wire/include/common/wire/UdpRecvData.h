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
/// one record per datagram. 1490 bytes, little-endian, no padding: several fields are unaligned, so
/// copy a field out before taking its address. Reserved ranges are never read; a sender may fill
/// them with anything.
struct UdpRecvData {
    std::uint8_t reserved0[4];
    std::uint32_t command;      ///< 6 resets the scene before the rest is applied; others: nothing
    std::uint32_t system_cmd;   ///< 1 to 4, announced as CMD_TYPE 2, 1, 3, 4
    std::uint16_t weather_type; ///< 1 to 4, announced as WEATHER_TYPE 0 to 3
    std::uint16_t rain_level;   ///< 0 to 3
    std::uint16_t snow_level;   ///< 0 to 3
    std::uint16_t hail_level;   ///< 0 to 3
    std::uint8_t reserved20[4];
    std::uint16_t cloud_enable; ///< clouds on when not zero
    std::int16_t cloud_param1;
    std::int16_t cloud_param2;
    std::int16_t cloud_percent;   ///< cloud cover, per cent
    float cloud_top;              ///< upper altitude of the cloud layer, metres
    float cloud_base;             ///< lower altitude of the cloud layer, metres
    float weather_angle;          ///< degrees; announced as −90 − value
    float weather_value_a;        ///< announced unchanged
    std::int32_t weather_value_b; ///< announced divided by 300000
    std::uint8_t reserved52[38];
    std::int16_t sea_code;
    float sea_speed; ///< the ocean's speed setting is 0.01 × value
    float sea_angle; ///< degrees
    std::uint8_t reserved100[24];
    double latitude;   ///< own helicopter, geodetic, degrees
    double longitude;  ///< degrees
    float altitude;    ///< above the ellipsoid, metres
    float pitch;       ///< degrees, nose up
    float roll;        ///< degrees, right side down
    float heading;     ///< degrees, clockwise from true north
    float rotor_speed; ///< 270 is full collective
    std::uint8_t reserved160[260];
    float radar_value;
    float radar_sector_width;  ///< degrees
    float radar_sector_offset; ///< degrees
    std::uint8_t reserved432[996];
    std::int16_t hang_mass;    ///< mass of the load on the winch hook
    float hang_length;         ///< winch cable length, metres
    std::uint16_t hang_enable; ///< winch in use when not zero; 0 releases it
    std::uint8_t reserved1436[54];
};

#pragma pack(pop)

static_assert(sizeof(UdpRecvData) == 1490 && std::is_trivially_copyable_v<UdpRecvData>);
static_assert(offsetof(UdpRecvData, cloud_enable) == 24 && offsetof(UdpRecvData, sea_code) == 90 &&
              offsetof(UdpRecvData, latitude) == 124 && offsetof(UdpRecvData, rotor_speed) == 156 &&
              offsetof(UdpRecvData, radar_value) == 420 &&
              offsetof(UdpRecvData, hang_mass) == 1428 &&
              offsetof(UdpRecvData, hang_enable) == 1434);
