// SPDX-License-Identifier: MIT
#include "makeGround.h"

#include "GeoidGrid.h"
#include "GroundPlan.h"
#include "HeightRaster.h"

#include <algorithm>
#include <limits>

namespace ig {

namespace {

constexpr std::int64_t LARGEST = std::int64_t{1} << 28; ///< samples of a grid: 1 GiB
constexpr double RIM = 2; ///< cells of the coarser grid in which a finer one goes over into it

struct Layer {
    TerrainGrid shape;
    std::vector<float> heights;

    float& at(int column, int row) {
        return heights[static_cast<std::size_t>(row) * static_cast<std::size_t>(shape.columns) +
                       static_cast<std::size_t>(column)];
    }
};

/// The surface of a grid's triangles at a place in its own coordinates; not a number in holes.
float getSurface(const Layer& layer, double u, double v) {
    const TerrainGrid& grid = layer.shape;
    const int column = std::clamp(static_cast<int>(u), 0, grid.columns - 2);
    const int row = std::clamp(static_cast<int>(v), 0, grid.rows - 2);
    const float* north =
        layer.heights.data() + static_cast<std::ptrdiff_t>(row) * grid.columns + column;
    const float* south = north + grid.columns;
    const double fu = u - column, fv = v - row;
    // A corner without data counts only where the place isn't on the edge between the others.
    const auto weigh = [](double share, float height) { return share == 0 ? 0 : share * height; };
    return static_cast<float>(
        fu + fv <= 1
            ? weigh(1 - fu - fv, north[0]) + weigh(fu, north[1]) + weigh(fv, south[0])
            : weigh(fu + fv - 1, south[1]) + weigh(1 - fv, north[1]) + weigh(1 - fu, south[0]));
}

/// Makes one surface of a finer grid and its parent.
void blend(Layer& fine, Layer& coarse) {
    const TerrainGrid& shape = fine.shape;
    const TerrainGrid::Cells& within = shape.within;
    const int along_u = (shape.columns - 1) / within.columns;
    const int along_v = (shape.rows - 1) / within.rows;
    for (int row = 0; row < shape.rows; row++)
        for (int column = 0; column < shape.columns; column++) {
            float& height = fine.at(column, row);
            const double u = double(column) / along_u, v = double(row) / along_v;
            const double inwards = std::min(std::min(u, within.columns - u),
                                            std::min(v, within.rows - v)); // coarse cells
            const bool is_hole = TerrainGrid::isHole(height);
            if (inwards >= RIM && !is_hole) continue;
            const float below = getSurface(coarse, within.column + u, within.row + v);
            if (is_hole)
                height = below;
            else if (!TerrainGrid::isHole(below))
                height =
                    static_cast<float>(std::lerp(double{below}, double{height}, inwards / RIM));
        }
}

/// The coarser grid is the finer one seen from afar.
void thin(Layer& fine, Layer& coarse) {
    const TerrainGrid::Cells& within = fine.shape.within;
    const int along_u = (fine.shape.columns - 1) / within.columns;
    const int along_v = (fine.shape.rows - 1) / within.rows;
    for (int row = 1; row < within.rows; row++)
        for (int column = 1; column < within.columns; column++)
            coarse.at(within.column + column, within.row + row) =
                fine.at(column * along_u, row * along_v);
}

class Reader {
public:
    explicit Reader(const TerrainSources& sources) : m_sources(sources) {}
    MadeGround read();

private:
    void openRasters();
    void fill(const GroundPlan::Layer& plan, Layer& layer);
    bool openGeoid(const TerrainGrid& ground);
    void tell(const jString& path, const char* key, std::string failure);
    void note(const jString& path, const std::string& system);

