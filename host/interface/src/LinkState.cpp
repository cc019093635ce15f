// SPDX-License-Identifier: MIT
#include "host/interface/LinkState.h"

#include "ig/net/SocketUDP.h"

#include <algorithm>
#include <chrono>

using namespace ig;

LinkState LinkState::read() {
    LinkState link;
    for (const SocketUDP* socket : SocketUDP::getOpenSockets()) {
        const SocketStatistics& s = socket->getStatistics();
        link.received += s.datagrams_received;
        link.sent += s.datagrams_sent;
        link.truncated += s.truncated;
        link.filtered += s.filtered;
        link.empty += s.empty;
        link.failed += s.send_failures;
        link.last_received = std::max(link.last_received, s.last_received);
    }
    return link;
}

double LinkState::age() const {
    if (last_received <= 0) return -1;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count() - last_received;
}
