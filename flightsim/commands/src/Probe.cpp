// SPDX-License-Identifier: MIT
#include "Probe.h"

#include "flightsim/mission/RecordFields.h"
#include "program/Clock.h"
#include "program/OutputFile.h"

#include <algorithm>
#include <cmath>

namespace flightsim {

using program::NS_PER_MS;
using program::NS_PER_SECOND;
using program::OutputFile;

bool Probe::open(const ProbeOptions& options, std::string& message) {
    m_options = options;
    m_record = fairWeatherRecord();
    m_record.latitude = options.latitude;
    m_record.longitude = options.longitude;
    m_record.altitude = static_cast<float>(options.altitude);
    if (!options.plot.empty()) {
        const std::string why = OutputFile::whyNot(options.plot, OutputFile::Kind::whole);
        if (!why.empty()) {
            message = "cannot write \"" + options.plot + "\": " + why;
            return false;
        }
    }
    return m_link.open(options.link, message);
}

bool Probe::run(const StopFlag& stop, std::string& message) {
    bool good = findGround(stop, message) && takeSteps(stop, message);
    std::string ignored; // there is no file of the feedback
    m_link.finish(ignored);
    if (!good || m_options.plot.empty()) return good;
    OutputFile file;
    good = file.open(m_options.plot, OutputFile::Kind::whole) && file.write(getReport().plot()) &&
           file.close();
    message = file.getMessage();
    return good;
}

/// Sends records until the channel reports the ground at the place of the probe.
bool Probe::findGround(const StopFlag& stop, std::string& message) {
    while (!isThere() && double(m_time_ns) < m_options.wait * 1e9)
        if (!sendOne(0, stop)) break;
    if (isThere()) return true;
    const auto& last = m_link.getLastFeedback();
    const std::string port = std::to_string(m_link.getListenPort());
    if (stop)
        message = "stopped before the first step";
    else if (!last)
        message = "no feedback on port " + port + " within " +
                  std::to_string(std::lround(m_options.wait)) +
                  " s: is the channel running, does it receive on " + m_link.getDestination() +
                  ", and does it send its feedback to this port?";
    else
        message = "the channel answers, but reports no ground below latitude " +
                  std::to_string(m_options.latitude) + ", longitude " +
                  std::to_string(m_options.longitude) +
                  ": is another host sending, or does its world lie elsewhere (--latitude, "
                  "--longitude)?";
    return false;
}

/// Whether the ground reported last lies below the place of the probe. A place without ground reads
/// as 0.
bool Probe::isThere() const {
    constexpr double NEAR = 1e-4; // degrees: ten metres
    const auto& last = m_link.getLastFeedback();
    return last && last->height_above_ground != 0 &&
           std::abs(last->ground_latitude - m_options.latitude) < NEAR &&
           std::abs(std::remainder(last->ground_longitude - m_options.longitude, 360)) < NEAR;
}

/// All steps, once the ground is found. False with `message` when they tell nothing.
bool Probe::takeSteps(const StopFlag& stop, std::string& message) {
    m_link.setFeedbackListener([this](const UdpSendData& f, std::int64_t now_ns) {
        m_meter.take(f, now_ns);
        m_was_elsewhere = m_was_elsewhere || !isThere(); // the last feedback is this one
    });
    // So that the height before the first step is known.
    const std::int64_t end_ns = m_time_ns + std::llround(m_options.wait * 1e9);
    const std::int64_t known = m_link.getFeedback().received + 2;
    while (m_link.getFeedback().received < known && m_time_ns < end_ns && sendOne(0, stop)) {
    }
    bool goes_on = stop || m_link.getFeedback().received >= known;
    for (std::int64_t i = 0; i < m_options.steps && goes_on && !stop; i++)
        goes_on = takeStep(i, stop);
    if (!goes_on)
        message = "the feedback has stopped: does the channel still run?";
    else if (m_was_elsewhere)
        message = "the channel showed another place meanwhile: does another host send too?";
    return goes_on && !m_was_elsewhere;
}

/// One step: after a pause, in which the channel's frame goes on by a part that differs from step
/// to step, so that all parts of a frame are met evenly; then records until it is seen. False when
/// no feedback at all came for as long as a step is waited for.
bool Probe::takeStep(std::int64_t number, const StopFlag& stop) {
    constexpr double GOLDEN = 0.6180339887498949; // its multiples fill an interval most evenly
    constexpr std::int64_t LEAST_PAUSE_NS = 50 * NS_PER_MS, PAUSES_NS = 100 * NS_PER_MS;
    constexpr std::int64_t PATIENCE_NS = 2 * NS_PER_SECOND;
    const double part = std::fmod(double(number) * GOLDEN, 1);
    const std::int64_t step_ns =
        m_time_ns + LEAST_PAUSE_NS + std::llround(part * double(PAUSES_NS));
    const std::int64_t period_ns = recordTime_ns(1, m_options.rate);
    while (m_time_ns + period_ns < step_ns)
        if (!sendOne(0, stop)) return true;
    const bool up = number % 2 == 0;
    m_record.altitude = static_cast<float>(m_options.altitude + (up ? m_options.step : 0));
    if (!sendOne(step_ns - m_time_ns, stop)) return true;
    m_meter.sent(m_link.getLastSent_ns(), up ? m_options.step : -m_options.step);
    const std::int64_t received = m_link.getFeedback().received;
    while (m_meter.isAwaiting() && m_time_ns < step_ns + PATIENCE_NS)
        if (!sendOne(0, stop)) return true;
    m_meter.giveUp();
    return m_link.getFeedback().received > received;
}

/// Sends the record so long after the one before; 0: at the probe's rate. False once stopped.
bool Probe::sendOne(std::int64_t after_ns, const StopFlag& stop) {
    m_time_ns += after_ns == 0 ? recordTime_ns(1, m_options.rate) : after_ns;
    return m_link.sendAt(m_time_ns,
                         {reinterpret_cast<const std::uint8_t*>(&m_record), sizeof m_record}, stop);
}

DelayReport Probe::getReport() const {
    DelayReport report{m_meter.getDelays_ns(), m_meter.getMissed(), m_meter.getFrame_ns(),
                       m_options.limit_ms};
    std::ranges::sort(report.delays_ns);
    return report;
}

} // namespace flightsim
