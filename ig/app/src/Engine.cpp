// SPDX-License-Identifier: MIT
#include "ig/app/Engine.h"

#include <algorithm>
#include <cmath>

namespace ig {

Engine* Engine::get() {
    static Engine engine;
    return &engine;
}

void Engine::beginFrame(float dt) {
    m_frame++;
    m_frame_time = dt;
    m_running_time += static_cast<double>(dt);
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
