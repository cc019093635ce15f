// SPDX-License-Identifier: MIT

// What monitoring gets from a channel that runs.

#include "ChannelRun.h"

#include <gtest/gtest.h>
#include <regex>
#include <yaml-cpp/yaml.h>

namespace {

std::string scrape(const std::string& port) {
    Program client("/bin/bash",
                   "-c 'exec 3<>/dev/tcp/127.0.0.1/" + port +
                       " && printf \"GET /metrics HTTP/1.0\\r\\n\\r\\n\" >&3 && cat <&3'");
    std::string answer;
    client.finish(&answer);
    return answer;
}

/// All matches of the pattern's group.
std::vector<std::string> findAll(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
}

TEST(Metrics, TellWhatARunningChannelHasSeenAsTheDashboardAsksForIt) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60 --metrics 0"));
    const std::string port = findAll(run.beginning, "http://127.0.0.1:(\\d+)/metrics").at(0);
    UdpRecvData record{};
    record.longitude = 1;
    for (int i = 0; i < 23; i++)
        run.send(&record, i < 3 ? 200 : sizeof record);
    ASSERT_NE(run.program->waitFor(" 23 received, 23 applied"), "");
    const std::string text = scrape(port);
    EXPECT_EQ(run.stop(), 0);
    for (const char* line :
         {"records_applied_total 23\n", "records_wrong_total\\{kind=\"short\"\\} 3\n",
          "record_age_seconds \\d", "build_info\\{version=\"[.0-9]+\",renderer=\"null\"\\} 1\n",
          "bodies [1-9]", "nodes [1-9]\\d\\d", "particles [1-9]", "feedback_sent_total [1-9]"})
        EXPECT_TRUE(std::regex_search(text, std::regex(std::string("\nvisual_channel_") + line)))
            << line << text;

    // The dashboard asks for nothing that there isn't, and leaves nothing out.
    std::string asked;
    for (const YAML::Node& panel : YAML::LoadFile("docs/dashboard.json")["panels"])
        for (const YAML::Node& target : panel["targets"])
            asked += target["expr"].as<std::string>() + '\n';
    for (const std::string& name : findAll(asked, "\\b(visual_channel_\\w+)"))
        EXPECT_TRUE(std::regex_search(text, std::regex("\n" + name + "[ {]"))) << name;
    for (const std::string& family : findAll(text, "# TYPE (visual_channel_\\w+)"))
        EXPECT_NE(asked.find(family), std::string::npos) << family;
}

} // namespace
