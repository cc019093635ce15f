// SPDX-License-Identifier: MIT
#include "ig/scene/ParticleSystem.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float LONGEST_STEP = 0.5f; ///< s
constexpr double LONGEST_WAY = 100;  ///< m, of an emitter in one step
constexpr double FARTHEST = 1000;    ///< m from the origin before it is moved along
constexpr double WAKE_SPEED = 5;     ///< m/s at which a flat emitter reaches its rate
constexpr std::size_t MOST = 12000;  ///< particles of one emitter
constexpr float GRAVITY = 9.81f;     ///< m/s²

constexpr std::uint32_t DISPLAY_STREAMS = 1u << 31; ///< those of a display's own count from here

/// Where the stream of that number begins: neighbours far from each other (the finalizer of
/// MurmurHash3).
std::uint32_t beginStream(std::uint32_t number) {
    number = (number ^ number >> 16) * 0x85ebca6bu;
    number = (number ^ number >> 13) * 0xc2b2ae35u;
    return number ^ number >> 16;
}

/// The next number of a stream, −1 to 1.
float draw(std::uint32_t& stream) {
    stream = stream * 1664525u + 1013904223u;
    return static_cast<float>(stream >> 8) / 8388608.0f - 1;
}

} // namespace

void ParticleSystem::advance(const World& world, float dt) {
    if (!(dt > 0)) return;
    m_round++;
    for (const Node* node : world.getNodes())
        visit(*node, std::min(dt, LONGEST_STEP), false);
    // Emitters that are gone or hidden.
    std::erase_if(m_clouds, [this](const auto& item) { return item.second.round != m_round; });
}

void ParticleSystem::visit(const Node& node, float dt, bool below_decal) {
    if (!node.isEnabled()) return;
    if (node.getType() == OBJECT_PARTICLES)
        advanceEmitter(static_cast<const ObjectParticles&>(node), dt, below_decal);
    below_decal |= node.getType() == DECAL_ORTHO;
    for (int i = 0; i < node.getNumChildren(); i++)
        visit(*node.getChild(i), dt, below_decal);
}

void ParticleSystem::advanceEmitter(const ObjectParticles& emitter, float dt, bool flat) {
    Entry& entry = m_clouds[emitter.getID()];
    const dvec3 position = emitter.getWorldPosition();
    if (!entry.cloud.emitter) {
        entry.cloud.emitter = &emitter;
        entry.cloud.origin = position;
        entry.position = position;
        entry.cleared = emitter.getNumCleared();
        entry.random = beginStream(emitter.isOfDisplay() ? DISPLAY_STREAMS + ++m_display_streams
                                                         : ++m_streams);
    }
    if (entry.cleared != emitter.getNumCleared()) entry.cloud.particles.clear();
    entry.cleared = emitter.getNumCleared();
    entry.cloud.flat = flat;
    entry.round = m_round;
    const Material* material = emitter.getSurfaceMaterial(0);
    const Motion motion{readSlider(material, "gravity", 0), readSlider(material, "drag", 0),
                        readSlider(material, "spin", 0), readSlider(material, "wind", 0)};
    // Foam lies where a hull has gone: it doesn't pile up around a still one.
    const dvec3 moved = position - entry.position;
    const double speed = length(moved) / dt;
    const double share = flat ? std::min(speed / WAKE_SPEED, 1.0) : 1;
    entry.position = position;
    keepNear(position, entry.cloud);
    move(entry.cloud, motion, dt);
    // One that was put elsewhere leaves no trail on its way.
    entry.way = length(moved) < LONGEST_WAY ? vec3(moved) : vec3();
    spawn(emitter, entry, motion, static_cast<float>(share), dt);
    deflect(emitter, entry.cloud);
}

/// Moves the origin to the emitter when that has gone far.
void ParticleSystem::keepNear(const dvec3& position, ParticleCloud& cloud) {
    const dvec3 moved = position - cloud.origin;
    if (length(moved) > FARTHEST) {
        for (Particle& particle : cloud.particles)
            particle.position = vec3(dvec3(particle.position) - moved);
        cloud.origin = position;
    }
    cloud.up = vec3(EllipsoidModel().getUp(cloud.origin));
}

