// SPDX-License-Identifier: MIT
#include "flightsim/link/Feedback.h"
#include "flightsim/testkit/TestFiles.h"

#include <limits>

namespace flightsim {
namespace {

/// A feedback datagram laid out by hand.
Bytes feedback(std::int32_t frame, double latitude = 19.7125, float height = 12.5f) {
    ByteBuilder b;
    b.add(frame).add(latitude).add(-155.0625).add(height);
    for (int wheel = 0; wheel < 3; wheel++)
        b.add(40.5f + float(wheel)).add(1.25f).add(-2.5f).add(std::int32_t{0});
    return b.add(Bytes(36)).bytes;
}

TEST(Feedback, CountsGapsRepeatsRestartsAndWrongSizes) {
    FeedbackMonitor monitor;
    std::int64_t time_ns = 1'000;
    const auto take = [&](std::int32_t frame) {
        monitor.take(feedback(frame), time_ns += 50'000'000);
    };
    constexpr auto GREATEST = std::numeric_limits<std::int32_t>::max();
    for (const int frame : {100, 101, 105, 105, 106, GREATEST, -GREATEST - 1})
        take(frame); // 102 to 104 missing, then 107 to the greatest; it wraps
    for (const std::size_t size : {0u, 107u, 109u, 2048u})
        EXPECT_FALSE(monitor.take(Bytes(size), time_ns));
    take(GREATEST); // a new channel
    EXPECT_EQ(monitor.getStats().received, 8);
    EXPECT_EQ(monitor.getStats().malformed, 4);
    EXPECT_EQ(monitor.getStats().gaps, 2);
    EXPECT_EQ(monitor.getStats().skipped, 3 + (std::int64_t{GREATEST} - 107));
    EXPECT_EQ(monitor.getStats().duplicated, 1);
    EXPECT_EQ(monitor.getStats().backward, 1);
    EXPECT_NEAR(monitor.getStats().rate(), 20.0, 1e-9);
}

TEST(Feedback, TableShowsTheLastSecond) {
    FeedbackMonitor monitor;
    FeedbackTable table;
    EXPECT_NE(table.row(1, 50, monitor).find("nothing"), std::string::npos);
    for (int i = 0; i < 60; i++)
        monitor.take(feedback(i), i);
    const std::string row = table.row(3, 150, monitor); // 60 datagrams in 2 s
    for (const char* text : {" 150 ", " 60 ", " 30.0 ", " 59 ", "19.7125000", "42.5/1.2/-2.5"})
        EXPECT_NE(row.find(text), std::string::npos) << text << " in " << row;
    EXPECT_NE(table.row(4, 200, monitor).find(" 0.0 "), std::string::npos);
    monitor.take(feedback(60, -1e300, std::numeric_limits<float>::quiet_NaN()), 60);
    const std::string wild = table.row(5, 250, monitor);
    EXPECT_NE(wild.find("-1e+300"), std::string::npos) << wild;
}

TEST(Feedback, CsvKeepsEveryDigit) {
    TestFile file("feedback.csv");
    FeedbackMonitor monitor;
    FeedbackCsv csv;
    std::string message;
    ASSERT_TRUE(csv.open(file.path, message)) << message;
    csv.write(0.25, 7, *monitor.take(feedback(8, 19.712466011399407, 0.1f), 0));
    ASSERT_TRUE(csv.close(message)) << message;
    const Bytes bytes = file.read();
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_EQ(text.substr(text.find('\n') + 1),
              "0.250000,7,8,19.712466011399407,-155.0625,0.1,40.5,1.25,-2.5,41.5,1.25,-2.5,42.5,"
              "1.25,-2.5\n");
    ASSERT_TRUE(csv.open("/dev/full", message));
    EXPECT_FALSE(csv.close(message)) << "a full disk shows at the end";
    EXPECT_EQ(message, "cannot write \"/dev/full\": No space left on device");
}

} // namespace
} // namespace flightsim
