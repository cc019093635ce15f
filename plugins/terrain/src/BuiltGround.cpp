// SPDX-License-Identifier: MIT
#include "BuiltGround.h"

#include "Fingerprint.h"
#include "HeightFile.h"
#include "HeightStage.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"

#include <filesystem>

namespace ig {

std::vector<std::unique_ptr<const HeightField>> openBuiltGround(const TerrainSources& sources,
                                                                std::string& failure) {
    const std::string folder = sources.built.c_str();
    const std::string path = folder + "/terrain.yaml";
    std::error_code error;
    Package description;
    if (!std::filesystem::exists(path, error)) {
        failure = std::filesystem::exists(folder + "/building.txt", error)
                      ? "its build has not come to its end"
                      : "it is no built world";
        return {};
    }
    if (!mjl::open(path.c_str(), &description)) {
        failure = "its description \"" + path + "\" cannot be read";
        return {};
    }
    const std::string change = Fingerprint(description).findChange(sources);
    if (!change.empty())
        jLog::warning("ObjectTerrain::load: \"%s\" is out of date, %s: the ground is shown as it "
                      "was built; \"visual_channel world build\" with the world file renews it",
                      folder.c_str(), change.c_str());
    std::vector<std::unique_ptr<const HeightField>> fields;
    const Package* heights = description.getPackage("heights");
    const int grids = heights ? heights->getInt("grids") : 0;
    failure = "it holds no heights";
    for (int i = 0; i < grids; i++) {
        const std::string file_path = HeightStage::getPath(folder, static_cast<std::size_t>(i));
        auto file = HeightFile::open(file_path, failure);
        if (!file) {
            failure = "\"" + file_path + "\" " + failure;
            return {};
        }
        if (file->getShape().parent >= i || (i > 0) == (file->getShape().parent < 0)) {
            failure = "\"" + file_path + "\" is of another world: build the world anew";
            return {};
        }
        fields.push_back(std::make_unique<const HeightField>(std::move(file)));
    }
    return fields;
}

} // namespace ig
