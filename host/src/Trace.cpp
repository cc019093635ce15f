// SPDX-License-Identifier: MIT
#include "Trace.h"

#include "LogicListener.h"
#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/scene/ObjectPrefab.h"

#include <cerrno>
#include <cstring>

using namespace ig;

bool Trace::open(const std::string& path) {
    m_file = std::fopen(path.c_str(), "w");
    if (!m_file) {
        jLog::error("Trace::open: \"%s\": %s", path.c_str(), std::strerror(errno));
        return false;
    }
    std::fputs("frame,time,begin,records,longitude,latitude,altitude,heading,pitch,roll\n", m_file);
    return true;
}

void Trace::write(double begin, const LogicListener& listener) {
    if (!m_file || !listener.m_helicopter) return;
    const Engine* engine = Engine::get();
    const Node* helicopter = listener.m_helicopter;
    const dvec3 g = engine->getEllipsoidModel()->toWGS(helicopter->getWorldPosition());
    const dvec3 hpr = helicopter->getWgsHPR();
    std::fprintf(m_file, "%d,%.6f,%.6f,%d,%.10f,%.10f,%.5f,%.5f,%.5f,%.5f\n", engine->getFrame(),
                 engine->getRunningTime(), begin, listener.m_records, g.x, g.y, g.z, hpr.x, hpr.y,
                 hpr.z);
}

void Trace::close() {
    if (m_file) std::fclose(m_file);
    m_file = nullptr;
}
