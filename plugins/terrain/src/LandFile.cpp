// SPDX-License-Identifier: MIT
#include "LandFile.h"

#include "MappedFile.h"

#include <cmath>
#include <cstring>

namespace ig {

namespace {

/// Why a header is none that this program can go by; "" when it is.
std::string findFault(const LandHeader& header, std::uint64_t size) {
    const LandHeader good;
    if (std::memcmp(header.purpose, good.purpose, sizeof good.purpose) != 0)
        return "holds no land cover of a built world";
    if (header.byte_order != good.byte_order) return "was built on a machine of another byte order";
    if (header.version != good.version)
        return "was built by another version of this program: build the world anew";
    if (header.columns < 1 || header.rows < 1 || !(header.spacing_longitude > 0) ||
        !(header.spacing_latitude > 0) || !std::isfinite(header.west) ||
        !std::isfinite(header.north))
        return "is damaged: build the world anew";
    if (size != header.getSize())
        return "has " + std::to_string(size) + " bytes in place of " +
               std::to_string(header.getSize()) + ": build the world anew";
    return {};
}

} // namespace

std::unique_ptr<const LandCover> openLandCover(const std::string& folder, std::string& failure) {
    const std::string path = LandHeader::getPath(folder);
    std::shared_ptr<const MappedFile> file = MappedFile::open(path, failure);
    LandHeader header;
    if (file && file->getSize() >= sizeof header) {
        std::memcpy(&header, file->getBytes(), sizeof header);
        failure = findFault(header, file->getSize());
    } else if (file) {
        failure = "holds no land cover of a built world";
    }
    if (!failure.empty()) {
        failure = '"' + path + "\" " + failure;
        return nullptr;
    }
    const auto* classes = reinterpret_cast<const LandClass*>(file->getBytes() + LandHeader::LENGTH);
    return std::make_unique<LandCover>(
        LandCover::Grid{header.columns, header.rows, header.west, header.north,
                        header.spacing_longitude, header.spacing_latitude},
        std::shared_ptr<const LandClass[]>(std::move(file), classes));
}

} // namespace ig
