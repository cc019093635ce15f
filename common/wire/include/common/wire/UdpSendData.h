// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

static_assert(std::endian::native == std::endian::little,
              "the datagram is written in place, as it goes onto the wire");

#pragma pack(push, 1)

/// Attitude of one wheel node in the local geodetic frame; all zero when the model lacks the wheel.
struct UdpWheelAttitude {
    float h; ///< heading, degrees
    float p; ///< pitch, degrees
    float r; ///< roll, degrees
    std::int32_t reserved;
};

/// The feedback datagram: what the visual channel sends to the flight simulation once per frame.
/// 108 bytes, little-endian, no padding (both doubles are unaligned).
struct UdpSendData {
    std::int32_t frame;        ///< the engine's frame number at sending time
    double ground_latitude;    ///< of the surface point straight below the helicopter, degrees
    double ground_longitude;   ///< degrees; both 0 when nothing lies below within 100 km
    float height_above_ground; ///< helicopter altitude minus that point's, metres; 0 likewise
    UdpWheelAttitude wheel_front;
    UdpWheelAttitude wheel_left;
    UdpWheelAttitude wheel_right;
    std::uint8_t reserved72[36];
};

#pragma pack(pop)

static_assert(sizeof(UdpSendData) == 108 && std::is_trivially_copyable_v<UdpSendData>);
static_assert(offsetof(UdpSendData, ground_latitude) == 4 &&
              offsetof(UdpSendData, height_above_ground) == 20 &&
              offsetof(UdpSendData, wheel_left) == 40 && offsetof(UdpSendData, reserved72) == 72);
