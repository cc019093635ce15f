// SPDX-License-Identifier: MIT
#include "WallReceiver.h"

#include "Options.h"
#include "ig/base/jLog.h"

#include <algorithm>
#include <span>
#include <utility>

using frames::LogItem;
using ig::jLog;

namespace {
constexpr double POLL_PERIOD = 0.1;      ///< s, of the wish to stop
constexpr std::size_t PIECE_SIZE = 1024; ///< bytes that are read at a time: some frames
} // namespace

bool WallReceiver::open(const Options& options) {
    const auto refuse = [](const std::string& message) {
        jLog::error("visual_channel: --display: %s", message.c_str());
        return false;
    };
    if (!m_link.open(options)) return false;
    m_display = getWall().find(options.display);
    if (!m_display) {
        std::string names;
        for (const wall::Display& display : getWall().displays)
            names += (names.empty() ? "" : ", ") + display.name;
        return refuse("\"" + options.wall + "\" has no display \"" + options.display +
                      "\"; it has " + names);
    }
    std::string message;
    m_subscriber = getNetwork()->subscribe(message);
    return m_subscriber || refuse(message);
}

bool WallReceiver::begin(const std::function<bool()>& is_stopped) {
    const auto begin_anew = [this] {
        m_decoder = frames::LogDecoder("the first channel's run");
        m_given = 0;
    };
    if (!m_replaced) {
        m_subscriber->restart();
        m_came.clear();
    }
    begin_anew();
    LogItem item = LogItem::more;
    for (bool told = false; item == LogItem::more && !is_stopped(); item = m_decoder.readHead()) {
        if (m_run == 0 && !std::exchange(told, true))
            jLog::message("visual_channel: display %s waits for the first channel (%s, domain %d)",
                          m_display->name.c_str(), getWall().network.interface.c_str(),
                          getWall().network.domain);
        if (!m_replaced && !readOn()) m_subscriber->wait(POLL_PERIOD);
        if (!std::exchange(m_replaced, false)) continue;
        m_run = m_subscriber->getRun();
        m_differed = 0;
        begin_anew();
    }
    if (item == LogItem::damaged)
        jLog::error("visual_channel: --display: %s", m_decoder.getMessage().c_str());
    return item == LogItem::frame;
}

/// Gives the decoder what has come, piece by piece, so that it is known how far it is. False when
/// nothing has, or when a later run waits to begin.
bool WallReceiver::readOn() {
    if (m_replaced) return false;
    if (m_came.empty()) {
        m_came = m_subscriber->take();
        m_replaced = m_subscriber->getRun() != m_run;
        if (m_replaced) return false;
    }
    const std::size_t size = std::min(m_came.size(), PIECE_SIZE);
    m_decoder.add(std::span(m_came).first(size));
    m_came.erase(m_came.begin(), m_came.begin() + static_cast<long>(size));
    m_given += size;
    return size > 0;
}

LogItem WallReceiver::next(frames::FrameInput& input, std::vector<frames::PartDigest>& digests) {
    LogItem item = LogItem::more;
    while ((item = m_decoder.next(input, digests)) == LogItem::more && readOn()) {
    }
    return item == LogItem::more && m_decoder.isWhole() ? LogItem::end : item;
}

double WallReceiver::getPart() const {
    const auto size = static_cast<double>(m_subscriber->getSize());
    return size > 0 ? std::min(static_cast<double>(m_given) / size, 1.0) : 1;
}
