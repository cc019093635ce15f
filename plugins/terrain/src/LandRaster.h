// SPDX-License-Identifier: MIT
#pragma once

#include "LonLatRaster.h"
#include "plugins/terrain/LandCover.h"
#include "plugins/terrain/TerrainSources.h"

#include <map>
#include <memory>
#include <set>
#include <span>

namespace ig {

/// A land cover raster in longitude and latitude, read row by row. What a place of it is isn't
/// mixed from what lies around: each piece is of the class of the pixel that holds its middle.
class LandRaster {
public:
    /// What of it lies in the `ground`'s box, in pieces of the raster's own size. Without classes
    /// its values are those of WorldCover. False with the reason in `failure`: no such file, not
    /// georeferenced, whole numbers missing, a class of an unknown name, nothing in the box.
    bool open(const TerrainSources::LandCover& source, const LonLatBox& ground,
              std::string& failure);

    const LonLatPixels& getPixels() const { return m_pixels; }
    /// Whole rows from `first` on, as many as `classes` holds. False when the file is damaged.
    bool read(int first, std::span<LandClass> classes);
    /// Names the values met so far that are of no class, if any, in one log line: at most ten.
    void tellUnknown(const jString& path) const;

private:
    bool readClasses(const TerrainSources::LandCover& source, std::string& failure);

    LonLatRaster m_raster;
    LonLatPixels m_pixels;
    std::map<std::int32_t, LandClass> m_classes;
    std::set<std::int32_t> m_unknown;
};

/// All of it on that ground, in memory. Null, with one log line, when it can't be read or has more
/// than 2^26 pieces there; values that are of no class are named in one, too.
std::unique_ptr<const LandCover> loadLandCover(const TerrainSources::LandCover& source,
                                               const LonLatBox& ground);

} // namespace ig