    const TerrainSources& m_sources;
    std::vector<HeightRaster> m_rasters;
    std::vector<const jString*> m_paths; ///< of the rasters
    std::vector<Layer> m_layers;
    GeoidGrid m_geoid;
    MadeGround m_ground;
};

void Reader::tell(const jString& path, const char* key, std::string failure) {
    const std::string named = std::string(path.c_str()) + ": "; // some reasons begin with it
    if (failure.starts_with(named)) failure.erase(0, named.size());
    std::string fault = "no ground from \"";
    fault.append(path.c_str()).append("\": ").append(failure);
    fault.append(" (the world names it as \"").append(key).append("\")");
    m_ground.faults.push_back(std::move(fault));
}

void Reader::note(const jString& path, const std::string& system) {
    std::string text = "\"";
    text.append(path.c_str()).append("\" is resampled to longitude and latitude from ");
    m_ground.notes.push_back(text.append(system));
}

void Reader::openRasters() {
    for (const jString& path : m_sources.rasters) {
        HeightRaster raster;
        std::string failure;
        if (!raster.open(path, failure)) {
            tell(path, "raster", failure);
            continue;
        }
        m_rasters.push_back(std::move(raster));
        m_paths.push_back(&path);
    }
}

bool Reader::openGeoid(const TerrainGrid& ground) {
    std::string failure;
    if (m_sources.heights != TerrainSources::Heights::ellipsoid || m_sources.geoid.empty() ||
        m_geoid.read(m_sources.geoid, ground, failure))
        return true;
    tell(m_sources.geoid, "geoid", failure);
    return false;
}

/// A raster that turns out to be damaged leaves nothing behind.
void Reader::fill(const GroundPlan::Layer& plan, Layer& layer) {
    layer.shape = plan.shape;
    std::vector<int> rasters = plan.rasters;
    for (bool good = false; !good;) {
        layer.heights.assign(static_cast<std::size_t>(plan.shape.columns) *
                                 static_cast<std::size_t>(plan.shape.rows),
                             std::numeric_limits<float>::quiet_NaN());
        good = true;
        for (std::size_t i = 0; i < rasters.size() && good; i++) {
            const auto place = static_cast<std::size_t>(rasters[i]);
            std::string failure;
            good = m_rasters[place].read(plan.shape, layer.heights, failure);
            if (good) continue;
            tell(*m_paths[place], "raster", failure);
            rasters.erase(rasters.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    for (const int i : rasters) {
        const auto place = static_cast<std::size_t>(i);
        const std::string& system = m_rasters[place].getResampledFrom();
        if (!system.empty()) note(*m_paths[place], system);
    }
    if (m_sources.heights == TerrainSources::Heights::ellipsoid && !m_sources.geoid.empty())
        m_geoid.lower(layer.shape, layer.heights);
}

MadeGround Reader::read() {
    openRasters();
    if (m_rasters.empty()) return std::move(m_ground);
    std::vector<TerrainGrid> grids;
    for (const HeightRaster& raster : m_rasters)
        grids.push_back(raster.getGrid());
    const GroundPlan plan(grids);
    for (const int outside : plan.getOutside())
        tell(*m_paths[static_cast<std::size_t>(outside)], "raster",
             "lies beside the coarser ones, or below others");
    for (const GroundPlan::Layer& layer : plan.getLayers())
        if (std::int64_t{layer.shape.columns} * layer.shape.rows > LARGEST) {
            tell(*m_paths[static_cast<std::size_t>(layer.rasters.front())], "raster",
                 "has too many samples, or those as fine are too far apart");
            return std::move(m_ground);
        }
    if (!openGeoid(plan.getLayers().front().shape)) return std::move(m_ground);
    m_layers.resize(plan.getLayers().size());
    for (std::size_t i = 0; i < m_layers.size(); i++) {
        fill(plan.getLayers()[i], m_layers[i]);
        if (m_layers[i].shape.parent >= 0)
            blend(m_layers[i], m_layers[static_cast<std::size_t>(m_layers[i].shape.parent)]);
    }
    for (std::size_t i = m_layers.size(); i-- > 1;)
        thin(m_layers[i], m_layers[static_cast<std::size_t>(m_layers[i].shape.parent)]);
    const bool is_ground = std::ranges::any_of(m_layers.front().heights,
                                               [](float h) { return !TerrainGrid::isHole(h); });
    for (Layer& layer : m_layers)
        if (is_ground)
            m_ground.fields.push_back(
                std::make_unique<HeightField>(layer.shape, std::move(layer.heights)));
    return std::move(m_ground);
}

} // namespace

MadeGround makeGround(const TerrainSources& sources) { return Reader(sources).read(); }

} // namespace ig
