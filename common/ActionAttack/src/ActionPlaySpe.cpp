// SPDX-License-Identifier: MIT
#include "common/ActionAttack/ActionPlaySpe.h"

#include "ig/app/Engine.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"

using namespace ig;

namespace {
const MemSite CREATE = {"../common/ActionAttack", "ActionPlaySpe::Create"};
constexpr float START_DELAY = 0.1f; ///< seconds before the effect is first started
} // namespace

ActionPlaySpe* ActionPlaySpe::Create(World* world, const jString& path, float duration,
                                     const dvec3& position) {
    auto* action = memNew<ActionPlaySpe>(CREATE);
    if (!action || action->initWithDuration(world, path, duration, position)) return action;
    action->release();
    memDelete(action, CREATE);
    return nullptr;
}

bool ActionPlaySpe::initWithDuration(World* world, const jString& path, float duration,
                                     const dvec3& position) {
    m_duration = duration;
    const Package* file = PackageManager::get(path, "ActionPlaySpe::initWithDuration");
    const Package* description = file ? file->getPackage("node") : nullptr;
    Node* node = World::LoadNode(description);
    if (!node) return false;
    if (node->getType() != OBJECT_PARTICLES) {
        delete node;
        return false;
    }
    m_particles = static_cast<ObjectParticles*>(node);
    m_particles->setWorldTransform(
        Engine::get()->getEllipsoidModel()->getWGSTransform(position, true));
    m_particles->stop();
    world->addNode(m_particles);
    setDuration(m_duration);
    m_elapsed = 0;
    return true;
}

bool ActionPlaySpe::step(float dt) {
    if (m_elapsed > START_DELAY && !m_particles->isEmitterEnabled()) m_particles->play();
    return ActionInterval::step(dt);
}

void ActionPlaySpe::release() {
    World* world = Engine::get()->getWorld();
    if (m_particles && world) world->removeNode(m_particles);
    m_particles = nullptr;
    ActionInterval::release();
}
