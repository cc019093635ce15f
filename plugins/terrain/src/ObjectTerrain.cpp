// SPDX-License-Identifier: MIT
#include "plugins/terrain/ObjectTerrain.h"

#include "BuiltGround.h"
#include "GroundPager.h"
#include "HeightStack.h"
#include "LandFile.h"
#include "LandRaster.h"
#include "SegmentQuery.h"
#include "makeGround.h"
#include "plugins/terrain/Imagery.h"

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
    m_pager.reset();
    m_ground.reset();
    m_land_cover.reset();
    m_imagery.reset();
    m_sources = sources;
    invalidateBounds();
    if (!sources.built.empty()) return loadBuilt();
    MadeGround ground = makeGround(sources);
    for (const std::string& fault : ground.faults)
        jLog::error("ObjectTerrain::load: %s", fault.c_str());
    for (const std::string& note : ground.notes)
        jLog::message("ObjectTerrain::load: %s", note.c_str());
    if (ground.fields.empty()) return false;
    m_ground = std::make_unique<HeightStack>(std::move(ground.fields));
    loadLooks();
    return ground.faults.empty();
}

bool ObjectTerrain::loadBuilt() {
    std::string failure;
    std::vector<std::unique_ptr<const HeightField>> fields = openBuiltGround(m_sources, failure);
    if (fields.empty()) {
        jLog::error("ObjectTerrain::load: no ground from \"%s\", %s (the world names it as "
                    "\"built\"; \"visual_channel world build\" with the world file makes it)",
                    m_sources.built.c_str(), failure.c_str());
        return false;
    }
    m_ground = std::make_shared<const HeightStack>(std::move(fields));
    m_pager = std::make_unique<GroundPager>(m_ground);
    loadLooks();
    return true;
}

/// What lies on the ground: without it the ground is as it was.
void ObjectTerrain::loadLooks() {
    const LonLatBox box = LonLatBox::of(getGrids().front());
    const std::string built = m_sources.built.c_str();
    std::string failure;
    if (!m_sources.land_cover.empty() && built.empty()) {
        m_land_cover = loadLandCover(m_sources.land_cover, box);
    } else if (!m_sources.land_cover.empty()) {
        m_land_cover = openLandCover(built, failure);
        if (!m_land_cover) jLog::error("ObjectTerrain::load: no land cover: %s", failure.c_str());
    }
    if (m_sources.imagery.empty()) return;
    m_imagery = built.empty() ? Imagery::make(m_sources.imagery, box, failure)
                              : Imagery::open(built, failure);
    if (!m_imagery) jLog::error("ObjectTerrain::load: no imagery: %s", failure.c_str());
}

bool ObjectTerrain::load(const jString& path) {
    TerrainSources sources;
    sources.rasters = {path};
    return load(sources);
}

bool ObjectTerrain::getAltitudeByLonLat(double longitude, double latitude, double* altitude,
                                        dvec3* normal) const {
    if (!m_ground) return false;
    const TerrainGrid& grid = m_ground->getCoarsest().getGrid();
    const HeightField::Facet facet =
        m_ground->getFacet(grid.getColumn(longitude), grid.getRow(latitude));
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
    if (!m_ground || !isIntersection(surface)) return false;
    const double t = SegmentQuery(*m_ground, toWorld(a), toWorld(b)).solve();
    if (t < 0) return false;
    if (out) *out = a + (b - a) * t;
    return true;
}

Ground ObjectTerrain::getGroundAt(int surface, const dvec3& place) const {
    const Ground ground = readGround(surface, Ground::Kind::grass);
    const Material* material = getSurfaceMaterial(surface);
    const auto shore = readSlider(material, "shore_height", -1e9f);
    if (ground.kind == Ground::Kind::snow) return ground;
    if (EARTH.getAltitude(place) >= shore) {
        if (!m_land_cover) return ground;
        const dvec3 at = EARTH.toWGS(place);
        const Ground::Kind kind = LandCover::getTraits(m_land_cover->getClass(at.x, at.y)).ground;
        return kind == Ground::Kind::any || kind == ground.kind ? ground : Ground::of(kind);
    }
    const Ground sand = Ground::of(Ground::Kind::sand);
    return {sand.kind, readValue(material, "shore_lifted", sand.lifted)};
}

TerrainGrids ObjectTerrain::getGrids() const {
    return m_ground ? m_ground->getGrids() : TerrainGrids();
}

std::shared_ptr<const void> ObjectTerrain::getOwner() const { return m_ground; }

void ObjectTerrain::lookFrom(double longitude, double latitude) const {
    if (m_pager) m_pager->lookFrom(longitude, latitude);
}

BoundSphere ObjectTerrain::getOwnBounds() const {
    if (!m_ground) return {};
    const BoundSphere world = m_ground->getBounds();
    return {toLocal(world.center), world.radius};
}

void ObjectTerrain::onMoved() {
    Object::onMoved();
    invalidateBounds(); // the ground stays where it is, so it moves in the node's frame
}

} // namespace ig
