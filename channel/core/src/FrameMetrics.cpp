// SPDX-License-Identifier: MIT
#include "FrameMetrics.h"

#include "LogicListener.h"
#include "channel/interface/LinkMonitor.h"
#include "channel/interface/PaceMonitor.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <limits>
#include <prometheus/metric_family.h>
#include <utility>

using namespace ig;
using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

/// Those of one family follow one another.
struct FrameMetrics::Description {
    const char* name; ///< of the family
    const char* kind; ///< label within it; empty: it is alone
    const char* help;
    MetricType type = MetricType::Counter;
};

const FrameMetrics::Description FrameMetrics::DESCRIPTIONS[] = {
    {"visual_channel_frames_late_total", "", "Frames that began, or were shown, too late."},
    {"visual_channel_records_received_total", "", "Records that came, right or wrong."},
    {"visual_channel_records_applied_total", "", "Records that the scene has taken over."},
    {"visual_channel_records_lost_total", "", "Records that found no room in the system's buffer."},
    {"visual_channel_records_wrong_total", "short",
     "Records that came and are wrong, or were dropped because of their sender or size."},
    {"visual_channel_records_wrong_total", "long", ""},
    {"visual_channel_records_wrong_total", "implausible", ""},
    {"visual_channel_records_wrong_total", "from_others", ""},
    {"visual_channel_records_wrong_total", "empty", ""},
    {"visual_channel_record_age_seconds", "",
     "From the newest record's arrival to the hand-over of the last picture.", MetricType::Gauge},
    {"visual_channel_feedback_sent_total", "", "Feedback datagrams that went out."},
    {"visual_channel_feedback_failed_total", "", "Feedback datagrams that could not be sent."},
    {"visual_channel_bodies", "", "Bodies of the physics.", MetricType::Gauge},
    {"visual_channel_nodes", "", "Nodes of the scene.", MetricType::Gauge},
    {"visual_channel_particles", "", "Particles in the air.", MetricType::Gauge},
};

namespace {

int countNodes(const Node& node) {
    int count = 1;
    for (int i = 0; i < node.getNumChildren(); i++)
        count += countNodes(*node.getChild(i));
    return count;
}

MetricFamily family(const char* name, const char* help, MetricType type) {
    return {name, help, type, {}};
}

} // namespace

// ------------------------------------------------------------------ storing

void FrameMetrics::Histogram::add(double seconds) {
    const auto place = std::lower_bound(std::begin(ENDS), std::end(ENDS), seconds);
    // Nobody else stores: no need for anything that excludes others.
    std::atomic<std::uint64_t>& count = m_counts[static_cast<std::size_t>(place - ENDS)];
    count.store(count.load(RELAXED) + 1, RELAXED);
    m_sum.store(m_sum.load(RELAXED) + seconds, RELAXED);
}

/// What has been counted stays so: the system may refuse only later what seemed sent, and a counter
/// that falls is taken for one that began anew.
void FrameMetrics::count(Value value, std::uint64_t number) {
    set(value, std::max(m_values[value].load(RELAXED), static_cast<double>(number)));
}

void FrameMetrics::addFrame(const FrameTiming& timing, const PaceMonitor& pace,
                            const LinkMonitor& link, const LogicListener& listener) {
    if (pace.getInterval() >= 0) m_intervals.add(pace.getInterval());
    m_works.add(timing.work);
    count(FRAMES_LATE, pace.getLate());
    const SocketStatistics& in = link.getReceived();
    count(RECEIVED, in.datagrams_received);
    count(APPLIED, static_cast<std::uint64_t>(listener.m_applied));
    count(LOST, in.lost);
    count(SHORT, in.too_short);
    count(LONG, in.too_long);
    count(IMPLAUSIBLE, in.implausible);
    count(FROM_OTHERS, in.filtered);
    count(EMPTY, in.empty);
    set(AGE, pace.getAge());
    const SocketStatistics& out = link.getSent();
    count(SENT, out.datagrams_sent);
    count(FAILED, out.send_failures);
}

void FrameMetrics::addScene(double now, World& world, const ParticleSystem& particles) {
    if (now - m_counted < COUNT_EVERY) return;
    m_counted = now;
    int nodes = 0;
    for (const Node* node : world.getNodes())
        nodes += countNodes(*node);
    set(NODES, nodes);
    set(BODIES, world.getPhysics().getBodies().size());
    set(PARTICLES, particles.getNumParticles());
}

// ------------------------------------------------------------------ collecting

MetricFamily FrameMetrics::Histogram::collect(const char* name, const char* help) const {
    ClientMetric metric;
    std::uint64_t& count = metric.histogram.sample_count;
    for (std::size_t i = 0; i < m_counts.size(); i++) {
        count += m_counts[i].load(RELAXED);
        metric.histogram.bucket.push_back(
            {count, i < std::size(ENDS) ? ENDS[i] : std::numeric_limits<double>::infinity()});
    }
    metric.histogram.sample_sum = m_sum.load(RELAXED);
    MetricFamily all = family(name, help, MetricType::Histogram);
    all.metric.push_back(std::move(metric));
    return all;
}

std::vector<MetricFamily> FrameMetrics::Collect() const {
    std::vector<MetricFamily> families;
    ClientMetric build;
    build.label = {{"version", VERSION}, {"renderer", m_renderer}};
    build.gauge.value = 1;
    families.push_back(
        family("visual_channel_build_info", "Which program this is.", MetricType::Gauge));
    families.back().metric.push_back(std::move(build));
    families.push_back(m_intervals.collect("visual_channel_frame_interval_seconds",
                                           "From a frame's beginning to the next one's."));
    families.push_back(
        m_works.collect("visual_channel_frame_work_seconds", "What the work of a frame took."));
    for (int i = 0; i < VALUES; i++) {
        const Description& description = DESCRIPTIONS[i];
        ClientMetric metric;
        const double value = m_values[i].load(RELAXED);
        if (i == AGE && value < 0) continue; // there is none yet
        (description.type == MetricType::Counter ? metric.counter.value : metric.gauge.value) =
            value;
        if (*description.kind) metric.label = {{"kind", description.kind}};
        if (families.back().name != description.name)
            families.push_back(family(description.name, description.help, description.type));
        families.back().metric.push_back(std::move(metric));
    }
    return families;
}
