// SPDX-License-Identifier: MIT
#include "Status.h"

#include "LogicListener.h"
#include "channel/interface/LinkMonitor.h"
#include "channel/interface/PaceMonitor.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/ObjectPrefab.h"
#include "program/Process.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

using namespace ig;

void Status::addFrame(float dt, double work) {
    m_frames++;
    m_time += dt;
    m_work += work;
    m_worst = std::max(m_worst, work);
}

void Status::print(const LogicListener& listener, const LinkMonitor& link, const PaceMonitor& pace,
                   const std::string& environment) {
    if (m_time - m_last_time < 1) return;
    const double rate = (m_frames - m_last_frames) / (m_time - m_last_time);
    m_last_time = m_time;
    m_last_frames = m_frames;
    // The next one is newer: no frame waits for whoever reads them.
    if (m_quiet || !program::takesOutput(STDOUT_FILENO)) return;
    char age[32] = "none yet";
    if (pace.getAge() >= 0) std::snprintf(age, sizeof age, "%.0f ms ago", pace.getAge() * 1e3);
    std::printf("%7.1f s %6.1f fps | records %llu received, %d applied, last %s", m_time, rate,
                static_cast<unsigned long long>(link.getReceived().datagrams_received),
                listener.m_applied, age);
    const std::string wrong = link.getStatus();
    if (!wrong.empty()) std::printf(" | link: %s", wrong.c_str());
    const std::string late = pace.getStatus();
    if (!late.empty()) std::printf(" | pacing: %s", late.c_str());
    if (const Node* focus = listener.m_focus) {
        const dvec3 geodetic = EllipsoidModel().toWGS(focus->getWorldPosition());
        const dvec3 hpr = focus->getWgsHPR();
        std::printf(" | lon %.6f lat %.6f alt %.2f m, hdg %.1f pitch %.1f roll %.1f", geodetic.x,
                    geodetic.y, geodetic.z, hpr.x, hpr.y, hpr.z);
    }
    std::printf(" | %s | feedback %llu sent\n", environment.c_str(),
                static_cast<unsigned long long>(link.getSent().datagrams_sent));
    std::fflush(stdout);
}

void Status::printSummary(const LogicListener& listener, const LinkMonitor& link,
                          const PaceMonitor& pace) const {
    std::printf(
        "%d frames in %.2f s of scene time; work per frame %.3f ms mean, %.3f ms worst\n%s%s",
        m_frames, m_time, m_frames ? m_work / m_frames * 1e3 : 0.0, m_worst * 1e3,
        pace.getSummary().c_str(), link.getSummary(listener.m_applied, listener.m_resets).c_str());
    std::fflush(stdout);
}
