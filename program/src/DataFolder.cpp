// SPDX-License-Identifier: MIT
#include "program/DataFolder.h"

#include <system_error>

namespace fs = std::filesystem;

namespace program {

namespace {

bool holdsData(const fs::path& folder) {
    std::error_code error; // what can't be looked into holds nothing for us
    return fs::is_directory(folder / "config", error) && fs::is_directory(folder / "data", error);
}

/// By a folder's way from the one that the program lies in.
fs::path getBeside(const fs::path& program, const char* way) {
    return (program.parent_path() / way).lexically_normal();
}

} // namespace

fs::path getProgramPath() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error);
}

bool findDataFolder(std::string& folder, const fs::path& program) {
    folder.clear();
    if (holdsData(".")) return true;
    if (program.empty()) return false;
    fs::path place = getBeside(program, SHARE_FROM_PROGRAM);
    if (!holdsData(place)) {
        place = program.parent_path();
        while (place.has_relative_path() && !holdsData(place))
            place = place.parent_path();
    }
    if (!holdsData(place)) return false;
    folder = place.string();
    return true;
}

std::string tellDataFolders(const fs::path& program) {
    std::error_code error;
    return "the present folder \"" + fs::current_path(error).string() +
           "\", the installation's \"" + getBeside(program, SHARE_FROM_PROGRAM).string() +
           "\", and the folders above the program, \"" + program.parent_path().string() + '"';
}

std::string findShippedFile(const std::string& path, const fs::path& program) {
    std::error_code error;
    std::string folder;
    if (path.empty() || fs::path(path).is_absolute() || fs::exists(path, error) ||
        !findDataFolder(folder, program))
        return path;
    const fs::path shipped = fs::path(folder) / path;
    return fs::exists(shipped, error) ? shipped.string() : path;
}

std::string findOwnLibrary(const std::string& name, const fs::path& program) {
    std::error_code error;
    const fs::path installed = getBeside(program, LIBRARIES_FROM_PROGRAM) / name;
    return (fs::exists(installed, error) ? installed : getBeside(program, "../lib") / name)
        .string();
}

} // namespace program
