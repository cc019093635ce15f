// SPDX-License-Identifier: MIT
#include "testkit/Program.h"
#include "common/wire/UdpRecvData.h"
#include "flightsim/link/UdpLink.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace flightsim {
namespace {

const std::string RECORDED_FLIGHT = "data/recordings/helicopter_flight.hrec";

std::string temporary(const std::string& name) {
    return testing::TempDir() + "flight_sim_" + std::to_string(getpid()) + "_" + name;
}

void expectRun(const std::string& arguments, int status, const std::string& text) {
    std::string output;
    EXPECT_EQ(Program(PROGRAM_PATH, arguments).finish(&output), status) << arguments << "\n"
                                                                        << output;
    EXPECT_NE(output.find(text), std::string::npos) << arguments << "\n" << output;
}

TEST(Program, AnswersWrongUseAndBadFilesWithOneMessage) {
    expectRun("replay --help", 0, "--speed");
    expectRun("", 2, "subcommand");
    expectRun("replay x --speed nan", 2, "--speed");
    expectRun("replay x --hold 1 --loop", 2, "--hold");
    expectRun("send heading=1 --seconds 1", 2, "--rate");
    expectRun("monitor --no-records --port 5", 2, "--port");
    expectRun("monitor --seconds 0.1 --no-records --no-feedback", 2, "excludes --no-feedback");
    expectRun("dump " + RECORDED_FLIGHT + " --fields see_code", 1, "nearest is \"sea_code\"");
    expectRun("replay absent.hrec", 1, "cannot open \"absent.hrec\"");
    expectRun("info CMakeLists.txt", 1, "\"CMakeLists.txt\": byte 0: not a recording");
    expectRun("fly .", 1, "cannot read \".\": a folder");
    const std::string pipe = temporary("pipe"); // nobody will ever write to it
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string command : {"fly ", "replay ", "info "})
        expectRun(command + pipe, 1, "not a regular file");
    std::filesystem::remove(pipe);
    expectRun("fly CMakePresets.json", 1, "CMakePresets.json:2:3: a mission has no key");
    expectRun("replay " + RECORDED_FLIGHT + " --to 127.0.0.1", 1, "not an address");
}

TEST(Program, AFileThatCannotBeWrittenIsNamedOnceAndNothingOfItStays) {
    namespace fs = std::filesystem;
    const std::string folder = temporary("outputs"), data = fs::current_path() / "data";
    const std::string recording = data + "/recordings/helicopter_flight.hrec ";
    const std::string link = "--seconds 0.1 --to 127.0.0.1:9 --quiet --listen 0 ";
    const std::string fly = "fly " + data + "/missions/demo.yaml " + link;
    fs::create_directory(folder);
    for (const std::string& command :
         {std::string("record --port 0 "), "cut " + recording, "convert " + recording,
          fly + "--record ", fly + "--feedback ", "replay " + recording + link + "--feedback "})
        for (const std::string file : {"full.out", "/dev/full", "none/x.out", "."}) {
            // No file may grow: a full disk.
            Program run("/bin/sh", "-c 'ulimit -f 0; cd " + folder + "; exec " PROGRAM_PATH " " +
                                       command + file + "'");
            std::string output;
            EXPECT_EQ(run.finish(&output), 1) << command << file;
            const std::size_t at = output.find('"' + file + '"');
            ASSERT_NE(at, std::string::npos) << command << file << "\n" << output;
            EXPECT_EQ(output.find("flight_sim ", at), std::string::npos) << output;
            EXPECT_TRUE(fs::is_empty(folder)) << command << file;
        }
    fs::remove_all(folder);
    expectRun("info " + RECORDED_FLIGHT + " > /dev/full", 1, "cannot print to the end");
}

TEST(Program, FliesTheDemoMissionWithoutSending) {
    std::string output;
    EXPECT_EQ(Program(PROGRAM_PATH, "fly data/missions/demo.yaml --dry-run").finish(&output), 0);
    EXPECT_NE(output.find("mission   demo, 15 legs, 200.5 s"), std::string::npos) << output;
    EXPECT_EQ(std::ranges::count(output, '\n'), 204) << "a row per second, two heads";
    expectRun("fly data/missions/demo.yaml --dry-run --duration 20", 0,
              "warning: the mission takes");
}

