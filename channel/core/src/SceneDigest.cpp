// SPDX-License-Identifier: MIT

// Everything is walked in the order in which the scene holds it, which its history alone decides:
// never in the order of addresses.

#include "SceneDigest.h"

#include "Environment.h"
#include "channel/interface/OperatorInterface.h"
#include "frames/Digest.h"
#include "ig/app/Engine.h"
#include "ig/net/SocketUDP.h"
#include "ig/physics/BodyRope.h"
#include "ig/physics/Joint.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <algorithm>
#include <set>

using namespace ig;
using frames::Digest;

namespace {

/// Numbers without padding, as they lie: equal means the same bits.
template <class T>
void addBits(Digest& digest, const T& numbers) {
    static_assert(std::is_trivially_copyable_v<T>);
    digest.add(&numbers, sizeof numbers);
}

void addText(Digest& digest, std::string_view text) { digest.add(text.data(), text.size()); }

/// The parts that nodes of a type belong to; what is in none is among the "nodes".
struct NodePart {
    int type;
    const char* name;
    Digest digest;
};

class SceneWalk {
public:
    explicit SceneWalk(const SceneView& scene) : m_scene(scene) {
        for (const Node* node : scene.world.getNodes())
            visit(*node);
    }
    std::vector<frames::PartDigest> finish();

private:
    void visit(const Node& node);
    void addEmitter(const ObjectParticles& emitter, Digest& digest) const;
    void addSea(const ObjectOcean& sea);
    void addMaterials(const Object& object);
    Digest digestFeedback() const;
    Digest digestEnvironment() const;
    Digest digestBodies() const;
    Digest digestParticles() const;
    Digest digestPanels() const;

