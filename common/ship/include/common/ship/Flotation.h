// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

namespace ig {
class Object;
}

/// How a box of `size` and mass m floats upright and at rest in still water, by what `Buoyancy`
/// does: with a lift of LIFT · volume · r² kilograms at the immersion r, all points being equally
/// deep, it stands where r = √(m / (LIFT · volume)). The points' feet lie height/2 · sin(latitude)
/// below its middle, which therefore stands height · (sin(latitude)/2 − r) above the water.
struct Flotation {
    static constexpr double LIFT = 100; ///< kg/m³ at full immersion, the default of `Buoyancy`

    /// `latitude` in degrees, `mass` in kg, `size` in metres, Z up.
    Flotation(const ig::dvec3& size, double mass, double latitude);

    double capacity;  ///< kg; from this mass on it sinks
    double immersion; ///< r; from 1 on it sinks
    double middle;    ///< altitude of the box's middle, m
    double draught;   ///< m from the water down to the box's bottom
    double freeboard; ///< m from the water up to the box's top; negative: its deck is awash

    /// The mass with which the box's middle would stand at an altitude; 0 when none does.
    double massFor(double altitude) const;

private:
    double m_height, m_rise; ///< of the box; of its middle above the feet, m
};

/// Tells in the log how a ship floats that is to float by its body, where it stands: a warning when
/// it sinks, or nothing can float it; and when its origin, where hulls have their drawn waterline,
/// doesn't come to lie in the water, a warning when the box's top is awash, else a message. Nothing
/// for a ship that floats as it is drawn, nor for one without a body or with a body of mass 0,
/// which stays where it is.
void tellFlotation(const ig::Object& ship);
