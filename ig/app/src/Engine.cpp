// SPDX-License-Identifier: MIT
#include "ig/app/Engine.h"

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

void Engine::reset() { *this = Engine(); }

} // namespace ig
