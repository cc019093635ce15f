// SPDX-License-Identifier: MIT
#include "Trace.h"

#include "LogicListener.h"
#include "channel/interface/PaceMonitor.h"
#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/scene/ObjectPrefab.h"

#include <array>
#include <cstdio>

using namespace ig;
using program::OutputFile;

bool Trace::check(const std::string& path) {
    const std::string why = OutputFile::whyNot(path, OutputFile::Kind::growing);
    if (!why.empty()) jLog::error("--trace: cannot write \"%s\": %s", path.c_str(), why.c_str());
    return why.empty();
}

bool Trace::open(const std::string& path) {
    const bool good =
        m_file.open(path, OutputFile::Kind::growing) &&
        m_file.write("frame,time,begin,records,longitude,latitude,altitude,heading,pitch,roll,"
                     "shown,late,age\n");
    if (!good) report();
    return good;
}

void Trace::note(const LogicListener& listener) {
    m_shown.reset();
    if (!m_file.isOpen() || !listener.m_focus) return;
    const Engine* engine = Engine::get();
    const Node* focus = listener.m_focus;
    m_shown = {engine->getFrame(), listener.m_applied, engine->getRunningTime(),
               engine->getEllipsoidModel()->toWGS(focus->getWorldPosition()), focus->getWgsHPR()};
}

void Trace::write(double start, const FrameTiming& timing, double age) {
    if (!m_shown) return;
    const dvec3 &g = m_shown->place, &hpr = m_shown->attitude;
    std::array<char, 24> age_text{};
    if (age >= 0) std::snprintf(age_text.data(), age_text.size(), "%.6f", age);
    std::array<char, 320> line;
    std::snprintf(line.data(), line.size(),
                  "%d,%.6f,%.6f,%d,%.10f,%.10f,%.5f,%.5f,%.5f,%.5f,%.6f,%d,%s\n", m_shown->frame,
                  m_shown->time, start + timing.begin, m_shown->applied, g.x, g.y, g.z, hpr.x,
                  hpr.y, hpr.z, start + timing.handed_over, timing.late, age_text.data());
    if (!m_file.write(line.data())) report();
}

void Trace::close() {
    if (m_file.isOpen() && !m_file.close()) report();
}

void Trace::report() const {
    jLog::error("--trace: %s: there is no trace of this run", m_file.getMessage().c_str());
}
