// SPDX-License-Identifier: MIT
#include "heli/kit/RecordCheck.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace ig;

namespace {

constexpr const char* SWAPPED = "plausible with its bytes swapped: does the host send big-endian?";
constexpr const char* EXCHANGED = "exchanged with the longitude?";
constexpr const char* ZEROS = "latitude, longitude and altitude are 0: does the host fill them?";

/// Values that a field can have, generously: a flight at the edge of one is not told off.
struct Range {
    const char* field;
    std::size_t offset;
    double low, high;
};
constexpr Range PLACE[] = {{"latitude", offsetof(UdpRecvData, latitude), -90, 90},
                           {"longitude", offsetof(UdpRecvData, longitude), -360, 360}};
constexpr double ANY = 1e6; ///< what counts is that the value is finite and no swapped one
constexpr Range ALWAYS[] = {
    {"altitude", offsetof(UdpRecvData, altitude), -500, 20000},
    {"pitch", offsetof(UdpRecvData, pitch), -360, 360},
    {"roll", offsetof(UdpRecvData, roll), -360, 360},
    {"heading", offsetof(UdpRecvData, heading), -360, 360},
    {"rotor_speed", offsetof(UdpRecvData, rotor_speed), -1000, 1000},
    {"weather_angle", offsetof(UdpRecvData, weather_angle), -720, 720},
    {"weather_value_a", offsetof(UdpRecvData, weather_value_a), -ANY, ANY},
    {"sea_speed", offsetof(UdpRecvData, sea_speed), -ANY, ANY},
    {"sea_angle", offsetof(UdpRecvData, sea_angle), -720, 720},
    {"radar_value", offsetof(UdpRecvData, radar_value), -ANY, ANY},
    {"radar_sector_width", offsetof(UdpRecvData, radar_sector_width), -720, 720},
    {"radar_sector_offset", offsetof(UdpRecvData, radar_sector_offset), -720, 720}};
constexpr Range CLOUDS[] = {{"cloud_top", offsetof(UdpRecvData, cloud_top), -ANY, ANY},
                            {"cloud_base", offsetof(UdpRecvData, cloud_base), -ANY, ANY}};
constexpr Range WINCH[] = {{"hang_length", offsetof(UdpRecvData, hang_length), 0, 10000}};

constexpr std::uint32_t SWAPPED_RESET = 0x06000000;

// Beside a plain record's 1, rounded up from the processor time that `heli_logic_test` measures:
// 0.8 and 3.7, the mean of putting a load out and stowing it.
constexpr int RESET_WORK = 1, WINCH_WORK = 4;

/// The field as it is in the record, and as it is with its bytes in the other order.
template <class T>
void readBoth(const UdpRecvData& record, std::size_t offset, double (&values)[2]) {
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, reinterpret_cast<const unsigned char*>(&record) + offset, sizeof bytes);
    for (double& value : values) {
        T number;
        std::memcpy(&number, bytes, sizeof bytes);
        value = number;
        std::reverse(std::begin(bytes), std::end(bytes));
    }
}

bool isWithin(const Range& range, double value) {
    return value >= range.low && value <= range.high; // no NaN
}

/// Degrees are not that small by chance, but whole ones with their bytes swapped are.
bool isTiny(double value) { return value != 0 && std::abs(value) < 1e-30; }

template <class T, std::size_t N>
SocketComplaint checkRanges(const UdpRecvData& record, const Range (&ranges)[N]) {
    for (const Range& range : ranges) {
        double values[2];
        readBoth<T>(record, range.offset, values);
        const bool swapped = isWithin(range, values[1]) && !isTiny(values[1]);
        // Attitudes that die away get as small as that; a position does not.
        const bool tiny = sizeof(T) == sizeof(double) && swapped && isTiny(values[0]);
        if (!isWithin(range, values[0]) || tiny)
            return {range.field, values[0], swapped ? SWAPPED : "", {}};
    }
    return {};
}

SocketComplaint checkPlace(const UdpRecvData& record) {
    SocketComplaint complaint = checkRanges<double>(record, PLACE);
    const bool exchanged =
        std::abs(record.latitude) <= 180 && std::abs(record.longitude) <= PLACE[0].high;
    if (complaint.field == PLACE[0].field && exchanged && !isTiny(record.latitude))
        complaint.hint = EXCHANGED;
    if (!complaint.field && record.latitude == 0 && record.longitude == 0 && record.altitude == 0)
        return {"position", 0, ZEROS, {}};
    return complaint;
}

} // namespace

SocketComplaint checkRecord(const UdpRecvData& record) {
    SocketComplaint complaint = checkPlace(record);
    if (!complaint.field) complaint = checkRanges<float>(record, ALWAYS);
    if (!complaint.field && record.cloud_enable) complaint = checkRanges<float>(record, CLOUDS);
    if (!complaint.field && record.hang_enable) complaint = checkRanges<float>(record, WINCH);
    if (!complaint.field && record.command == SWAPPED_RESET)
        complaint = {"command", static_cast<double>(record.command), SWAPPED, {}};
    return complaint;
}

int weighRecord(const UdpRecvData& record, const UdpRecvData* before) {
    const bool out = record.hang_enable != 0;
    const bool turns = before ? out != (before->hang_enable != 0) : out;
    return 1 + (record.command == 6 ? RESET_WORK : 0) + (turns ? WINCH_WORK : 0);
}
