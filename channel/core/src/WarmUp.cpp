// SPDX-License-Identifier: MIT
#include "WarmUp.h"

#include "ig/package/PackageManager.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "program/Clock.h"
#include "program/Process.h"

#include <cstdio>
#include <unistd.h>

using namespace ig;
using program::steadyNow;

namespace {
constexpr double TOLD_EVERY = 1, SHOWN_EVERY = 0.1; ///< s: on the console, in the window
} // namespace

bool WarmUp::run(Renderer& renderer, const Scene& scene, const std::function<bool()>& keep_window) {
    m_told = steadyNow();
    const Node::BorrowedIds ids;
    World later;
    for (const jString& path : scene.later)
        later.addNode(new ObjectPrefab(path));
    bool wanted = true;
    renderer.prepare({scene.world, later, scene.camera, scene.frame, [&](double done) {
                          wanted = wanted && tell(done, keep_window);
                          return wanted;
                      }});
    return wanted;
}

bool WarmUp::tell(double done, const std::function<bool()>& keep_window) {
    const double now = steadyNow();
    if (now - m_told >= TOLD_EVERY) {
        m_told = now;
        if (program::takesOutput(STDOUT_FILENO)) { // else the next one is newer
            std::printf("preparing: %.0f %%\n", 100 * done);
            std::fflush(stdout);
        }
    }
    if (now - m_shown < SHOWN_EVERY) return true;
    m_shown = now;
    return keep_window();
}

void WarmUp::end(const Renderer& renderer) {
    m_made = renderer.getMade();
    m_read = countRead();
}

int WarmUp::countRead() { return PackageManager::getNumRead() + Mesh::getNumRead(); }

std::string WarmUp::getSummary(const Renderer& renderer) const {
    const RenderResources made = renderer.getMade();
    char line[160];
    std::snprintf(
        line, sizeof line, "made after the start: %d programs, %d textures; %d scene files read\n",
        made.programs - m_made.programs, made.textures - m_made.textures, countRead() - m_read);
    return line;
}
