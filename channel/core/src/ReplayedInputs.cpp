// SPDX-License-Identifier: MIT
#include "ReplayedInputs.h"

#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"
#include "program/Clock.h"

#include <algorithm>
#include <cmath>
#include <utility>

using frames::LogItem;
using ig::jLog;

namespace {

constexpr double POLL_PERIOD = 0.05; ///< s, of the window in a long pause of the flight

} // namespace

bool ReplayedInputs::open() {
    if (!m_reader.open(m_path)) {
        jLog::error("visual_channel: --replay: %s", m_reader.getMessage().c_str());
        return false;
    }
    ig::SocketUDP::setOffline();
    readOn();
    return true;
}

void ReplayedInputs::readOn() {
    m_item = m_reader.next(m_input, m_digests);
    if (m_item == LogItem::digests) {
        m_has_digests = true;
        Digests none; // a frame has digests once
        m_item = m_reader.next(m_input, none);
    }
    if (m_item == LogItem::frame) ig::SocketUDP::addAnswers(m_input.answers);
    if (m_item == LogItem::cut_off)
        jLog::warning("visual_channel: %s", m_reader.getMessage().c_str());
    if (m_item == LogItem::damaged)
        jLog::error("visual_channel: %s", m_reader.getMessage().c_str());
}

bool ReplayedInputs::next(const Moment&, frames::FrameInput& input) {
    watchWindow();
    if (m_closed || m_item != LogItem::frame) return false;
    if (m_real_time && !waitFor(m_input.begin)) return false;
    input = std::move(m_input);
    m_number = input.number;
    m_frames++;
    readOn();
    return true;
}

/// False when the replay is to end meanwhile.
bool ReplayedInputs::waitFor(double begin) {
    if (m_frames == 0) m_start = program::steadyNow() - begin;
    const double due = m_start + begin;
    while (!isEnded() && program::steadyNow() < due) {
        const double piece = std::min(due, program::steadyNow() + POLL_PERIOD);
        program::sleepUntil(std::llround(piece * double(program::NS_PER_SECOND)));
        watchWindow();
    }
    return !isEnded();
}

void ReplayedInputs::compare(const std::function<Digests()>& digest_scene) {
    if (std::exchange(m_has_digests, false) && m_difference.empty())
        hold(m_digests, digest_scene(), "the replay differs from the log");
}

void ReplayedInputs::endByForce() {
    m_closed = true;
    if (m_item == LogItem::frame && !std::exchange(m_ends_early, true))
        jLog::error("visual_channel: --replay: Alt + F4 ends the replay in frame %llu, but the log "
                    "goes on",
                    static_cast<unsigned long long>(m_number));
}

std::string ReplayedInputs::getSummary() const {
    return "replay: " + std::to_string(m_frames) + " frames, " + tellCompared() + '\n';
}
