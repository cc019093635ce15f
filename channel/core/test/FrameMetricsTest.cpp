// SPDX-License-Identifier: MIT
#include "FrameMetrics.h"
#include "LogicListener.h"
#include "MetricsServer.h"
#include "channel/interface/LinkMonitor.h"
#include "channel/interface/PaceMonitor.h"
#include "channel/interface/Texts.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>
#include <prometheus/text_serializer.h>

namespace {

using namespace ig;

struct FrameMetricsTest : testing::Test {
    FrameMetricsTest() { Texts::load("en"); }
    void frame(double begin, double work, bool late = false) {
        link.update(sample, begin);
        const FrameTiming timing{
            .begin = begin, .handed_over = begin + 0.004, .work = work, .late = late};
        pace.addFrame(timing, link);
        metrics->addFrame(timing, pace, link, listener);
    }
    std::string scrape() const {
        return prometheus::TextSerializer().prometheus::Serializer::Serialize(metrics->Collect());
    }
    /// A line of the scrape, by its name with labels and its number.
    void expect(const std::string& line) {
        EXPECT_NE(scrape().find("\nvisual_channel_" + line + '\n'), std::string::npos)
            << line << '\n'
            << scrape();
    }

    LogCapture log;
    LinkSample sample;
    LinkMonitor link;
    PaceMonitor pace;
    LogicListener listener;
    std::shared_ptr<FrameMetrics> metrics = std::make_shared<FrameMetrics>("null");
};

TEST_F(FrameMetricsTest, EveryCountStandsUnderItsNameAndNoneFalls) {
    EXPECT_EQ(scrape().find("age"), std::string::npos) << "there is no frame yet";
    frame(100, 0.01);
    EXPECT_EQ(scrape().find("age"), std::string::npos) << "there is no record yet";
    sample.in.datagrams_received = 1001;
    sample.in.lost = 1002;
    sample.in.too_short = 1003;
    sample.in.too_long = 1004;
    sample.in.implausible = 1005;
    sample.in.complaint.field = "latitude";
    sample.in.filtered = 1006;
    sample.in.empty = 1007;
    sample.in.last_received = 101;
    sample.out.datagrams_sent = 1008;
    sample.out.send_failures = 1009;
    listener.m_applied = 1010;
    frame(101, 0.01, true);
    sample.out.datagrams_sent = 1007; // the system turned out to refuse one
    sample.in.last_received = 101.75;
    frame(102, 0.01, true);
    for (const char* line :
         {"records_received_total 1001", "records_lost_total 1002",
          "records_wrong_total{kind=\"short\"} 1003", "records_wrong_total{kind=\"long\"} 1004",
          "records_wrong_total{kind=\"implausible\"} 1005",
          "records_wrong_total{kind=\"from_others\"} 1006",
          "records_wrong_total{kind=\"empty\"} 1007", "feedback_sent_total 1008",
          "feedback_failed_total 1009", "records_applied_total 1010", "frames_late_total 2"})
        expect(line);
    EXPECT_NE(scrape().find("age_seconds 0.25"), std::string::npos) << scrape();
}

TEST_F(FrameMetricsTest, FrameTimesAreCountedBySize) {
    frame(100, 0.002);
    frame(100.0165, 0.0021); // in time, of 60 a second
    frame(100.033, 2.5);
    frame(99, 0.001); // one in which a message box ran others
    frame(103, 0.001);
    for (const char* line :
         {"frame_interval_seconds_count 3", "frame_interval_seconds_bucket{le=\"0.016\"} 0",
          "frame_interval_seconds_bucket{le=\"0.017\"} 2",
          "frame_interval_seconds_bucket{le=\"1\"} 2",
          "frame_interval_seconds_bucket{le=\"+Inf\"} 3", "frame_work_seconds_count 5",
          "frame_work_seconds_bucket{le=\"0.001\"} 2", "frame_work_seconds_bucket{le=\"0.002\"} 3",
          "frame_work_seconds_bucket{le=\"0.004\"} 4", "frame_work_seconds_bucket{le=\"1\"} 4"})
        expect(line);
    EXPECT_NE(scrape().find("frame_work_seconds_sum 2.5061"), std::string::npos) << scrape();
}

TEST_F(FrameMetricsTest, APortThatIsTakenIsRefusedWithTheCause) {
    MetricsServer first, second;
    ASSERT_TRUE(first.open(0, metrics));
    const std::string told = log.lines.at(0), address = "127.0.0.1:";
    const std::string port = std::to_string(std::stoi(told.substr(told.find(address) + 10)));
    EXPECT_FALSE(second.open(std::stoi(port), metrics));
    EXPECT_NE(log.lines.at(1).find("cannot listen on " + address + port +
                                   ": Address already in use: free the port"),
              std::string::npos)
        << log.lines[1];
}

} // namespace
