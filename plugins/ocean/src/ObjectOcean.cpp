// SPDX-License-Identifier: MIT
#include "plugins/ocean/ObjectOcean.h"

#include "SurfaceRay.h"
#include "WaveField.h"
#include "ig/app/Engine.h"
#include "ig/math/quat.h"
#include "ig/scene/NodeReader.h"
#include "ig/scene/World.h"

#include <limits>

namespace ig {

namespace {

const EllipsoidModel EARTH;

constexpr float MAX_BEAUFORT = 12;
constexpr float MAX_SPEED = 75; ///< m/s; the strongest winds at sea stay below

Node* create(const NodeReader& r) {
    auto* sea = new ObjectOcean();
    sea->setBeaufort(r.getNumber("beaufort", sea->getBeaufort()));
    sea->setSpeed(r.getNumber("speed", sea->getSpeed()));
    sea->setAngle(r.getNumber("angle", sea->getAngle()));
    return sea;
}
using enum NodeKeys::Kind;
const bool TYPE = NodeFactory::add("ocean", create,
                                   {{number, {"beaufort"}, nullptr, 0, MAX_BEAUFORT},
                                    {number, {"speed"}, nullptr, 0, MAX_SPEED},
                                    {number, {"angle"}}});

} // namespace

ObjectOcean::ObjectOcean()
    : Object(OBJECT_OCEAN), m_waves(std::make_unique<WaveField>()),
      m_anchored_at(std::numeric_limits<double>::quiet_NaN(), 0, 0) {
    setNumSurfaces(1);
}

ObjectOcean::~ObjectOcean() = default;

// ------------------------------------------------------------------ settings

/// Clamps a value to its range. False, with the value to be left alone, when it is not finite.
bool ObjectOcean::accept(const char* operation, float& value, float low, float high,
                         LogLimiter& limiter) {
    if (!std::isfinite(value)) {
        if (limiter.allow()) jLog::warning("%s: a value that is not finite is refused", operation);
        return false;
    }
    const float clamped = std::clamp(value, low, high);
    if (clamped != value && limiter.allow())
        jLog::warning("%s: %g is out of range, %g is used", operation, value, clamped);
    value = clamped;
    return true;
}

void ObjectOcean::setBeaufort(float beaufort) {
    if (!accept("ObjectOcean::setBeaufort", beaufort, 0, MAX_BEAUFORT, m_beaufort_limiter)) return;
    SeaSettings settings = m_waves->get();
    settings.beaufort = beaufort;
    m_waves->set(settings);
}

void ObjectOcean::setSpeed(float speed) {
    if (!accept("ObjectOcean::setSpeed", speed, 0, MAX_SPEED, m_speed_limiter)) return;
    SeaSettings settings = m_waves->get();
    settings.wind = speed;
    m_waves->set(settings);
}

void ObjectOcean::setAngle(float angle) {
    constexpr float ANY = std::numeric_limits<float>::max();
    if (!accept("ObjectOcean::setAngle", angle, -ANY, ANY, m_angle_limiter)) return;
    SeaSettings settings = m_waves->get();
    angle = std::fmod(angle, 360.0f);
    if (angle < 0) angle += 360;
    settings.angle = angle < 360 ? angle : 0; // a hair below 0 rounds up
    m_waves->set(settings);
}

float ObjectOcean::getBeaufort() const { return static_cast<float>(m_waves->get().beaufort); }

float ObjectOcean::getSpeed() const { return static_cast<float>(m_waves->get().wind); }

float ObjectOcean::getAngle() const { return static_cast<float>(m_waves->get().angle); }

// ------------------------------------------------------------------ the present sea

void ObjectOcean::evolve(double time) {
    m_waves->evolve(time);
    m_evolved = true;
    m_frame = Engine::get()->getFrame();
}

void ObjectOcean::keepUp(const World& world) {
    const auto visit = [](const auto& self, const Node& node) -> void {
        if (!node.isEnabled()) return;
        if (node.getType() == OBJECT_OCEAN) static_cast<const ObjectOcean&>(node).present();
        for (int i = 0; i < node.getNumChildren(); i++)
            self(self, *node.getChild(i));
    };
    for (const Node* node : world.getNodes())
        visit(visit, *node);
}

/// The sea of this frame.
const WaveField& ObjectOcean::present() const {
    const Engine* engine = Engine::get();
    if (!m_evolved || m_frame != engine->getFrame()) {
        m_waves->evolve(engine->getRunningTime());
        m_evolved = true;
        m_frame = engine->getFrame();
    }
    anchor();
    return *m_waves;
}

/// Follows the node's place.
void ObjectOcean::anchor() const {
    const dvec3 position = getWorldPosition();
    if (position == m_anchored_at) return;
    m_anchored_at = position;
    const dvec3 geodetic = EARTH.toWGS(position);
    const dvec2 scale = EARTH.getDegreeLengths(geodetic.y);
    m_waves->setAnchor(geodetic.x, geodetic.y, scale.x, scale.y);
}

const OceanFrame& ObjectOcean::getFrame() const {
    present();
    m_waves->evolveSlopes();
    return m_waves->getFrame();
}

// ------------------------------------------------------------------ queries

dvec3 ObjectOcean::getWorldPoint(const dvec3& world) const {
    const WaveField& waves = present();
    dvec3 geodetic = EARTH.toWGS(world);
    const dvec2 place = waves.getFrame().toPlane(geodetic.x, geodetic.y);
    geodetic.z = waves.getSurface().find(place.x, place.y).altitude;
    return EARTH.toWorld(geodetic);
}

bool ObjectOcean::getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const {
    if (!isIntersection(surface)) return false;
    const WaveField& waves = present();
    const dvec3 from = toWorld(a), way = toWorld(b) - from;
    const auto clearance = [&](double t) {
        const dvec3 geodetic = EARTH.toWGS(from + way * t);
        const dvec2 place = waves.getFrame().toPlane(geodetic.x, geodetic.y);
        return geodetic.z - waves.getSurface().find(place.x, place.y).altitude;
    };
    const double depth = waves.getFrame().highest_crest * 1.02 + 0.1; // a little more than exact
    EllipsoidModel::Stretch stretches[2];
    const int count = EARTH.cutShell(from, from + way, -depth, depth, stretches);
    for (int i = 0; i < count; i++) {
        const double middle = (stretches[i].begin + stretches[i].end) / 2;
        const dvec3 up = EARTH.getUp(from + way * middle);
        const double t =
            findCrossing(clearance, stretches[i], {length(way), length(way - up * dot(way, up))});
        if (t < 0) continue;
        if (out) *out = a + (b - a) * t;
        return true;
    }
    return false;
}

} // namespace ig
