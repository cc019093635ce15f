// SPDX-License-Identifier: MIT
#pragma once

#include "RasterFile.h"
#include "plugins/terrain/TerrainGrid.h"

#include <utility>
#include <vector>

namespace ig {

/// A part of the globe, degrees; longitudes run on across 180.
struct LonLatBox {
    double west = 0, east = 0, south = 0, north = 0;

    /// That a grid's samples reach over.
    static LonLatBox of(const TerrainGrid& grid) {
        return {grid.west, grid.west + (grid.columns - 1) * grid.spacing_longitude,
                grid.north - (grid.rows - 1) * grid.spacing_latitude, grid.north};
    }
    bool isEmpty() const { return !(west < east && south < north); }
    LonLatBox cut(const LonLatBox& other) const {
        return {std::max(west, other.west), std::min(east, other.east),
                std::max(south, other.south), std::min(north, other.north)};
    }
};

/// Pixels in longitude and latitude: (column, row) reaches from `west + column · spacing_longitude`
/// and from `north − row · spacing_latitude`.
struct LonLatPixels {
    int columns = 0, rows = 0;
    double west = 0, north = 0;
    double spacing_longitude = 0, spacing_latitude = 0; ///< degrees, positive

    LonLatBox getBox() const {
        return {west, west + columns * spacing_longitude, north - rows * spacing_latitude, north};
    }
};

/// A raster in any coordinate system, seen in WGS84 longitude and latitude on one side of the
/// globe. For one thread at a time.
class LonLatRaster {
public:
    /// Sees it in longitudes within 180 degrees of `middle`. False with the reason in `failure`
    /// when nothing tells where it lies.
    bool open(Dataset raster, double middle, std::string& failure);
    GDALDatasetH getDataset() const { return m_raster.get(); }

    /// The least part of the globe that holds it.
    const LonLatBox& getBox() const { return m_box; }
    /// Pixels of its own size, or its own ones where it lies along longitude and latitude, that
    /// cover what of it lies in a box.
    LonLatPixels getPixels(const LonLatBox& box) const;
    double getSpacingLatitude() const { return m_spacing_latitude; } ///< of a pixel, degrees

    /// Lays what it holds over a picture of as many bands with those pixels; of four the last is
    /// alpha, which the raster may lack. What it has no data for stays. `method` as gdalwarp
    /// names it. False when that fails.
    bool drawOnto(GDALDatasetH picture, const LonLatPixels& pixels, const char* method) const;

private:
    Dataset m_raster;
    bool m_is_lon_lat = false; ///< in degrees of WGS84, north up or south up
    bool m_has_system = false;
    double m_transform[6] = {};
    LonLatBox m_box;
    double m_spacing_longitude = 0, m_spacing_latitude = 0; ///< of a pixel in its middle, degrees
    std::vector<double> m_turns; ///< whole turns after which it lies in the box's longitudes
};

/// A virtual raster of some bands of another, which it keeps; `words` as gdal_translate takes them.
Dataset makeView(GDALDatasetH raster, const std::vector<const char*>& words);

/// A picture in memory with those pixels' size, all 0; one of four bands has alpha.
Dataset makePicture(const LonLatPixels& pixels, int bands, GDALDataType type);

} // namespace ig
