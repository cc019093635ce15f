// SPDX-License-Identifier: MIT
#include "Fingerprint.h"

#include "ig/package/Package.h"

#include <filesystem>
#include <sys/stat.h>

namespace ig {

namespace {

/// "size time path", the time in nanoseconds since 1970. Of what lies in an archive the archive
/// counts, to which the path leads first.
std::string describeFile(const std::string& path) {
    std::string_view rest = path;
    while (rest.starts_with("/vsi"))
        rest.remove_prefix(std::min(rest.find('/', 1) + 1, rest.size()));
    std::error_code error;
    std::filesystem::path file(rest);
    while (file.has_relative_path() && !std::filesystem::exists(file, error))
        file = file.parent_path();
    struct stat status {};
    if (file.empty() || stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return "0 0 " + path;
    const std::int64_t time =
        status.st_mtim.tv_sec * std::int64_t{1'000'000'000} + std::int64_t{status.st_mtim.tv_nsec};
    return std::to_string(status.st_size) + ' ' + std::to_string(time) + ' ' + path;
}

std::string quote(const std::string& text) {
    std::string quoted(1, '"');
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    quoted += '"';
    return quoted;
}

std::vector<std::string> getTexts(const Package& description, const char* key) {
    std::vector<std::string> texts;
    const Item* item = description.getItem(key);
    for (int i = 0; item && i < item->getCount(); i++)
        texts.emplace_back(item->getElement(i).getString().view());
    return texts;
}

std::vector<std::string> describeSettings(const TerrainSources& sources) {
    std::vector<std::string> lines;
    const auto add = [&lines](const char* what, const jString& value) {
        if (!value.empty()) lines.push_back(std::string(what) + ' ' + value.c_str());
    };
    for (const jString& raster : sources.rasters)
        add("raster", raster);
    if (sources.heights == TerrainSources::Heights::ellipsoid) add("heights", "ellipsoid");
    add("geoid", sources.geoid);
    for (const jString& picture : sources.imagery)
        add("imagery", picture);
    add("land_cover", sources.land_cover.raster);
    for (const TerrainSources::LandCover::Class& each : sources.land_cover.classes)
        add("class", ToString(each.value) + " " + each.ground);
    return lines;
}

} // namespace

Fingerprint::Fingerprint(const TerrainSources& sources, const std::vector<std::string>& paths)
    : settings(describeSettings(sources)) {
    for (const std::string& path : paths)
        files.push_back(describeFile(path));
}

Fingerprint::Fingerprint(const Package& description)
    : settings(getTexts(description, "settings")), files(getTexts(description, "files")) {}

std::string Fingerprint::toYaml() const {
    std::string text;
    const auto add = [&text](const char* key, const std::vector<std::string>& lines) {
        text += std::string(key) + (lines.empty() ? ": []\n" : ":\n");
        for (const std::string& line : lines)
            text += "  - " + quote(line) + '\n';
    };
    add("settings", settings);
    add("files", files);
    return text;
}

std::string Fingerprint::findChange(const TerrainSources& sources) const {
    if (sources.rasters.empty()) return {};
    if (describeSettings(sources) != settings) return "the world file names other sources";
    for (const std::string& file : files) {
        const std::size_t path = file.find(' ', file.find(' ') + 1) + 1;
        const std::string now = describeFile(file.substr(path));
        if (now != file && !now.starts_with("0 0 "))
            return '"' + file.substr(path) + "\" has changed";
    }
    return {};
}

} // namespace ig
