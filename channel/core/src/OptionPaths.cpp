// SPDX-License-Identifier: MIT
#include "OptionPaths.h"

#include "Options.h"
#include "ig/base/jLog.h"
#include "program/DataFolder.h"

#include <filesystem>

void settlePaths(Options& options) {
    std::string folder;
    if (!options.directory.empty() || !program::findDataFolder(folder) || folder.empty()) return;
    ig::jLog::message("visual_channel: config/ and data/ are those of \"%s\"", folder.c_str());
    options.script = program::findShippedFile(options.script);
    std::error_code error;
    const std::filesystem::path present = std::filesystem::current_path(error);
    const auto stay = [&present](std::string& path) {
        if (!path.empty()) path = (present / path).string();
    };
    for (std::string* path :
         {&options.world, &options.script, &options.screenshot, &options.contact_sheet,
          &options.video, &options.trace, &options.record, &options.replay, &options.wall})
        stay(*path);
    const auto stay_library = [&stay](std::string& path) {
        if (path.find('/') != std::string::npos) stay(path); // else it is one of ours
    };
    stay_library(options.logic);
    for (std::string& path : options.plugins)
        stay_library(path);
    options.pictures = (present / "").string();
    options.directory = folder;
}
