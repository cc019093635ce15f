// SPDX-License-Identifier: MIT
#include "ig/app/Engine.h"

#include <algorithm>
#include <cmath>

namespace ig {

Engine* Engine::get() {
    static Engine engine;
    return &engine;
}

void Engine::beginFrame(float dt, bool still) {
    m_frame++;
    m_frame_time = dt;
    m_scene_step = still ? 0 : dt;
    m_running_time += m_scene_step;
}

void Engine::setEnvironment(EnvironmentValue which, float value) {
    if (std::isfinite(value)) m_environment[which] = value;
}

void Engine::setWindDirection(float direction) {
    if (std::isfinite(direction)) m_wind_direction = direction;
}

void Engine::setWindStrength(float strength) {
    if (std::isfinite(strength)) m_wind_strength = std::clamp(strength, 0.0f, 10000.0f);
}

void Engine::reset() { *this = Engine(); }

} // namespace ig
