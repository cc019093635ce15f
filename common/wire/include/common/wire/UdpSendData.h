// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

static_assert(std::endian::native == std::endian::little,
              "the datagram is written in place, as it goes onto the wire");

#pragma pack(push, 1)

/// Attitude of one wheel of the helicopter's model as it is in the scene, its own turn against the
/// airframe included: from the local east-north-up frame heading first, then pitch, then roll. All
/// 0 when the model has no node of that name.
struct UdpWheelAttitude {
    float h;
    float p;
    float r;
    std::int32_t reserved; ///< 0
};

/// The feedback datagram: what the visual channel sends to the flight simulation, one at the end of
/// every frame, also while the scene stands still and before any record has come. 108 bytes,
/// little-endian, no padding (both doubles are unaligned). The channel fills every field, from the
/// scene as this frame shows it: the pose is that of the last record applied.
///
/// The ground is the nearest visible surface of the scene, be it land, sea, deck or roof, straight
/// below the helicopter's reference point, the origin of its model. When there is none within
/// 100 km its three fields are 0.
///
/// Units, ranges and signs says the table of `feedbackFields` (WireField.h), against which this is
/// held; docs/connect.md shows it.
struct UdpSendData {
    std::int32_t frame;
    double ground_latitude;
    double ground_longitude;
    float height_above_ground;
    UdpWheelAttitude wheel_front; ///< of the node "wheel_front"; the others likewise
    UdpWheelAttitude wheel_left;
    UdpWheelAttitude wheel_right;
    std::uint8_t reserved72[36]; ///< 0
};

#pragma pack(pop)

static_assert(sizeof(UdpSendData) == 108 && std::is_trivially_copyable_v<UdpSendData>);
