// SPDX-License-Identifier: MIT
#include "WallInputs.h"

#include "channel/interface/Texts.h"
#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"
#include "program/Clock.h"

#include <cmath>

using frames::LogItem;
using ig::jLog;
using program::steadyNow;

namespace {

constexpr double WAIT = 0.02;       ///< s, between two looks at the window
constexpr double PATIENCE = 1;      ///< s without a frame after which the first channel is lost
constexpr double REDRAW_PERIOD = 1; ///< s, of the picture while it stands, or frames are run over
constexpr double CATCHING_UP = 0.5; ///< s behind after which it is said
constexpr double TELL_PERIOD = 5;   ///< s, of saying how far it is

} // namespace

bool WallInputs::open() {
    ig::SocketUDP::setOffline();
    m_heard = steadyNow();
    while (!isEnded() && !readOn() && !m_receiver.isReplaced()) // holds the answers of the start
        m_receiver.wait(WAIT);
    m_heard = steadyNow();
    return m_has_next;
}

/// Whether there is a next frame now.
bool WallInputs::readOn() {
    while (!m_has_next && !m_ended) {
        Digests digests;
        const LogItem item = m_receiver.next(m_next, digests);
        if (item == LogItem::more) return false;
        m_heard = steadyNow();
        if (item == LogItem::digests) {
            m_theirs = {true, m_number, std::move(digests)};
            settle();
        } else if (item == LogItem::frame) {
            ig::SocketUDP::addAnswers(m_next.answers);
            m_has_next = true;
        } else if (item == LogItem::end) {
            m_ended = true;
            jLog::message("visual_channel: the first channel has ended: the picture stays");
        } else if (m_receiver.noteDifference()) {
            beginAgain(m_receiver.getMessage().c_str());
            return false;
        } else {
            m_ended = true;
            jLog::error("visual_channel: %s: the picture stays", m_receiver.getMessage().c_str());
        }
    }
    return m_has_next;
}

bool WallInputs::next(const Moment&, frames::FrameInput& input) {
    while (true) {
        watchWindow();
        if (isEnded()) return false;
        if (m_restart || (!m_has_next && m_receiver.isReplaced())) {
            m_restart = true;
            return false;
        }
        if (readOn()) break;
        idle();
    }
    if (std::exchange(m_lost, false))
        jLog::message("visual_channel: the first channel is back, at frame %llu",
                      static_cast<unsigned long long>(m_next.number));
    input = std::move(m_next);
    m_has_next = false;
    m_number = input.number;
    m_frames++;
    readOn();
    tellProgress();
    return true;
}

/// Nothing has come: waits a moment, and keeps the picture on the screen.
void WallInputs::idle() {
    m_receiver.wait(WAIT);
    const double now = steadyNow();
    if (now - m_heard > PATIENCE && !m_ended && !std::exchange(m_lost, true))
        jLog::warning("visual_channel: nothing comes from the first channel: the picture stays at "
                      "frame %llu",
                      static_cast<unsigned long long>(m_number));
    if ((!m_lost && !m_ended) || m_frames == 0 || now - m_drawn < REDRAW_PERIOD) return;
    m_drawn = now;
    m_show();
}

/// Decides whether the frame taken last is shown, and says how far it is.
void WallInputs::tellProgress() {
    const double now = steadyNow();
    m_shows = !m_has_next || now - m_drawn > REDRAW_PERIOD;
    if (m_shows)
        m_drawn = now;
    else
        m_passed_over++;
    if (!m_has_next) {
        const double took = m_behind_since > 0 ? now - m_behind_since : 0;
        if (!std::exchange(m_was_in_step, true) || took > CATCHING_UP)
            jLog::message("visual_channel: in step with the first channel at frame %llu, after "
                          "%.1f s; %llu frames were not shown",
                          static_cast<unsigned long long>(m_number), took,
                          static_cast<unsigned long long>(m_passed_over - m_behind_at_begin));
        m_behind_since = 0;
        m_behind_at_begin = m_passed_over;
    } else if (m_behind_since <= 0) {
        m_behind_since = m_told = now;
    } else if (now - m_told > (m_told > m_behind_since ? TELL_PERIOD : CATCHING_UP)) {
        m_told = now;
        jLog::message("visual_channel: behind the first channel: at frame %llu, %.0f %% of what "
                      "has come",
                      static_cast<unsigned long long>(m_number), 100 * m_receiver.getPart());
    }
}

void WallInputs::compare(const std::function<Digests()>& digest_scene) {
    m_ours = {true, m_number, digest_scene()};
    settle();
}

/// Compares when both have come.
void WallInputs::settle() {
    if (!m_theirs.is_there || !m_ours.is_there || m_theirs.number != m_ours.number) return;
    m_theirs.is_there = m_ours.is_there = false;
    if (hold(m_theirs.digests, m_ours.digests, "this display differs from the first channel"))
        return;
    if (m_receiver.noteDifference())
        beginAgain("the run is begun again");
    else
        jLog::error("visual_channel: it did so before: it goes on as it is: are program, "
                    "libraries, config/ and data/ the first channel's?");
}

void WallInputs::beginAgain(const char* why) {
    jLog::message("visual_channel: %s", why);
    m_restart = true;
}

void WallInputs::stay() {
    m_ended = true;
    while (!isEnded() && !m_restart && !m_receiver.isReplaced()) {
        watchWindow();
        Digests digests; // of what is left of the run, which isn't for this display
        m_receiver.next(m_next, digests);
        idle();
    }
    m_restart = m_restart || m_receiver.isReplaced();
}

std::string WallInputs::getNote() const {
    if (m_ended) return Texts::get("wall.ended");
    if (m_lost) return Texts::get("wall.lost");
    if (m_behind_since <= 0 || steadyNow() - m_behind_since < CATCHING_UP) return {};
    const std::string part = std::to_string(std::lround(100 * m_receiver.getPart()));
    return Texts::fill("wall.behind", {part}).c_str();
}

std::string WallInputs::getSummary() const {
    return "wall: " + std::to_string(m_frames) + " frames, " + std::to_string(m_passed_over) +
           " of them not shown, " + tellCompared() + '\n';
}
