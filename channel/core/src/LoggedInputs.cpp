// SPDX-License-Identifier: MIT
#include "LoggedInputs.h"

#include "EventQueue.h"
#include "Window.h"
#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"

#include <algorithm>

using ig::jLog;

namespace {

/// The parts that differ, or that only one of the two has.
std::string listDifferences(const LoggedInputs::Digests& a, const LoggedInputs::Digests& b) {
    std::string parts;
    const auto list = [&parts](const LoggedInputs::Digests& from, const auto& leaves_out) {
        for (const frames::PartDigest& part : from)
            if (!leaves_out(part)) parts += (parts.empty() ? "" : ", ") + part.part;
    };
    const auto has = [](const LoggedInputs::Digests& digests, const std::string& name) {
        return std::ranges::any_of(digests, [&name](const auto& d) { return d.part == name; });
    };
    list(a, [&](const auto& part) { return std::ranges::count(b, part) > 0; });
    list(b, [&](const auto& part) { return has(a, part.part); });
    return parts;
}

} // namespace

void LoggedInputs::watchWindow() {
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

bool LoggedInputs::hold(const Digests& theirs, const Digests& ours, const char* what) {
    if (!m_difference.empty()) return true; // nothing more is told
    m_difference = listDifferences(theirs, ours);
    m_compared++;
    if (m_difference.empty()) return true;
    m_difference = "frame " + std::to_string(m_number) + ": " + m_difference;
    jLog::error("visual_channel: %s in %s", what, m_difference.c_str());
    return false;
}

std::string LoggedInputs::tellCompared() const {
    if (m_compared == 0) return "nothing compared: no digests of the scene in the log up to there";
    return std::to_string(m_compared) + " compared, " +
           (m_difference.empty() ? "all equal" : "first difference in " + m_difference);
}
