// SPDX-License-Identifier: MIT
#include "plugins/terrain/ObjectTerrain.h"

#include "HeightField.h"
#include "HeightRaster.h"
#include "SegmentQuery.h"

#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"

namespace ig {

namespace {

const EllipsoidModel EARTH;

} // namespace

ObjectTerrain::ObjectTerrain() : Object(OBJECT_TERRAIN) { setNumSurfaces(1); }

ObjectTerrain::~ObjectTerrain() = default;

bool ObjectTerrain::load(const TerrainSources& sources) {
    m_field.reset();
    m_sources = sources;
    invalidateBounds();
    if (sources.rasters.empty()) return false;
    const jString& path = sources.rasters.front();
    HeightRaster raster;
    std::string failure;
    if (!raster.read(path, failure)) {
        const std::string named = std::string(path.c_str()) + ": "; // some reasons begin with it
        if (failure.starts_with(named)) failure.erase(0, named.size());
        jLog::error("ObjectTerrain::load: no ground from \"%s\": %s (the world names it as "
                    "\"raster\")",
                    path.c_str(), failure.c_str());
        return false;
    }
    if (!raster.resampled_from.empty())
        jLog::message("ObjectTerrain::load: \"%s\" is resampled to longitude and latitude from %s",
                      path.c_str(), raster.resampled_from.c_str());
    m_field = std::make_unique<HeightField>(raster.shape, std::move(raster.heights));
    return true;
}

bool ObjectTerrain::load(const jString& path) {
    TerrainSources sources;
    sources.rasters = {path};
    return load(sources);
}

bool ObjectTerrain::getAltitudeByLonLat(double longitude, double latitude, double* altitude,
                                        dvec3* normal) const {
    if (!m_field) return false;
    const TerrainGrid& grid = m_field->getGrid();
    const HeightField::Facet facet =
        m_field->getFacet(grid.getColumn(longitude), grid.getRow(latitude));
    if (!facet) return false;
    if (altitude) *altitude = facet.altitude;
    if (normal) {
        const dvec2 degree = EARTH.getDegreeLengths(latitude, facet.altitude);
        const double east = facet.slope_u / (grid.spacing_longitude * degree.x);
        const double north = -facet.slope_v / (grid.spacing_latitude * degree.y);
        const dmat4 frame =
            EARTH.getWGSTransform(EARTH.toWorld({longitude, latitude, facet.altitude}));
        *normal = normalize(frame.getZ() - frame.getX() * east - frame.getY() * north);
    }
    return true;
}

bool ObjectTerrain::getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const {
    if (!m_field || !isIntersection(surface)) return false;
    const double t = SegmentQuery(*m_field, toWorld(a), toWorld(b)).solve();
    if (t < 0) return false;
    if (out) *out = a + (b - a) * t;
    return true;
}

Ground ObjectTerrain::getGroundAt(int surface, const dvec3& place) const {
    const Ground ground = readGround(surface, Ground::Kind::grass);
    const Material* material = getSurfaceMaterial(surface);
    const auto shore = readSlider(material, "shore_height", -1e9f);
    if (ground.kind == Ground::Kind::snow || EARTH.getAltitude(place) >= shore) return ground;
    const Ground sand = Ground::of(Ground::Kind::sand);
    return {sand.kind, readValue(material, "shore_lifted", sand.lifted)};
}

TerrainGrids ObjectTerrain::getGrids() const {
    return m_field ? TerrainGrids(&m_field->getGrid(), 1) : TerrainGrids();
}

BoundSphere ObjectTerrain::getOwnBounds() const {
    if (!m_field) return {};
    const BoundSphere world = m_field->getBounds();
    return {toLocal(world.center), world.radius};
}

void ObjectTerrain::onMoved() {
    Object::onMoved();
    invalidateBounds(); // the ground stays where it is, so it moves in the node's frame
}

} // namespace ig