    const SceneView& m_scene;
    NodePart m_nodes[13] = {{NODE_DUMMY, "nodes", {}},
                            {NODE_FIELD, "fields", {}},
                            {NODE_CAMERA, "cameras", {}},
                            {NODE_DOWNDRAUGHT, "downdraughts", {}},
                            {DECAL_ORTHO, "decals", {}},
                            {OBJECT_MESH, "meshes", {}},
                            {OBJECT_PREFAB, "prefabs", {}},
                            {OBJECT_PARTICLES, "emitters", {}},
                            {OBJECT_OCEAN, "oceans", {}},
                            {OBJECT_TERRAIN, "terrains", {}},
                            {OBJECT_LIGHT, "lights", {}},
                            {OBJECT_ROPE, "ropes", {}},
                            {NODE_CAMERA_RADAR, "radar cameras", {}}};
    Digest m_sea, m_materials;
    std::set<const Material*> m_seen; ///< materials; never walked
};

void SceneWalk::visit(const Node& node) {
    const int type = node.getType();
    const auto* emitter =
        type == OBJECT_PARTICLES ? static_cast<const ObjectParticles*>(&node) : nullptr;
    if (emitter && emitter->isOfDisplay()) return;
    NodePart* const part =
        std::ranges::find_if(m_nodes, [type](const NodePart& p) { return p.type == type; });
    Digest& digest = (part == std::end(m_nodes) ? m_nodes : part)->digest;
    digest.add(type);
    digest.add(node.isEnabled());
    addBits(digest, node.getWorldTransform());
    if (emitter) addEmitter(*emitter, digest);
    if (type == NODE_FIELD)
        for (int i = 0; i < 3; i++)
            digest.add(static_cast<const NodeField&>(node).getParameter(i));
    if (type == OBJECT_OCEAN) addSea(static_cast<const ObjectOcean&>(node));
    if (node.isObject()) addMaterials(static_cast<const Object&>(node));
    for (int i = 0; i < node.getNumChildren(); i++)
        visit(*node.getChild(i));
}

void SceneWalk::addEmitter(const ObjectParticles& emitter, Digest& digest) const {
    digest.add(emitter.isEmitterEnabled());
    digest.add(emitter.getSpawnRate());
    digest.add(emitter.getSpawnTime(1));
    digest.add(emitter.getLife());
    digest.add(emitter.getLinearVelocity());
    digest.add(emitter.getNumCleared());
    addBits(digest, emitter.getGround());
}

void SceneWalk::addSea(const ObjectOcean& sea) {
    m_sea.add(sea.getBeaufort());
    m_sea.add(sea.getSpeed());
    m_sea.add(sea.getAngle());
    // One that is not there stands still until it comes: asking would move it.
    if (sea.isEnabled()) addBits(m_sea, sea.getWorldPoint(m_scene.camera.getWorldPosition()));
}

void SceneWalk::addMaterials(const Object& object) {
    for (int surface = 0; surface < object.getNumSurfaces(); surface++) {
        const Material* material = object.getSurfaceMaterial(surface);
        if (!material || !m_seen.insert(material).second) continue;
        for (int i = 0; i < material->getNumParameters(); i++)
            addBits(m_materials, material->getParameterValue(i));
        for (int i = 0; i < material->getNumStates(); i++)
            m_materials.add(material->getStateValue(i));
    }
}

Digest SceneWalk::digestFeedback() const {
    Digest digest;
    for (const SocketUDP* socket : SocketUDP::getOpenSockets()) {
        digest.add(socket->getStatistics().sent_digest);
        digest.add(socket->getStatistics().datagrams_received);
    }
    return digest;
}

Digest SceneWalk::digestEnvironment() const {
    Digest digest;
    const Engine& engine = *Engine::get();
    digest.add(engine.getFrame());
    digest.add(engine.getRunningTime());
    for (int i = 0; i < ENVIRONMENT_COUNT; i++)
        digest.add(engine.getEnvironment(static_cast<EnvironmentValue>(i)));
    digest.add(engine.getWindOrigin());
    digest.add(engine.getWindStrength());
    addBits(digest, m_scene.environment.getShown());
    addBits(digest, m_scene.environment.getWind());
    addText(digest, m_scene.environment.describe()); // the hour, and what is asked for
    return digest;
}

Digest SceneWalk::digestBodies() const {
    Digest digest;
    for (const Body* body : m_scene.world.getPhysics().getBodies()) {
        digest.add(body->isEnabled());
        addBits(digest, body->getTransform());
        for (int i = 0; i < body->getNumJoints(); i++)
            digest.add(body->getJoint(i)->isBroken());
        if (body->getType() == Body::BODY_RIGID) {
            const auto* rigid = static_cast<const BodyRigid*>(body);
            addBits(digest, rigid->getLinearVelocity());
            addBits(digest, rigid->getAngularVelocity());
        } else {
            const auto* rope = static_cast<const BodyRope*>(body);
            digest.add(rope->getHangingLength());
            addBits(digest, rope->getEndVelocity());
            for (int i = 0; i <= BodyRope::SEGMENTS; i++)
                addBits(digest, rope->getPoint(i));
        }
    }
    return digest;
}

Digest SceneWalk::digestParticles() const {
    Digest digest;
    m_scene.particles.forEach([&digest](const ParticleCloud& cloud) {
        if (cloud.emitter->isOfDisplay()) return;
        addBits(digest, cloud.origin);
        digest.add(cloud.particles.data(), cloud.particles.size() * sizeof(Particle));
    });
    return digest;
}

Digest SceneWalk::digestPanels() const {
    UiDrawList list;
    m_scene.interface.drawPanels(list);
    Digest digest;
    for (const UiDrawList::Command& command : list.getCommands()) {
        digest.add(command.kind);
        addBits(digest, std::array{command.x, command.y, command.w, command.h});
        addBits(digest, command.rgba);
        digest.add(command.viewport);
        addText(digest, list.text(command));
    }
    return digest;
}

std::vector<frames::PartDigest> SceneWalk::finish() {
    Digest camera;
    addBits(camera, m_scene.camera.getWorldTransform());
    std::vector<frames::PartDigest> parts = {
        {"feedback", digestFeedback().get()},
        {"environment", digestEnvironment().get()},
        {"sea", m_sea.get()},
        {"bodies", digestBodies().get()},
        {"materials", m_materials.get()},
        {"particles", digestParticles().get()},
        {"camera", camera.get()},
        {"panels", digestPanels().get()},
    };
    for (const NodePart& part : m_nodes)
        parts.push_back({part.name, part.digest.get()});
    return parts;
}

} // namespace

std::vector<frames::PartDigest> digestScene(const SceneView& scene) {
    return SceneWalk(scene).finish();
}
