// SPDX-License-Identifier: MIT

// Nodes of type "terrain" in world files.

#include "plugins/terrain/ObjectTerrain.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/scene/NodeReader.h"

#include <charconv>

namespace ig {

namespace {

using enum NodeKeys::Kind;

const NodeSchema LAND_COVER{"land_cover",
                            {{"land_cover", {{text, {"raster"}}, {table, {"classes"}}}}}};

std::vector<jString> readRasters(const NodeReader& r) {
    if (!r.has("raster")) return r.getTexts("rasters");
    if (r.has("rasters")) r.report("a terrain has either \"rasters\" or a", "raster", "raster");
    const jString& path = r.getText("raster");
    if (path.empty()) return r.getTexts("rasters");
    return {path};
}

TerrainSources::Heights readHeights(const NodeReader& r) {
    const jString& name = r.getText("heights");
    if (name == "ellipsoid") return TerrainSources::Heights::ellipsoid;
    if (!name.empty() && name != "mean_sea_level")
        r.report("\"heights\" are above mean_sea_level or the ellipsoid, not", name, "heights");
    return TerrainSources::Heights::mean_sea_level;
}

TerrainSources::LandCover readLandCover(const NodeReader& r) {
    TerrainSources::LandCover cover;
    cover.raster = r.getText("raster");
    if (cover.raster.empty()) r.report("a land cover needs a", "raster");
    const Package* classes = r.getTable("classes");
    for (int i = 0; classes && i < classes->getItemCount(); i++) {
        const Item& item = classes->getItemAt(i);
        const std::string_view name = item.getName().view();
        int value = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), value);
        if (error != std::errc() || end != name.data() + name.size())
            jLog::error("World::LoadNode: %s:%d: classes of a land cover are whole numbers, not "
                        "\"%s\"",
                        classes->getPath().c_str(), item.getLine(), item.getName().c_str());
        else
            cover.classes.push_back({value, item.getString()});
    }
    return cover;
}

} // namespace

TerrainSources readTerrainSources(const NodeReader& r) {
    TerrainSources sources;
    sources.rasters = readRasters(r);
    sources.heights = readHeights(r);
    sources.geoid = r.getText("geoid");
    sources.imagery = r.getTexts("imagery");
    if (const auto cover = r.getMap("land_cover")) sources.land_cover = readLandCover(*cover);
    sources.built = r.getText("built");
    const bool is_ellipsoid = sources.heights == TerrainSources::Heights::ellipsoid;
    if (is_ellipsoid && sources.geoid.empty())
        r.report("taken unchanged: heights above the ellipsoid need a", "geoid", "heights");
    else if (!is_ellipsoid && !sources.geoid.empty())
        r.report("not used without \"heights: ellipsoid\":", "geoid", "geoid");
    return sources;
}

namespace {

Node* create(const NodeReader& r) {
    auto* terrain = new ObjectTerrain();
    const TerrainSources sources = readTerrainSources(r);
    if (sources.hasGround())
        terrain->load(sources); // a terrain without ground stands in for a missing one
    else
        r.report("a terrain needs a", "raster");
    terrain->setSurfaceMaterial(0, r.getMaterial());
    return terrain;
}
const bool TYPE = NodeFactory::add("terrain", create,
                                   {{text, {"raster", "heights", "geoid", "built"}},
                                    {texts, {"rasters", "imagery"}},
                                    {map, {"land_cover"}, &LAND_COVER},
                                    {material, {"material"}}});

} // namespace

} // namespace ig
