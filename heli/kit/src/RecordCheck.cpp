// SPDX-License-Identifier: MIT
#include "heli/kit/RecordCheck.h"

#include "common/wire/WireField.h"

#include <algorithm>
#include <cmath>

using namespace ig;

namespace {

constexpr const char* SWAPPED = "plausible with its bytes swapped: does the host send big-endian?";
constexpr const char* EXCHANGED = "exchanged with the longitude?";
constexpr const char* ZEROS = "latitude, longitude and altitude are 0: does the host fill them?";

constexpr std::uint32_t SWAPPED_RESET = 0x06000000;

// Beside a plain record's 1, rounded up from the processor time that `heli_logic_test` measures:
// 0.8 and 3.7, the mean of putting a load out and stowing it.
constexpr int RESET_WORK = 1, WINCH_WORK = 4;

std::span<const std::uint8_t> bytesOf(const UdpRecvData& record) {
    return {reinterpret_cast<const std::uint8_t*>(&record), sizeof record};
}

/// The field's value with its bytes in the other order.
double readSwapped(const WireField& field, const UdpRecvData& record) {
    UdpRecvData other = record;
    auto* bytes = reinterpret_cast<std::uint8_t*>(&other) + field.offset;
    std::reverse(bytes, bytes + field.size);
    return *field.read(bytesOf(other));
}

/// Degrees are not that small by chance, but whole ones with their bytes swapped are.
bool isTiny(double value) { return value != 0 && std::abs(value) < 1e-30; }

SocketComplaint checkField(const WireField& field, const UdpRecvData& record) {
    const double value = *field.read(bytesOf(record));
    // Attitudes that die away get as small as that; a position does not.
    const bool tiny = field.type == WireField::Type::F64 && isTiny(value);
    if (field.plausible.has(value) && !tiny) return {};
    const double other = readSwapped(field, record);
    const bool swapped = field.plausible.has(other) && !isTiny(other);
    if (field.plausible.has(value) && !swapped) return {};
    return {field.name.data(), value, swapped ? SWAPPED : "", {}}; // a literal, which ends with 0
}

/// Whether the field says anything in this record: what describes a switch counts while it is on.
bool isMeant(const WireField& field, const UdpRecvData& record) {
    if (field.name.starts_with("cloud_")) return record.cloud_enable != 0;
    return !field.name.starts_with("hang_") || record.hang_enable != 0;
}

/// The first field out of range, among those that a host has to tell, the pose, or among the
/// others.
SocketComplaint checkFields(const UdpRecvData& record, bool pose) {
    for (const WireField& field : recordFields()) {
        if (!field.plausible.isBounded() || pose != !field.unused || !isMeant(field, record))
            continue;
        const SocketComplaint complaint = checkField(field, record);
        if (complaint.field) return complaint;
    }
    return {};
}

SocketComplaint checkPose(const UdpRecvData& record) {
    SocketComplaint complaint = checkFields(record, true);
    const std::string_view field = complaint.field ? complaint.field : "";
    const bool exchanged = std::abs(record.latitude) <= 180 && std::abs(record.longitude) <= 90;
    if (field == "latitude" && exchanged && !isTiny(record.latitude)) complaint.hint = EXCHANGED;
    if (field != "latitude" && field != "longitude" && record.latitude == 0 &&
        record.longitude == 0 && record.altitude == 0)
        return {"position", 0, ZEROS, {}};
    return complaint;
}

} // namespace

SocketComplaint checkRecord(const UdpRecvData& record) {
    SocketComplaint complaint = checkPose(record);
    if (!complaint.field) complaint = checkFields(record, false);
    if (!complaint.field && record.command == SWAPPED_RESET)
        complaint = {"command", static_cast<double>(record.command), SWAPPED, {}};
    return complaint;
}

int weighRecord(const UdpRecvData& record, const UdpRecvData* before) {
    const bool out = record.hang_enable != 0;
    const bool turns = before ? out != (before->hang_enable != 0) : out;
    return 1 + (record.command == 6 ? RESET_WORK : 0) + (turns ? WINCH_WORK : 0);
}
