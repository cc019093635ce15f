// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/LandCover.h"

#include <memory>
#include <string>

namespace ig {

/// What the first page of a built world's land cover says; the classes follow row by row from the
/// north, a byte each. Numbers have the byte order of the machine that built it.
struct LandHeader {
    static constexpr std::uint64_t LENGTH = 4096; ///< with what fills the page, bytes

    char purpose[32] = "built world: land cover";
    std::uint32_t version = 1;
    std::uint32_t byte_order = 0x01020304;
    std::int32_t columns = 0, rows = 0;
    double west = 0, north = 0, spacing_longitude = 0, spacing_latitude = 0;

    std::uint64_t getSize() const { ///< of the whole file, bytes
        return LENGTH + static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows);
    }
    static std::string getPath(const std::string& folder) { return folder + "/land_cover.u8"; }
};

/// The land cover of a built world's folder, mapped. Null with the reason in `failure`.
std::unique_ptr<const LandCover> openLandCover(const std::string& folder, std::string& failure);

} // namespace ig
