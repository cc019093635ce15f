// SPDX-License-Identifier: MIT
#include "wall/Wall.h"

#include "ig/math/quat.h"
#include "program/InputFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <initializer_list>
#include <yaml-cpp/yaml.h>

using namespace ig;

namespace wall {

namespace {

constexpr double WIDEST = 170;                    ///< degrees that one flat picture may show
constexpr double SQUARE = 0.01;                   ///< cosine up to which two edges count as square
constexpr int LEAST_SIDE = 16, MOST_SIDE = 16384; ///< pixels
constexpr int MOST_DOMAIN = 230;

/// What is wrong, thrown where it is found.
struct Mistake {
    int line; ///< from 1; 0: the file as a whole
    std::string what;
};

[[noreturn]] void refuse(const YAML::Node& node, const std::string& what) {
    throw Mistake{node.Mark().line + 1, what};
}

/// A map all of whose keys are known.
class Section {
public:
    Section(const YAML::Node& node, const std::string& name,
            std::initializer_list<const char*> keys)
        : m_node(node), m_name(name) {
        if (!node.IsMap()) refuse(node, name + " must be keys with their values");
        std::vector<std::string> seen;
        for (const auto& entry : node) {
            const auto key = entry.first.as<std::string>();
            if (std::ranges::count(seen, key) > 0)
                refuse(entry.first, name + " has \"" + key + "\" twice");
            seen.push_back(key);
            if (std::ranges::any_of(keys, [&key](const char* known) { return key == known; }))
                continue;
            std::string all;
            for (const char* known : keys)
                all += (all.empty() ? "" : ", ") + std::string(known);
            refuse(entry.first, name + " has no \"" + key + "\"; it has " + all);
        }
    }
    bool has(const char* key) const { return static_cast<bool>(m_node[key]); }
    YAML::Node get(const char* key) const { return m_node[key]; }

    template <class T>
    void read(const char* key, T& value, const char* what) const {
        if (!has(key)) return;
        try {
            value = m_node[key].as<T>();
        } catch (const YAML::Exception&) {
            refuse(m_node[key], m_name + ": " + key + " must be " + what);
        }
    }
    void readNumber(const char* key, double& value, double least, double most) const {
        read(key, value, "a number");
        if (has(key) && !(value >= least && value <= most))
            refuse(m_node[key],
                   m_name + ": " + key + " must be " + write(least) + " to " + write(most));
    }
    template <std::size_t N>
    void readNumbers(const char* key, std::array<double, N>& values) const {
        if (!has(key)) return;
        std::vector<double> list;
        read(key, list, "a list of numbers");
        if (list.size() != N ||
            !std::ranges::all_of(list, [](double v) { return std::isfinite(v); }))
            refuse(m_node[key], m_name + ": " + key + " must be " + std::to_string(N) + " numbers");
        std::ranges::copy(list, values.begin());
    }
    [[noreturn]] void refuseKey(const char* key, const std::string& what) const {
        refuse(has(key) ? m_node[key] : m_node, m_name + ": " + what);
    }

private:
    static std::string write(double value) { return std::to_string(static_cast<long>(value)); }

