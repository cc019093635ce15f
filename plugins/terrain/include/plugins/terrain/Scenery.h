// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Mesh.h"

#include <compare>
#include <cstdint>
#include <memory>
#include <vector>

namespace ig {

class Material;

/// A model that stands on the ground in many places: a sort of tree, a house.
struct SceneryKind {
    jString name;
    std::shared_ptr<const Mesh> mesh; ///< its foot is the origin
    std::vector<Material*> materials; ///< one a surface; null: none
    vec2 height;                      ///< m, of the lowest and the highest; 0, 0: the model's own
    bool is_tree = true;              ///< from afar it is drawn as a flat picture of itself
    bool is_met = true;               ///< by segment queries

    float getModelHeight() const { return mesh->getHighest().z; }
    /// How far the largest reaches sideways from its foot, m.
    float getReach() const;
};

/// One of them.
struct SceneryThing {
    vec3 place;        ///< of its foot, in the cell's frame
    float heading_rad; ///< clockwise from north
    float scale;       ///< of the model
    std::uint16_t kind;
    float rank; ///< 0 to 1: the lower, the farther it is drawn
};

/// A place on the lattice that divides the whole earth into cells of about `SceneryLattice::EDGE`:
/// rows from the equator to the north, columns from longitude −180 to the east.
struct SceneryCellId {
    std::int32_t row = 0, column = 0;
    friend auto operator<=>(const SceneryCellId&, const SceneryCellId&) = default;
};

/// What stands on one cell of the lattice. Immutable.
struct SceneryCell {
    dmat4 frame;                      ///< east, north, up at its middle on the ellipsoid, world
    vec3 middle;                      ///< of a sphere around all, in that frame
    float radius = 0;                 ///< m; 0 without things
    float tallest = 0;                ///< of the things, m
    std::vector<SceneryThing> things; ///< by rank

    /// From the model to the cell's frame.
    static mat4 getPose(const SceneryThing& thing);
};

/// The lattice: the same everywhere and always, so that what stands on a cell doesn't go by what
/// was looked at before.
struct SceneryLattice {
    static constexpr double EDGE = 64; ///< of a cell, m

    /// The cell at a geodetic place, degrees.
    static SceneryCellId getCell(double longitude, double latitude);
    /// Longitude and latitude of a place in a cell: shares of it, 0 to 1, from the west and from
    /// the south.
    static dvec2 getPlace(SceneryCellId cell, double u, double v);
    /// Cells of that row around the earth.
    static std::int32_t getNumColumns(std::int32_t row);

    /// Calls `visit(SceneryCellId)` for every cell that comes within `reach` m of a geodetic place.
    template <class Visit>
    static void visitAround(double longitude, double latitude, double reach, const Visit& visit) {
        const auto row_at = [](double degrees) { return getCell(0, degrees).row; };
        const double rows = reach / EDGE * getRowHeight();
        const std::int32_t last = row_at(latitude + rows);
        for (std::int32_t row = row_at(latitude - rows); row <= last; row++) {
            const std::int32_t count = getNumColumns(row);
            const double width = reach * count / getRowLength(row); // in columns
            const double at = getColumn(row, longitude);
            const auto first = static_cast<std::int64_t>(std::floor(at - width));
            const auto end = std::min<std::int64_t>(
                static_cast<std::int64_t>(std::floor(at + width)), first + count - 1);
            for (std::int64_t column = first; column <= end; column++)
                visit(SceneryCellId{row,
                                    static_cast<std::int32_t>((column % count + count) % count)});
        }
    }

    /// Whether `visitAround` would visit it.
    static bool isAround(SceneryCellId cell, double longitude, double latitude, double reach);

private:
    static double getRowHeight();                 ///< degrees
    static double getRowLength(std::int32_t row); ///< around the earth, m
    /// With a fraction.
    static double getColumn(std::int32_t row, double longitude);
};

} // namespace ig
