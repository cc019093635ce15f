// SPDX-License-Identifier: MIT
#include "Status.h"

#include "LogicListener.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/net/SocketUDP.h"
#include "ig/scene/ObjectPrefab.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>

using namespace ig;

namespace {

/// What passed over all sockets of the process: the logic's link.
struct Link {
    std::uint64_t received = 0, sent = 0, truncated = 0, filtered = 0, empty = 0, failed = 0;
    double last = 0; ///< steady clock, s; 0 before the first
};

Link readLink() {
    Link link;
    for (const SocketUDP* socket : SocketUDP::getOpenSockets()) {
        const SocketStatistics& s = socket->getStatistics();
        link.received += s.datagrams_received;
        link.sent += s.datagrams_sent;
        link.truncated += s.truncated;
        link.filtered += s.filtered;
        link.empty += s.empty;
        link.failed += s.send_failures;
        link.last = std::max(link.last, s.last_received);
    }
    return link;
}

double steadyNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

void Status::addFrame(float dt, double work) {
    m_frames++;
    m_time += static_cast<double>(dt);
    m_work += work;
    m_worst = std::max(m_worst, work);
}

void Status::print(const LogicListener& listener, const std::string& environment) {
    if (m_time - m_last_time < 1) return;
    const double rate = (m_frames - m_last_frames) / (m_time - m_last_time);
    m_last_time = m_time;
    m_last_frames = m_frames;
    if (m_quiet) return;
    const Link link = readLink();
    char age[32] = "none yet";
    if (link.last > 0)
        std::snprintf(age, sizeof age, "%.0f ms ago", (steadyNow() - link.last) * 1e3);
    std::printf("%7.1f s %6.1f fps | records %llu received, %d applied, last %s", m_time, rate,
                static_cast<unsigned long long>(link.received), listener.m_records, age);
    if (const Node* helicopter = listener.m_helicopter) {
        const dvec3 geodetic = EllipsoidModel().toWGS(helicopter->getWorldPosition());
        const dvec3 hpr = helicopter->getWgsHPR();
        std::printf(" | lon %.6f lat %.6f alt %.2f m, hdg %.1f pitch %.1f roll %.1f", geodetic.x,
                    geodetic.y, geodetic.z, hpr.x, hpr.y, hpr.z);
    }
    std::printf(" | %s | feedback %llu sent\n", environment.c_str(),
                static_cast<unsigned long long>(link.sent));
    std::fflush(stdout);
}

void Status::printSummary(const LogicListener& listener) const {
    const Link link = readLink();
    std::printf("%d frames in %.2f s of scene time; work per frame %.3f ms mean, %.3f ms worst\n"
                "records: %llu received, %d applied, %llu cut, %llu from others, %llu empty; "
                "%d resets\nfeedback: %llu sent, %llu failed\n",
                m_frames, m_time, m_frames ? m_work / m_frames * 1e3 : 0.0, m_worst * 1e3,
                static_cast<unsigned long long>(link.received), listener.m_records,
                static_cast<unsigned long long>(link.truncated),
                static_cast<unsigned long long>(link.filtered),
                static_cast<unsigned long long>(link.empty), listener.m_resets,
                static_cast<unsigned long long>(link.sent),
                static_cast<unsigned long long>(link.failed));
    std::fflush(stdout);
}