    YAML::Node m_node;
    std::string m_name;
};

Network readNetwork(const YAML::Node& node) {
    const Section section(node, "network",
                          {"interface", "multicast", "domain", "peers", "barrier"});
    Network network;
    double domain = 0;
    section.read("interface", network.interface, "the name of a network interface");
    section.read("multicast", network.multicast, "true or false");
    section.readNumber("domain", domain, 0, MOST_DOMAIN);
    section.read("peers", network.peers, "a list of IPv4 addresses");
    section.read("barrier", network.barrier, "true or false");
    network.domain = static_cast<int>(domain);
    return network;
}

void readWindow(const YAML::Node& node, Display& display) {
    const Section section(node, display.name + ": window",
                          {"size", "position", "monitor", "full_screen"});
    std::array<double, 2> size = {double(display.width), double(display.height)};
    std::array<double, 2> position = {-1, -1};
    section.readNumbers("size", size);
    if (std::ranges::min(size) < LEAST_SIDE || std::ranges::max(size) > MOST_SIDE)
        section.refuseKey("size", "size must be 16 to 16384 pixels each way");
    section.readNumbers("position", position);
    if (section.has("position") &&
        (std::ranges::min(position) < 0 || std::ranges::max(position) > 4.0 * MOST_SIDE))
        section.refuseKey("position", "position must be pixels of the desktop, 0 or more");
    section.read("monitor", display.monitor, "the name of a monitor, or its number from 1");
    section.read("full_screen", display.full_screen, "true or false");
    display.width = static_cast<int>(size[0]);
    display.height = static_cast<int>(size[1]);
    display.x = static_cast<int>(position[0]);
    display.y = static_cast<int>(position[1]);
}

/// Widths of a screen's frame at its edges.
struct Bezel {
    double left, right, bottom, top;
};

Bezel readBezel(const Section& section) {
    std::array<double, 4> widths{};
    section.readNumbers("bezel", widths);
    if (std::ranges::min(widths) < 0) section.refuseKey("bezel", "bezel must be 0 or more");
    return {widths[0], widths[1], widths[2], widths[3]};
}

double tangent(double degrees) { return std::tan(degrees * DEG_TO_RAD<double>); }

/// Heading to the right, pitch upwards, roll to the right, one after the other as an aircraft's.
dmat4 turn(double heading, double pitch, double roll) {
    return dmat4(dquat(dvec3(0, 1, 0), -heading), dvec3()) *
           dmat4(dquat(dvec3(1, 0, 0), pitch), dvec3()) *
           dmat4(dquat(dvec3(0, 0, 1), -roll), dvec3());
}

void readAngles(const Section& section, Display& display) {
    double heading = 0, pitch = 0, roll = 0, horizontal = 0, vertical = 0;
    section.readNumber("heading", heading, -360, 360);
    section.readNumber("pitch", pitch, -90, 90);
    section.readNumber("roll", roll, -360, 360);
    section.readNumber("horizontal_field", horizontal, 1, WIDEST);
    section.readNumber("vertical_field", vertical, 1, WIDEST);
    if (horizontal <= 0 || vertical <= 0)
        section.refuseKey("heading", "needs horizontal_field and vertical_field, degrees");
    const Bezel bezel = readBezel(section);
    display.rotation = turn(heading, pitch, roll);
    display.left = tangent(bezel.left - horizontal / 2);
    display.right = tangent(horizontal / 2 - bezel.right);
    display.bottom = tangent(bezel.bottom - vertical / 2);
    display.top = tangent(vertical / 2 - bezel.top);
}

/// A flat screen anywhere before the eye (R. Kooima, "Generalized Perspective Projection", 2009).
void readCorners(const Section& section, Display& display) {
    const Section corners(section.get("corners"), display.name + ": corners",
                          {"lower_left", "lower_right", "upper_left"});
    const auto corner = [&corners](const char* key) {
        if (!corners.has(key)) corners.refuseKey(key, std::string("has no ") + key);
        std::array<double, 3> at{};
        corners.readNumbers(key, at);
        return dvec3(at[0], at[1], at[2]);
    };
    const dvec3 origin = corner("lower_left");
    const dvec3 across = corner("lower_right") - origin, up = corner("upper_left") - origin;
    const double width = length(across), height = length(up);
    if (!(width > 0 && height > 0))
        section.refuseKey("corners", "the corners lie in one place or line");
    const dvec3 x = across * (1 / width), y = up * (1 / height);
    if (std::abs(dot(x, y)) > SQUARE)
        section.refuseKey("corners", "the screen's edges are not square to each other");
    const dvec3 z = normalize(cross(x, y));
    const double distance = -dot(z, origin);
    if (!(distance > 0))
        section.refuseKey("corners", "the eye is behind the screen: are lower_left and lower_right "
                                     "exchanged?");
    const Bezel bezel = readBezel(section);
    display.rotation.columns[0] = {x.x, x.y, x.z, 0};
    display.rotation.columns[1] = {y.x, y.y, y.z, 0};
    display.rotation.columns[2] = {z.x, z.y, z.z, 0};
    display.left = (dot(x, origin) + bezel.left) / distance;
    display.right = (dot(x, origin) + width - bezel.right) / distance;
    display.bottom = (dot(y, origin) + bezel.bottom) / distance;
    display.top = (dot(y, origin) + height - bezel.top) / distance;
}

Display readDisplay(const std::string& name, const YAML::Node& node,
                    const std::filesystem::path& folder) {
    const Section section(node, name,
                          {"corners", "heading", "pitch", "roll", "horizontal_field",
                           "vertical_field", "bezel", "window", "warp", "blend"});
    Display display{.name = name};
    const auto read_path = [&](const char* key, std::string& file) {
        section.read(key, file, "the name of a file");
        if (!file.empty()) file = (folder / file).string();
        const std::string why = file.empty() ? "" : program::whyUnreadable(file);
        if (!why.empty()) section.refuseKey(key, "cannot open \"" + file + "\": " + why);
    };
    read_path("warp", display.warp);
    read_path("blend", display.blend);
    if (section.has("window")) readWindow(section.get("window"), display);
    const char* const ANGLES[] = {"heading", "pitch", "roll", "horizontal_field", "vertical_field"};
    const bool angular =
        std::ranges::any_of(ANGLES, [&](const char* key) { return section.has(key); });
    if (angular == section.has("corners"))
        section.refuseKey("corners", angular ? "has corners and angles: one of them must go"
                                             : "needs corners, or heading and fields");
    if (angular)
        readAngles(section, display);
    else
        readCorners(section, display);
    if (!(display.left < display.right && display.bottom < display.top))
        section.refuseKey("bezel", "the bezel leaves nothing to be seen");
    return display;
}

Wall readAll(const YAML::Node& root, const std::filesystem::path& folder) {
    const Section section(root, "the wall", {"network", "displays"});
    Wall wall;
    if (section.has("network")) wall.network = readNetwork(section.get("network"));
    const YAML::Node displays = section.get("displays");
    if (!displays || !displays.IsMap() || displays.size() == 0)
        section.refuseKey("displays", "displays must be keys: the name of each, and what it shows");
    for (const auto& entry : displays) {
        const auto name = entry.first.as<std::string>();
        if (wall.find(name)) refuse(entry.first, "there are two displays \"" + name + '"');
        wall.displays.push_back(readDisplay(name, entry.second, folder));
    }
    return wall;
}

} // namespace

const Display* Wall::find(const std::string& name) const {
    const auto display = std::ranges::find(displays, name, &Display::name);
    return display == displays.end() ? nullptr : &*display;
}

bool readWall(const std::string& path, Wall& wall, std::string& message) {
    const auto fail = [&](int line, const std::string& what) {
        message = path + (line > 0 ? ':' + std::to_string(line) : std::string()) + ": " + what;
        return false;
    };
    if (const std::string why = program::whyUnreadable(path); !why.empty()) {
        message = "cannot open \"" + path + "\": " + why;
        return false;
    }
    try {
        wall = readAll(YAML::LoadFile(path),
                       std::filesystem::absolute(path).parent_path()); // not yet where runs work
        return true;
    } catch (const Mistake& mistake) {
        return fail(mistake.line, mistake.what);
    } catch (const YAML::Exception& error) {
        return fail(error.mark.line + 1, error.msg);
    }
}

} // namespace wall