void ParticleSystem::move(ParticleCloud& cloud, const Motion& motion, float dt) const {
    vec3 air;
    if (motion.wind > 0) {
        const dmat4 level = EllipsoidModel().getWGSTransform(cloud.origin);
        const double towards = m_wind_direction * DEG_TO_RAD<double>;
        air = vec3(level.getX() * std::cos(towards) + level.getY() * std::sin(towards)) *
              (m_wind_speed * motion.wind);
    }
    // Drag brakes down to the speed of the air that carries them.
    const float brake = 1 / (1 + motion.drag * dt);
    const vec3 gain = cloud.up * (-GRAVITY * motion.gravity * dt * brake) + air * (1 - brake);
    for (Particle& p : cloud.particles) {
        p.velocity = p.velocity * brake + gain;
        p.position += p.velocity * dt;
        p.turn += p.spin * dt;
        p.age += dt;
    }
    std::erase_if(cloud.particles, [](const Particle& p) { return p.age >= p.life; });
}

void ParticleSystem::spawn(const ObjectParticles& emitter, Entry& entry, const Motion& motion,
                           float share, float dt) {
    const float count = emitter.getSpawnRate() * share * emitter.getSpawnTime(dt);
    if (!(count > 0)) return;
    entry.owed = std::min(entry.owed + count, static_cast<double>(MOST));
    makeRoom(emitter, entry.cloud.particles);
    const dmat4& pose = emitter.getWorldTransform();
    const vec3 axes[3] = {vec3(pose.getX()), vec3(pose.getY()), vec3(pose.getZ())};
    const vec3 start(pose.getTranslate() - entry.cloud.origin);
    const vec3 box = emitter.getSpread();
    const vec2 ring = emitter.getRing();
    const auto random = [&entry] { return draw(entry.random); };
    for (; entry.owed >= 1; entry.owed -= 1) {
        if (entry.cloud.particles.size() >= MOST) continue;
        Particle p;
        p.life = emitter.getLife() + emitter.getLifeSpread() * random();
        if (!(p.life > 0)) continue;
        // Born anywhere in the step, so that a fast emitter leaves a trail and no bursts.
        p.age = dt * 0.5f * (1 + random());
        p.velocity = axes[2] * emitter.getLinearVelocity() +
                     vec3{random(), random(), random()} * emitter.getLinearVelocitySpread();
        vec2 place{box.x * random(), box.y * random()};
        if (ring.y > 0) { // evenly over the ring's area
            const float angle = 3.1416f * random(), area = 0.5f * (1 + random());
            const float radius = std::sqrt(std::lerp(ring.x * ring.x, ring.y * ring.y, area));
            const vec2 outwards{std::cos(angle), std::sin(angle)};
            place = {radius * outwards.x, radius * outwards.y};
            p.velocity += (axes[0] * outwards.x + axes[1] * outwards.y) * emitter.getOutflow();
        }
        p.position = start + axes[0] * place.x + axes[1] * place.y + axes[2] * (box.z * random()) +
                     p.velocity * p.age - entry.way * (p.age / dt);
        p.turn = 3.1416f * random();
        p.spin = motion.spin * random();
        p.variety = 0.5f * (1 + random());
        entry.cloud.particles.push_back(p);
    }
}

/// As much as the rate comes to in the long run, so that a steady emitter allocates once.
void ParticleSystem::makeRoom(const ObjectParticles& emitter, std::vector<Particle>& particles) {
    const float steady =
        emitter.getSpawnRate() * (emitter.getLife() + std::abs(emitter.getLifeSpread()));
    const auto needed = static_cast<std::size_t>(std::clamp(steady, 0.0f, MOST - 1.0f)) + 1;
    if (particles.capacity() < needed)
        particles.reserve(std::max(needed, 2 * particles.capacity())); // a rate may creep upwards
}

/// A deflector keeps its whole column free.
void ParticleSystem::deflect(const ObjectParticles& emitter, ParticleCloud& cloud) {
    const vec2 half = emitter.getDeflectorSize();
    for (int i = 0; i < emitter.getNumDeflectors(); i++) {
        const dmat4& deflector = emitter.getDeflectorTransform(i);
        const vec3 middle(deflector.getTranslate() - cloud.origin);
        // Divided by their squares, the axes measure in the deflector's own scale.
        const dvec3 x = deflector.getX(), y = deflector.getY();
        const vec3 across(x / dot(x, x)), along(y / dot(y, y));
        std::erase_if(cloud.particles, [&](const Particle& p) {
            const vec3 d = p.position - middle;
            return std::abs(dot(d, across)) < half.x && std::abs(dot(d, along)) < half.y;
        });
    }
}

int ParticleSystem::getNumParticles() const {
    std::size_t sum = 0;
    for (const auto& [id, entry] : m_clouds)
        sum += entry.cloud.particles.size();
    return static_cast<int>(sum);
}

} // namespace ig
