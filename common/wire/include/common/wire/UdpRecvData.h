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
/// and what a simulation does not know must still be filled in; where 0 means that nothing is said
/// the field tells. What a datagram is short of reads as 0, what it has too much is ignored.
///
/// Where a field goes:
///
///   shown      the logic shows it itself.
///   announced  the logic hands it to the application on a signal of `LogicBase`; what is said here
///              is what `visual_channel` makes of it, as long as its operator does not ask for
///              something else (docs/weather_and_ships.md has the times and limits).
///   not shown  announced, but nothing comes of it.
///
/// A value that no helicopter, weather or winch has is named in the channel's log; a pose that is
/// not finite leaves the last one. Frames: geodetic ones are WGS84, the sea's mean level is
/// altitude 0 of the ellipsoid; attitudes are turns from the local east-north-up frame, heading
/// first, then pitch, then roll. Wind and waves are told by where they come from, clockwise from
/// true north.
///
/// Reserved ranges hold nothing: they are never read, and may be filled with anything.
struct UdpRecvData {
    std::uint8_t reserved0[4];

    // --- Commands.

    /// Shown. 6 resets the scene, in every record that carries it, before the rest of the record is
    /// applied: send it once. Others, 0 too: nothing.
    std::uint32_t command;
    /// Announced. 1 run, 2 freeze, 3 stop (until run or a reset), 4 exit (obeyed by a channel that
    /// was told to). Others, 0 too: the last command goes on; a scene that was told nothing runs.
    std::uint32_t system_cmd;

    // --- Weather. The picture follows a change within seconds, the wind at once.

    /// Announced. Look of the sky: 1 clear, 2 overcast, 3 storm, 4 fog. Others, 0 too: the last one
    /// stays; clear at the start.
    std::uint16_t weather_type;
    /// Announced, as are the next two. 0 none, 1 light, 2 medium, 3 heavy; others: the last one
    /// stays.
    std::uint16_t rain_level;
    std::uint16_t snow_level;
    std::uint16_t hail_level;
    std::uint8_t reserved20[4];
    std::uint16_t cloud_enable;   ///< announced; 0: no layer of clouds, other values: the one below
    std::int16_t cloud_param1;    ///< not shown
    std::int16_t cloud_param2;    ///< not shown
    std::int16_t cloud_percent;   ///< announced; cover, 0 to 100 per cent, what is beyond clamped
    float cloud_top;              ///< announced; altitude of the layer's upper side, metres
    float cloud_base;             ///< announced; of its lower side; not below the top: both ignored
    float weather_angle;          ///< announced; where the wind comes from, degrees
    float weather_value_a;        ///< announced; wind speed, m/s; 0 and below: calm
    std::int32_t weather_value_b; ///< announced; visibility, metres, 20 at least; 0 and below: not
                                  ///< said, so that 60 km and what the weather leaves of them hold
    std::uint8_t reserved52[38];

    // --- Sea. The waves follow a change within 10 s.

    /// Announced. Beaufort number of the waves, 0 (still water) to 12; what is beyond is clamped.
    std::int16_t sea_code;
    /// Shown. Wind over the sea, cm/s, 0 to 7500: ripples, whitecaps and streaks, not the waves.
    /// Counts as at least 0.6 times the wind of the Beaufort number; 0: as that.
    float sea_speed;
    float sea_angle; ///< shown; where the waves come from, degrees
    std::uint8_t reserved100[24];

    // --- The own helicopter, shown where its reference point, the origin of its model, is told to
    // be. All 0 is a place, in the Gulf of Guinea.

    double latitude;   ///< shown; geodetic, degrees, north positive, −90 to 90
    double longitude;  ///< shown; degrees, east positive, −180 to 180
    float altitude;    ///< shown; above the ellipsoid, metres
    float pitch;       ///< shown; degrees, nose up positive
    float roll;        ///< shown; degrees, right side down positive
    float heading;     ///< shown; degrees, clockwise from true north
    float rotor_speed; ///< shown; both rotors turn by 60 × value degrees per second, and 270 counts
                       ///< as full collective, which the downwash goes by; 0: they stand
    std::uint8_t reserved160[260];

    // --- Weather radar, when the operator looks at it.

    float radar_value; ///< shown; gain: every echo times this; 1 as it is, 0 and below: no echo
    float radar_sector_width;  ///< shown; degrees, half to each side of its middle; 0: a line
    float radar_sector_offset; ///< shown; where its middle points, degrees to the right of ahead
    std::uint8_t reserved432[996];

    // --- Rescue winch.

    std::int16_t hang_mass;    ///< shown; of the load, kg; below 1: counts as 1
    float hang_length;         ///< shown; cable between winch and load, metres, of any length
    std::uint16_t hang_enable; ///< shown; other than 0: the load is out, with the two above;
                               ///< 0: stowed, also when it was the operator who put it out
    std::uint8_t reserved1436[54];
};

#pragma pack(pop)

static_assert(sizeof(UdpRecvData) == 1490 && std::is_trivially_copyable_v<UdpRecvData>);
static_assert(offsetof(UdpRecvData, cloud_enable) == 24 && offsetof(UdpRecvData, sea_code) == 90 &&
              offsetof(UdpRecvData, latitude) == 124 && offsetof(UdpRecvData, rotor_speed) == 156 &&
              offsetof(UdpRecvData, radar_value) == 420 &&
              offsetof(UdpRecvData, hang_mass) == 1428 &&
              offsetof(UdpRecvData, hang_enable) == 1434);
