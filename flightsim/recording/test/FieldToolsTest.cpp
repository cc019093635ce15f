// SPDX-License-Identifier: MIT
#include "flightsim/recording/FieldTools.h"
#include "flightsim/testkit/TestFiles.h"

#include <cstdlib>
#include <cstring>

namespace flightsim {
namespace {

/// Puts a value at its place in a datagram, without the table.
template <class T>
void put(Bytes& bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

/// What `print` writes.
template <class Print>
std::string printed(const Print& print) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* out = open_memstream(&text, &size);
    print(out);
    std::fclose(out);
    std::string result(text, size);
    std::free(text);
    return result;
}

TEST(FieldTools, DumpsAndSumsUpWhatLiesAtTheFieldsPlaces) {
    Bytes record(1490), feedback(108);
    put(record, 12, std::uint16_t{3});
    put(record, 124, 19.712466011399407);
    put(record, 140, 0.1F);
    put(feedback, 20, -7.25F);
    Bytes rougher = record, shorter(130);
    put(rougher, 90, std::int16_t{-3});
    TestFile file("fields");
    writeRecording(file.path, RecordingFormat::whole,
                   {{0, record}, {1000, feedback}, {2000, rougher}, {3000, shorter}});
    std::string warning, message;
    const auto dump = [&](const DumpOptions& options) {
        return printed([&](std::FILE* out) {
            EXPECT_TRUE(dumpRecording(options, out, warning, message)) << message;
        });
    };
    DumpOptions options;
    options.in = file.path;
    const std::string all = dump(options);
    for (const char* part : {"record 0 at 0.000000 s, 1490 bytes\n  command              0\n",
                             "  weather_type         3 (storm)\n", "latitude             19.7124",
                             "record 3 at 0.000003 s, 130 bytes", "longitude            - deg"})
        EXPECT_NE(all.find(part), std::string::npos) << part << all;
    EXPECT_EQ(all.find("reserved"), std::string::npos);
    options.changes = true;
    options.selection.until_number = 3;
    EXPECT_EQ(dump(options).substr(all.find("record 2")),
              "record 2 at 0.000002 s, 1490 bytes\n  sea_code             -3 Beaufort\n");
    options.csv = true;
    for (const char* name : {"latitude", "altitude"})
        options.fields.push_back(findField(fieldsOf(false), name));
    EXPECT_EQ(dump(options), "number,time_s,size,latitude,altitude\n"
                             "0,0.000000000,1490,19.712466011399407,0.1\n"
                             "2,0.000002000,1490,19.712466011399407,0.1\n");
    DumpOptions back{file.path, {}, true, true, false, {&fieldsOf(true)[3]}};
    EXPECT_EQ(dump(back), "number,time_s,size,height_above_ground\n1,0.000001000,108,-7.25\n");
    back.selection.until_number = 1;
    EXPECT_FALSE(dumpRecording(back, stdout, warning, message)) << "no feedback in that part";

    const std::string sums =
        printed([&](std::FILE* out) { EXPECT_TRUE(printFieldSummary(file.path, out, message)); });
    const auto row = [](const char* name, const char* first, const char* last, const char* least,
                        const char* greatest, int changes, const char* unit) {
        char text[200];
        std::snprintf(text, sizeof text, "\n%-20s %20s %20s %14s %14s %8d%s\n", name, first, last,
                      least, greatest, changes, unit);
        return std::string(text);
    };
    for (const std::string& part :
         {row("weather_type", "3 (storm)", "0", "0", "3", 1, ""),
          row("sea_code", "0", "0", "-3", "0", 2, "  Beaufort"),
          row("height_above_ground", "-7.25", "-7.25", "-7.25", "-7.25", 0, "  m")})
        EXPECT_NE(sums.find(part), std::string::npos) << part << sums;
}

} // namespace
} // namespace flightsim
