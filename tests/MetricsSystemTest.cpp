// SPDX-License-Identifier: MIT

// What monitoring gets from a channel that runs.

#include "ChannelRun.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <regex>
#include <sys/socket.h>
#include <unistd.h>
#include <yaml-cpp/yaml.h>

namespace {

constexpr int PATIENCE = 20000; ///< ms that a loaded machine may take for a frame

/// What the server on that port of the loopback address answers, with its head.
std::string get(int port, const std::string& path) {
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const std::string request = "GET " + path + " HTTP/1.0\r\n\r\n";
    std::string answer;
    char part[4096];
    if (connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        write(descriptor, request.data(), request.size()) > 0)
        for (ssize_t size; (size = read(descriptor, part, sizeof part)) > 0;)
            answer.append(part, static_cast<std::size_t>(size));
    close(descriptor);
    return answer;
}

/// All matches of the pattern's group in the text.
std::vector<std::string> findAll(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
}

/// The shipped dashboard asks for nothing that the scrape lacks, and leaves nothing of it out.
void expectDashboardShows(const std::string& scrape) {
    std::string asked;
    for (const YAML::Node& panel : YAML::LoadFile("docs/dashboard.json")["panels"])
        for (const YAML::Node& target : panel["targets"])
            asked += target["expr"].as<std::string>() + '\n';
    for (const std::string& name : findAll(asked, "\\b(visual_channel_\\w+)"))
        EXPECT_TRUE(std::regex_search(scrape, std::regex("\n" + name + "[ {]"))) << name;
    const std::vector<std::string> families = findAll(scrape, "# TYPE (visual_channel_\\w+)");
    EXPECT_FALSE(families.empty());
    for (const std::string& family : families)
        EXPECT_NE(asked.find(family), std::string::npos) << family;
}

/// A channel that tells metrics at a free port.
struct Metrics : testing::Test {
    void start() {
        ASSERT_TRUE(run.start("--fps 60 --metrics 0")) << run.beginning;
        const std::string address = "metrics at http://127.0.0.1:";
        const std::size_t at = run.beginning.find(address);
        ASSERT_NE(at, std::string::npos) << run.beginning;
        port = std::stoi(run.beginning.substr(at + address.size()));
    }
    /// The number of a metric at the last scrape; −1 when there is none.
    double number(const std::string& name) const {
        const std::size_t at = text.find("\nvisual_channel_" + name + ' ');
        return at == std::string::npos ? -1 : std::stod(text.substr(text.find(' ', at)));
    }
    /// Scrapes after every frame, until the metric has the number, or for a minute's frames.
    void waitFor(const std::string& name, double expected) {
        for (int frames = 0; frames < 3600 && number(name) != expected; frames++) {
            ASSERT_FALSE(run.peer.receive(PATIENCE).empty());
            text = get(port, "/metrics");
        }
        EXPECT_EQ(number(name), expected) << text;
    }

    ChannelRun run;
    int port = 0;
    std::string text;
};

TEST_F(Metrics, TellWhatComesGoesOutAndIsThereAsTheDashboardShowsIt) {
    start();
    UdpRecvData record{};
    record.longitude = -155;
    record.latitude = 20;
    record.altitude = 100;
    for (int i = 0; i < 20; i++)
        run.send(&record, sizeof record);
    for (int i = 0; i < 3; i++)
        run.send(&record, 100);
    waitFor("records_applied_total", 23);
    EXPECT_EQ(number("records_received_total"), 23);
    EXPECT_EQ(number("records_wrong_total{kind=\"short\"}"), 3);
    EXPECT_GT(number("record_age_seconds"), 0);
    EXPECT_EQ(number("build_info{version=\"1.0\",renderer=\"null\"}"), 1);
    EXPECT_GT(number("bodies"), 1);
    EXPECT_GT(number("nodes"), 100);
    EXPECT_GT(number("particles"), 0);
    const double frames = number("frame_work_seconds_count");
    EXPECT_NEAR(number("feedback_sent_total"), frames, 1); // one scraped before the other
    expectDashboardShows(text);
    ASSERT_EQ(run.stop(), 0) << run.output;
    EXPECT_NE(run.output.find("23 received"), std::string::npos) << run.output;
}

} // namespace
