// SPDX-License-Identifier: MIT
#include "Status.h"

#include "LogicListener.h"
#include "host/interface/LinkState.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/ObjectPrefab.h"

#include <algorithm>
#include <cstdio>

using namespace ig;

void Status::addFrame(float dt, double work) {
    m_frames++;
    m_time += static_cast<double>(dt);
    m_work += work;
    m_worst = std::max(m_worst, work);
}

void Status::print(const LogicListener& listener) {
    if (m_time - m_last_time < 1) return;
    const double rate = (m_frames - m_last_frames) / (m_time - m_last_time);
    m_last_time = m_time;
    m_last_frames = m_frames;
    if (m_quiet) return;
    const LinkState link = LinkState::read();
    char age[32] = "none yet";
    if (link.age() >= 0) std::snprintf(age, sizeof age, "%.0f ms ago", link.age() * 1e3);
    std::printf("%7.1f s %6.1f fps | records %llu received, %d applied, last %s", m_time, rate,
                static_cast<unsigned long long>(link.received), listener.m_records, age);
    if (const Node* helicopter = listener.m_helicopter) {
        const dvec3 geodetic = EllipsoidModel().toWGS(helicopter->getWorldPosition());
        const dvec3 hpr = helicopter->getWgsHPR();
        std::printf(" | lon %.6f lat %.6f alt %.2f m, hdg %.1f pitch %.1f roll %.1f", geodetic.x,
                    geodetic.y, geodetic.z, hpr.x, hpr.y, hpr.z);
    }
    std::printf(" | feedback %llu sent\n", static_cast<unsigned long long>(link.sent));
    std::fflush(stdout);
}

void Status::printSummary(const LogicListener& listener) const {
    const LinkState link = LinkState::read();
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