TEST(Program, DescribesTheRecordedFlight) {
    std::string output;
    EXPECT_EQ(Program(PROGRAM_PATH, "info " + RECORDED_FLIGHT).finish(&output), 0);
    // Figures of an independent decoder.
    for (const char* text :
         {"2976 over 62.00 s, 47.99 Hz", "mean 20.84, sd 7.48, p50 20.00, p99 55.34, max 311.67",
          "2976 of 1490 bytes", "6 in record 311"})
        EXPECT_NE(output.find(text), std::string::npos) << text << "\n" << output;
    expectRun("info " + RECORDED_FLIGHT + " --fields", 0, "1 (clear)         2 (overcast)");
    expectRun("dump " + RECORDED_FLIGHT + " --csv --record 311 --count 1 --fields command", 0,
              "\n311,8.668550553,1490,6\n");
}

TEST(Program, NamesAPortInUseAndCanDoWithoutIt) {
    UdpSocket taken, channel;
    std::string message;
    ASSERT_TRUE(taken.bind(0, message) && channel.bind(0, message)) << message;
    const std::string line =
        "replay " + RECORDED_FLIGHT +
        " --hold 1500 --seconds 0.1 --to 127.0.0.1:" + std::to_string(channel.getPort());
    const std::string port = std::to_string(taken.getPort());
    expectRun(line + " --listen " + port, 1, "UDP port " + port);
    expectRun(line + " --no-feedback", 0, "sent      5 records");
}

TEST(Program, UsesWhatIsWholeOfACutOffRecording) {
    const std::string cut = temporary("cut_off.hrec");
    std::filesystem::copy_file(RECORDED_FLIGHT, cut);
    std::filesystem::resize_file(cut, 2000);
    expectRun("replay " + cut + " --no-feedback --to 127.0.0.1:9 --quiet", 0,
              "the file ends at byte 2000");
    std::filesystem::resize_file(cut, 1000); // within the first record
    expectRun("replay " + cut, 1, "record 0 at byte 24: the file ends at byte 1000");
    std::filesystem::remove(cut);
}

/// Sends datagrams of these sizes to a program that records, at the port that it told.
void sendTo(int port, std::initializer_list<std::size_t> sizes) {
    std::string message;
    const auto to = UdpAddress::parse("127.0.0.1:" + std::to_string(port), message);
    UdpSocket sender;
    ASSERT_TRUE(to && sender.open(message)) << message;
    for (const std::size_t size : sizes)
        ASSERT_TRUE(sender.send(*to, std::vector<std::uint8_t>(size, 1)));
}

TEST(Program, AnInterruptEndsARecordingInOrder) {
    const std::string path = temporary("interrupted.hrec");
    Program program(PROGRAM_PATH, "record " + path + " --port 0 --quiet");
    int port = 0;
    ASSERT_EQ(std::sscanf(program.line().c_str(), "recording port %d", &port), 1);
    sendTo(port, {sizeof(UdpRecvData), sizeof(UdpRecvData), 0});
    program.signal(SIGHUP); // as when its terminal is closed, by shell and system
    program.signal(SIGINT);
    std::string output;
    EXPECT_EQ(program.finish(&output), 0);
    EXPECT_NE(output.find("3 datagrams"), std::string::npos) << output;
    expectRun("info " + path, 0, "1 of 0 bytes, 2 of 1490 bytes");
    std::filesystem::remove(path);
}

TEST(Program, ARecordingCountsWhatIsInTheFileAndKeepsIt) {
    const std::string path = temporary("full.hrec");
    // Room for two records.
    Program program("/bin/sh",
                    "-c 'ulimit -f 8; exec " PROGRAM_PATH " record " + path + " --port 0'");
    int port = 0;
    ASSERT_EQ(std::sscanf(program.line().c_str(), "recording port %d", &port), 1);
    sendTo(port, {sizeof(UdpRecvData), sizeof(UdpRecvData)});
    program.waitFor(" 2 datagrams"); // these are in the file
    sendTo(port, {sizeof(UdpRecvData), sizeof(UdpRecvData), sizeof(UdpRecvData)});
    std::string output;
    EXPECT_EQ(program.finish(&output), 1);
    EXPECT_NE(output.find("recorded  2 of 5 datagrams"), std::string::npos) << output;
    EXPECT_NE(output.find("the first 2 records are kept"), std::string::npos) << output;
    expectRun("info " + path, 0, "2 of 1490 bytes");
    EXPECT_EQ(std::filesystem::file_size(path), 24u + 2 * (12 + 1490)) << "no part of the third";
    std::filesystem::remove(path);
}

} // namespace
} // namespace flightsim
