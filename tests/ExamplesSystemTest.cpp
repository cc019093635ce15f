// SPDX-License-Identifier: MIT

// The senders that integrators begin with, started as these would, against a channel that runs.

#include "ChannelRun.h"
#include "common/wire/WireField.h"

#include <cmath>
#include <gtest/gtest.h>
#include <regex>

namespace {

/// Metres from the pad of the demo world, which is at 12.45 m.
double east(double longitude) { return (longitude + 155.0625125) * 104785; }
double north(double latitude) { return (latitude - 19.7124631) * 110690; }
constexpr double PAD = 12.45;

struct Examples : testing::Test {
    void SetUp() override {
        run.folder.write("config/Logic_Nerith_Heli_Final.cfg",
                         "recv_from_flightSimulation_port: " + std::to_string(run.receive_port) +
                             "\nsend_to_flightSimulation_port: " + port + "\n");
        ASSERT_TRUE(run.start("--fps 60")) << run.beginning;
    }
    /// Starts an example and calls `check(height, latitude, longitude)` for each line that tells
    /// of feedback; the channel says at its end that so many records came and all were right.
    template <class Check>
    void fly(const std::string& path, const std::string& arguments, const char* records,
             Check&& check) {
        Program example(path, arguments);
        const std::regex form(": ([-.0-9]+) m above .* ([-.0-9]+) longitude ([-.0-9]+)\n");
        std::smatch number;
        int lines = 0;
        for (std::string line; !(line = example.line()).empty();)
            if (std::regex_search(line, number, form)) {
                lines++;
                check(std::stod(number[1]), std::stod(number[2]), std::stod(number[3]));
            }
        EXPECT_GT(lines, 0);
        EXPECT_EQ(example.finish(), 0);
        const std::string all = std::string(records) + " received, " + records + " applied";
        for (int i = 0; i < 20 && run.program->line().find(all) == std::string::npos; i++) {
        }
        EXPECT_EQ(run.stop(), 0);
        const std::string right = ", 0 lost, 0 short, 0 long, 0 implausible, 0 from "
                                  "others, 0 empty; 1 resets";
        EXPECT_NE(run.output.find(all + right), std::string::npos) << run.output;
    }
    ChannelRun run;
    const std::string port = std::to_string(UdpPeer::freePort());
};

TEST_F(Examples, OneInPythonRisesAboveThePadAndHearsHowHigh) {
    double height = 0;
    fly("examples/send.py",
        "--rate 50 --seconds 3 --feedback-port " + port + " --port " +
            std::to_string(run.receive_port),
        "150", [&height](double now, double latitude, double longitude) {
            EXPECT_LT(std::hypot(east(longitude), north(latitude)), 0.2);
            height = now;
        });
    EXPECT_GT(height, 1.22 + 0.5); // of what it sent some time before
    EXPECT_LT(height, 1.22 + 6);
    // It states its own table.
    std::ifstream file("examples/send.py");
    const std::regex row("\"(\\w+)\": (\\(\\d+, \"\\w\"\\))");
    std::string text, stated, known;
    for (std::string line; std::getline(file, line); text += line)
        for (std::sregex_iterator it(line.begin(), line.end(), row), end; it != end; ++it)
            stated += (*it)[1].str() + (*it)[2].str();
    for (const WireField& field : recordFields()) {
        const std::string unused = std::to_string(std::lround(field.unused.value_or(0)));
        EXPECT_TRUE(unused == "0" || // else as a host sends it that has nothing to say
                    text.find('"' + std::string(field.name) + "\": " + unused) < text.size())
            << field.name;
        if (field.type != WireField::Type::BYTES)
            known += std::string(field.name) + '(' + std::to_string(field.offset) + ", \"" +
                     "HhIifd"[static_cast<int>(field.type)] + "\")";
    }
    EXPECT_EQ(stated, known);
}

TEST_F(Examples, OneInCIsBuiltFromTwoFilesAndFliesItsCircleNoseAheadAndBanked) {
    const std::string host = run.folder.file("host").c_str();
    for (const char* name : {"host.c", "visual_channel_wire.h"})
        std::filesystem::copy(std::string("examples/") + name, run.folder.path());
    Program compiler("/usr/bin/cc", "-std=c99 -pedantic -Wall -Wextra -Wconversion -Werror -o " +
                                        host + ' ' + host + ".c -lm");
    ASSERT_EQ(compiler.finish(), 0);
    fly(host, std::to_string(run.receive_port) + ' ' + port + " 2", "200",
        [](double height, double latitude, double longitude) {
            EXPECT_NEAR(std::hypot(east(longitude), north(latitude)), 300, 0.5);
            EXPECT_NEAR(height, 100 - PAD, 10); // the land there is nearly level
        });
    const ChannelRun::Frame last = run.readTrace().back();
    const double ahead = std::atan2(east(last.longitude), north(last.latitude)) * 180 / M_PI + 90;
    EXPECT_NEAR(std::remainder(last.heading - ahead, 360), 0, 0.1);
    EXPECT_NEAR(last.roll, 17.0, 0.1); // 30 m/s in 300 m
    EXPECT_NEAR(last.altitude, 100, 1e-3);
}

} // namespace
