// SPDX-License-Identifier: MIT
#include "PlaceFiles.h"

#include "common/ship/Flotation.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"
#include "program/OutputFile.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <utility>

using namespace ig;

namespace world_commands {

namespace {

constexpr double ABOVE = 0.05;           ///< m of the pad's top above the highest ground below it
const char* const WORLD = "place.world"; ///< of the template; gets the place's name

bool readText(const std::filesystem::path& path, std::string& text) {
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream all;
    all << file.rdbuf();
    text = all.str();
    if (file && !text.empty()) return true;
    jLog::error("visual_channel: cannot read \"%s\"", path.c_str());
    return false;
}

std::string decimal(double value, int digits) {
    char text[40];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

/// As a YAML text.
std::string quote(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

/// As a YAML list of texts.
std::string list(const std::vector<std::string>& texts) {
    std::string listed;
    for (const std::string& text : texts)
        listed += (listed.empty() ? "[" : ", ") + quote(text);
    return listed + ']';
}

double number(const std::vector<std::string>& words, std::size_t i) {
    return i < words.size() ? std::strtod(words[i].c_str(), nullptr) : 0;
}

} // namespace

PlaceFiles::PlaceFiles(const PlaceGround& ground, std::string name, std::string folder,
                       std::vector<std::string> rasters)
    : m_ground(ground), m_name(std::move(name)), m_folder(std::move(folder)),
      m_rasters(std::move(rasters)), m_pad(ground.getRange(PlaceGround::PAD).x + ABOVE),
      m_ships(ground.findShips()) {}

bool PlaceFiles::make(const std::string& template_folder) {
    std::error_code error;
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(template_folder, error))
        if (entry.is_regular_file()) paths.push_back(entry.path());
    std::ranges::sort(paths);
    if (std::ranges::none_of(paths, [](const auto& path) { return path.filename() == WORLD; })) {
        jLog::error("visual_channel: there is no %s in \"%s\" to begin a world with", WORLD,
                    template_folder.c_str());
        return false;
    }
    for (const std::filesystem::path& path : paths) {
        std::string text, filled;
        if (!readText(path, text) || !fill(text, filled)) return false;
        const std::string name = path.filename().string();
        add(name == WORLD ? m_name + ".world" : name, filled);
    }
    return true;
}

bool PlaceFiles::write() const {
    std::error_code error;
    for (const std::string& name : m_names)
        if (std::filesystem::exists(std::filesystem::path(m_folder) / name, error)) {
            jLog::error("visual_channel: there is a %s in \"%s\" already: nothing is written over; "
                        "name another folder",
                        name.c_str(), m_folder.c_str());
            return false;
        }
    std::filesystem::create_directories(m_folder, error);
    std::vector<std::string> written;
    for (const std::string& name : m_names) {
        program::OutputFile file;
        const std::string path = (std::filesystem::path(m_folder) / name).string();
        if (file.open(path, program::OutputFile::Kind::whole) && file.write(m_texts.at(name)) &&
            file.close()) {
            written.push_back(path);
            continue;
        }
        jLog::error("visual_channel: %s", file.getMessage().c_str());
        for (const std::string& other : written)
            program::OutputFile::remove(other);
        return false;
    }
    return true;
}

void PlaceFiles::add(const std::string& name, std::string text) {
    if (m_texts.insert_or_assign(name, std::move(text)).second) m_names.push_back(name);
}

/// Degrees to 1 mm.
std::string PlaceFiles::describe(double east, double north, double altitude) const {
    return '[' + decimal(m_ground.getLongitude(east), 8) + ", " +
           decimal(m_ground.getLatitude(north), 8) + ", " + decimal(altitude, 2) + ']';
}

bool PlaceFiles::fill(const std::string& text, std::string& filled) {
    std::size_t begin = 0;
    for (std::size_t at = 0; (at = text.find("${", begin)) != std::string::npos;) {
        const std::size_t end = std::min(text.find('}', at), text.size() - 1);
        std::istringstream line(text.substr(at + 2, end - at - 2));
        const std::vector<std::string> words(std::istream_iterator<std::string>(line), {});
        std::string value;
        if (!replace(words, value)) {
            jLog::error("visual_channel: the template of a world knows no ${%s}",
                        line.str().c_str());
            return false;
        }
        filled += text.substr(begin, at - begin) + value;
        begin = end + 1;
    }
    filled += text.substr(begin);
    return true;
}

/// False for what is not known.
bool PlaceFiles::replace(const std::vector<std::string>& words, std::string& value) {
    const std::string key = words.empty() ? "" : words[0];
    const auto place = static_cast<std::size_t>(number(words, 1));
    if (key == "name")
        value = m_name;
    else if (key == "folder")
        value = m_folder;
    else if (key == "rasters")
        value = list(m_rasters);
    else if (key == "longitude")
        value = decimal(m_ground.getLongitude(0), 8);
    else if (key == "latitude")
        value = decimal(m_ground.getLatitude(0), 8);
    else if (key == "pad")
        value = decimal(m_pad, 2);
    else if (key == "above")
        value = decimal(ABOVE, 2);
    else if (key == "at")
        value = describe(number(words, 1), number(words, 2), m_pad + number(words, 3));
    else if (key == "sea" && words.size() == 1)
        value = describe(0, 0, 0);
    else if (key == "sea" && place >= 1 && place <= 2)
        value = hasSea() ? describe(m_ships[place - 1].x, m_ships[place - 1].y, 0)
                         : describe(0, 1000 * number(words, 1), 0);
    else if (key == "has_sea")
        value = hasSea() ? "true" : "false";
    else if (key == "clear")
        value = decimal(m_ground.getRange(number(words, 1)).x + number(words, 2), 0);
    else
        return key == "afloat" && words.size() == 2 && copyAfloat(words[1], value);
    return true;
}

/// The box is put where the drawn waterline, the prefab's origin, comes to lie in still water.
bool PlaceFiles::copyAfloat(const std::string& path, std::string& copy) {
    std::string text;
    Package package;
    if (!readText(path, text) || !mjl::open(path, &package)) return false;
    const Package* node = package.getPackage("node");
    const Package* body = node ? node->getPackage("body") : nullptr;
    const auto shapes = body ? body->getPackages("shapes") : jVector<const Package*>();
    const Item* position = shapes.empty() ? nullptr : shapes[0]->getItem("position");
    dvec3 size, at;
    if (!position || shapes[0]->getItem("size")->getDoubles(&size.x, 3) != 3 ||
        position->getDoubles(&at.x, 3) != 3) {
        jLog::error("visual_channel: \"%s\" has no box with a position to float by", path.c_str());
        return false;
    }
    const Flotation flotation(size, body->getDouble("mass"), m_ground.getLatitude(0));
    std::istringstream lines(text);
    std::string changed, line;
    for (int i = 1; std::getline(lines, line); i++) {
        if (i == position->getLine())
            line = std::regex_replace(line, std::regex("position: *\\[[^\\]]*\\]"),
                                      "position: [" + decimal(at.x, 3) + ", " + decimal(at.y, 3) +
                                          ", " + decimal(flotation.middle, 3) + ']');
        changed += line + '\n';
    }
    const std::string name = std::filesystem::path(path).filename().string();
    add(name, "# A copy of " + path + ", whose body is placed for latitude " +
                  decimal(m_ground.getLatitude(0), 2) + ".\n" + changed);
    copy = m_folder + '/' + name;
    return true;
}

} // namespace world_commands
