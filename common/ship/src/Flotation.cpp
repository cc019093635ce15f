// SPDX-License-Identifier: MIT
#include "common/ship/Flotation.h"

#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"

#include <cmath>
#include <cstdio>
#include <string>

using namespace ig;

namespace {

constexpr double WELL_DRAWN = 0.25; ///< m that a hull's drawn waterline may be off unnoticed

std::string describeMass(double kilograms) {
    char text[32];
    std::snprintf(text, sizeof text, kilograms < 1e4 ? "%.0f kg" : "%.4g t",
                  kilograms < 1e4 ? kilograms : kilograms / 1000);
    return text;
}

/// What would do: the greatest mass that leaves the deck dry, and the one for the drawn waterline.
std::string describeRemedy(const Flotation& flotation, double height, double origin) {
    const double dry = flotation.massFor(-height / 2), drawn = flotation.massFor(origin);
    std::string text;
    if (dry > 0) text = "its deck is out of the water below " + describeMass(dry);
    if (drawn > 0)
        text += (text.empty() ? "" : ", and ") + std::string("its origin lies in the water with ") +
                describeMass(drawn);
    return text.empty() ? "no mass keeps its deck out of the water at this latitude" : text;
}

std::string nameOf(const Object& ship) {
    std::string name = '"' + std::string(ship.getName().c_str()) + '"';
    if (ship.getType() == OBJECT_PREFAB)
        name += std::string(" (") + static_cast<const ObjectPrefab&>(ship).getPath().c_str() + ')';
    return name;
}

} // namespace

Flotation::Flotation(const dvec3& size, double mass, double latitude)
    : capacity(LIFT * size.x * size.y * size.z), immersion(std::sqrt(mass / capacity)),
      m_height(size.z), m_rise(size.z / 2 * std::sin(latitude * DEG_TO_RAD<double>)) {
    middle = m_rise - immersion * m_height;
    draught = m_height / 2 - middle;
    freeboard = m_height / 2 + middle;
}

double Flotation::massFor(double altitude) const {
    const double r = (m_rise - altitude) / m_height;
    return r > 0 && r < 1 ? capacity * r * r : 0;
}

void tellFlotation(const Object& ship) {
    const BodyRigid* body = ship.getBodyRigid();
    if (!body || body->getMass() <= 0) return;
    const std::string name = nameOf(ship);
    const Shape* box = body->getShape(0);
    if (!box || box->getType() != Shape::SHAPE_BOX) {
        jLog::warning("Ship: %s sinks: only a box floats it, as the first of its body's shapes",
                      name.c_str());
        return;
    }
    const dvec3 size(box->getSize());
    const double latitude = EllipsoidModel().toWGS(ship.getWorldPosition()).y;
    const double placed = static_cast<double>(box->getTransform().getTranslate().z);
    const Flotation f(size, static_cast<double>(body->getMass()), latitude);
    const std::string remedy = describeRemedy(f, size.z, placed);
    const std::string mass = describeMass(static_cast<double>(body->getMass()));
    if (f.immersion >= 1)
        jLog::warning("Ship: %s sinks: its %s are more than the %s that its box of %g x %g x %g m "
                      "can float: %s",
                      name.c_str(), mass.c_str(), describeMass(f.capacity).c_str(), size.x, size.y,
                      size.z, remedy.c_str());
    else if (std::abs(f.middle - placed) <= WELL_DRAWN)
        return;
    else if (f.freeboard < 0)
        jLog::warning("Ship: %s floats with its deck %.2f m under water: draught %.2f m with %s in "
                      "a box of %g x %g x %g m: %s",
                      name.c_str(), -f.freeboard, f.draught, mass.c_str(), size.x, size.y, size.z,
                      remedy.c_str());
    else
        jLog::message("Ship: %s floats with its origin %.2f m %s the water (draught %.2f m, "
                      "freeboard %.2f m): with its box at a height of %.3f m instead of %.3f m it "
                      "would lie in the water",
                      name.c_str(), std::abs(f.middle - placed),
                      f.middle > placed ? "above" : "below", f.draught, f.freeboard, f.middle,
                      placed);
}
