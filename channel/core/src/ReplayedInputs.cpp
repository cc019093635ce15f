// SPDX-License-Identifier: MIT
#include "ReplayedInputs.h"

#include "EventQueue.h"
#include "Window.h"
#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"
#include "ig/ui/KeyCode.h"
#include "program/Clock.h"

#include <algorithm>
#include <cmath>
#include <utility>

using frames::LogItem;
using ig::jLog;

namespace {

constexpr double POLL_PERIOD = 0.05; ///< s, of the window in a long pause of the flight

/// The parts that differ, or that only one of the two has.
std::string listDifferences(const ReplayedInputs::Digests& a, const ReplayedInputs::Digests& b) {
    std::string parts;
    const auto list = [&parts](const ReplayedInputs::Digests& from, const auto& leaves_out) {
        for (const frames::PartDigest& part : from)
            if (!leaves_out(part)) parts += (parts.empty() ? "" : ", ") + part.part;
    };
    const auto has = [](const ReplayedInputs::Digests& digests, const std::string& name) {
        return std::ranges::any_of(digests, [&name](const auto& d) { return d.part == name; });
    };
    list(a, [&](const auto& part) { return std::ranges::count(b, part) > 0; });
    list(b, [&](const auto& part) { return has(a, part.part); });
    return parts;
}

} // namespace

bool ReplayedInputs::open(const std::string& path) {
    if (!m_reader.open(path)) {
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
    while (!m_closed && !m_is_stopped() && program::steadyNow() < due) {
        const double piece = std::min(due, program::steadyNow() + POLL_PERIOD);
        program::sleepUntil(std::llround(piece * double(program::NS_PER_SECOND)));
        watchWindow();
    }
    return !m_closed && !m_is_stopped();
}

void ReplayedInputs::watchWindow() {
    using Kind = frames::OperatorEvent::Kind;
    if (m_window.isOpen()) m_window.poll();
    for (const frames::OperatorEvent& event : m_queue.take()) {
        if (event.kind == Kind::close) m_closed = true;
        if (event.kind == Kind::modifiers) m_alt = event.alt;
        if (event.kind == Kind::key && event.code == ig::KEY_RETURN && event.down &&
            !event.repeat && m_alt)
            m_window.toggleFullScreen();
    }
}

void ReplayedInputs::compare(const std::function<Digests()>& digest_scene) {
    if (!std::exchange(m_has_digests, false) || !m_difference.empty()) return;
    m_difference = listDifferences(m_digests, digest_scene());
    m_compared++;
    if (!m_difference.empty()) {
        m_difference = "frame " + std::to_string(m_number) + ": " + m_difference;
        jLog::error("visual_channel: the replay differs from the log in %s", m_difference.c_str());
    }
}

void ReplayedInputs::endByForce() {
    m_closed = true;
    if (m_item == LogItem::frame && !std::exchange(m_ends_early, true))
        jLog::error("visual_channel: --replay: Alt + F4 ends the replay in frame %llu, but the log "
                    "goes on",
                    static_cast<unsigned long long>(m_number));
}

std::string ReplayedInputs::getSummary() const {
    const std::string compared =
        m_compared == 0
            ? "nothing compared: no digests of the scene in the log up to there"
            : std::to_string(m_compared) + " compared, " +
                  (m_difference.empty() ? "all equal" : "first difference in " + m_difference);
    return "replay: " + std::to_string(m_frames) + " frames, " + compared + '\n';
}
