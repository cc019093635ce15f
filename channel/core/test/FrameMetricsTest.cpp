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
        const FrameTiming timing{.begin = begin,
                                 .handed_over = begin,
                                 .work = work,
                                 .late = late,
                                 .records = sample.in.datagrams_received,
                                 .last_record = sample.in.last_received};
        pace.addFrame(timing);
        metrics->addFrame(timing, pace, link, listener);
    }
    std::string scrape() const {
        return '\n' +
               prometheus::TextSerializer().prometheus::Serializer::Serialize(metrics->Collect());
    }
    /// Lines of the scrape, each a name with labels and a number.
    void expect(std::initializer_list<std::string> lines) {
        for (const std::string& line : lines)
            EXPECT_NE(scrape().find("\nvisual_channel_" + line + '\n'), std::string::npos)
                << line << scrape();
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
    sample.in.last_received = 102.25;
    frame(102.5, 0.01, true);
    expect({"records_received_total 1001", "records_lost_total 1002",
            "records_wrong_total{kind=\"short\"} 1003", "records_wrong_total{kind=\"long\"} 1004",
            "records_wrong_total{kind=\"implausible\"} 1005",
            "records_wrong_total{kind=\"from_others\"} 1006",
            "records_wrong_total{kind=\"empty\"} 1007", "feedback_sent_total 1008",
            "feedback_failed_total 1009", "records_applied_total 1010", "frames_late_total 2",
            "record_age_seconds 0.25"});
}

TEST_F(FrameMetricsTest, FrameTimesAreCountedBySize) {
    frame(100, 0.002);
    frame(100.0165, 0.0021); // in time, of 60 a second
    frame(100.033, 2.5);
    frame(99, 0.001); // one in which a message box ran others
    frame(103, 0.001);
    const std::string interval = "frame_interval_seconds_", work = "frame_work_seconds_";
    expect({interval + "bucket{le=\"0.016\"} 0", interval + "bucket{le=\"0.0175\"} 2",
            interval + "bucket{le=\"1\"} 2", interval + "count 3", work + "bucket{le=\"0.001\"} 2",
            work + "bucket{le=\"0.002\"} 3", work + "bucket{le=\"1\"} 4", work + "count 5"});
    EXPECT_NE(scrape().find(work + "sum 2.5061"), std::string::npos);
}

TEST_F(FrameMetricsTest, APortThatIsTakenIsRefusedWithTheCause) {
    MetricsServer first, second;
    ASSERT_TRUE(first.open(0, metrics));
    const std::string address = "127.0.0.1:", told = log.lines.at(0);
    const int port = std::stoi(told.substr(told.find(address) + address.size()));
    EXPECT_FALSE(second.open(port, metrics));
    const std::string cause = address + std::to_string(port) + ": Address already in use: free";
    EXPECT_NE(log.lines.at(1).find(cause), std::string::npos) << log.lines[1];
}

} // namespace
