// SPDX-License-Identifier: MIT
#include "WallSender.h"

#include "ig/base/jLog.h"

using ig::jLog;

bool WallSender::open(const Options& options, const frames::LogHead& head) {
    if (!m_link.open(options)) return false;
    std::string message;
    const auto run = static_cast<std::uint64_t>(head.start_wall_ns);
    m_publisher = m_link.getNetwork()->publish(run, message);
    if (!m_publisher) {
        jLog::error("visual_channel: --wall: %s", message.c_str());
        return false;
    }
    send(m_encoder.begin(head, m_bytes));
    return isOpen();
}

void WallSender::append(const frames::FrameInput& input) {
    if (isOpen()) send(m_encoder.append(input, m_bytes));
}

void WallSender::append(const std::vector<frames::PartDigest>& digests) {
    if (isOpen()) send(m_encoder.append(digests, m_bytes));
}

void WallSender::close() {
    if (isOpen()) send(m_encoder.end(m_bytes));
    m_publisher.reset();
}

/// Sends the bytes that were made. What can't be told ends the wall, not the flight.
void WallSender::send(bool made) {
    if (!made) {
        jLog::error("visual_channel: --wall: %s: the displays stay where they are",
                    m_encoder.getMessage().c_str());
        m_publisher.reset();
        return;
    }
    m_publisher->append(m_bytes);
    m_bytes.clear();
    if (const std::string complaint = m_publisher->takeComplaint(); !complaint.empty())
        jLog::warning("visual_channel: --wall: %s", complaint.c_str());
    const int displays = m_publisher->getDisplays();
    if (displays != m_displays)
        jLog::message("visual_channel: the wall has %d display%s", displays,
                      displays == 1 ? "" : "s");
    m_displays = displays;
}
