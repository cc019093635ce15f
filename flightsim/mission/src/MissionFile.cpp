// SPDX-License-Identifier: MIT
#include "flightsim/mission/MissionFile.h"

#include "flightsim/helicopter/Helicopter.h"
#include "flightsim/mission/Nearest.h"
#include "program/InputFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <yaml-cpp/yaml.h>

/// The file is walked once from the top. Every map is read against a list of the keys that it may
/// have, so that no word of the file is passed over; the first fault is thrown up to `parseMission`
/// and leaves it as a message.
namespace flightsim {

namespace {

struct Fault {
    YAML::Mark mark;
    std::string what;
};

[[noreturn]] void fail(const YAML::Mark& mark, const std::string& what) { throw Fault{mark, what}; }

struct Key {
    std::string name;
    std::function<void(const YAML::Node&)> read;
};
using Keys = std::vector<Key>;

// What a mission may ask for at most; beyond that no helicopter follows.
constexpr double ANY_NUMBER = std::numeric_limits<float>::max();
constexpr double MOST_SECONDS = 86'400;
constexpr double MOST_ALTITUDE = 6'000;
constexpr double MOST_DISTANCE = 500'000;

void readMap(const YAML::Node& node, const std::string& what, const Keys& keys) {
    if (!node.IsMap()) fail(node.Mark(), what + " must be a map of keys and values");
    std::set<std::string> seen;
    for (const auto& entry : node) {
        if (!entry.first.IsScalar()) fail(entry.first.Mark(), what + ": a key must be a word");
        const std::string& name = entry.first.Scalar();
        const auto key = std::ranges::find(keys, name, &Key::name);
        if (key == keys.end()) {
            std::vector<std::string> names;
            std::ranges::transform(keys, std::back_inserter(names), &Key::name);
            fail(entry.first.Mark(), what + " has no key \"" + name + "\"" + nearest(name, names));
        }
        if (!seen.insert(name).second)
            fail(entry.first.Mark(), what + ": \"" + name + "\" is given twice");
        key->read(entry.second);
    }
}

double readNumber(const YAML::Node& node, const std::string& what, double least, double greatest) {
    double value = 0;
    if (node.IsScalar() && YAML::convert<double>::decode(node, value) && value >= least &&
        value <= greatest)
        return value;
    std::string range;
    if (least > -ANY_NUMBER || greatest < ANY_NUMBER) {
        std::array<char, 64> text;
        std::snprintf(text.data(), text.size(), " from %g to %g", least, greatest);
        range = text.data();
    }
    fail(node.Mark(), what + " must be a number" + range);
}

template <class To>
Key number(const char* name, To& to, double least, double greatest) {
    return {name, [name, &to, least, greatest](const YAML::Node& node) {
                to = readNumber(node, name, least, greatest);
            }};
}

Key text(const char* name, std::string& to) {
    return {name, [name, &to](const YAML::Node& node) {
                if (!node.IsScalar()) fail(node.Mark(), std::string(name) + " must be a text");
                to = node.Scalar();
            }};
}

/// Keeps a part of the file for later, since what it refers to may come below it.
Key later(const char* name, YAML::Node& to) {
    return {name, [&to](const YAML::Node& node) { to.reset(node); }};
}

// Weather and the other fields of the record

/// The pose, which a host has to tell, and the rotor's speed.
bool isFlown(const WireField& field) { return !field.unused || field.name == "rotor_speed"; }

Change readChange(const YAML::Node& node) {
    Change change;
    Keys keys = {number("after", change.after, 0, MOST_SECONDS),
                 number("over", change.over, 0, MOST_SECONDS)};
    for (const WireField& field : recordFields()) {
        if (field.use == WireField::Use::RESERVED) continue;
        const std::string name(field.name);
        if (isFlown(field)) {
            keys.push_back({name, [name](const YAML::Node& value) {
                                fail(value.Mark(), name + " is flown, it can't be set");
                            }});
            continue;
        }
        keys.push_back({name, [&change, &field, name](const YAML::Node& value) {
                            change.values.emplace_back(
                                &field,
                                readNumber(value, name, field.getLeast(), field.getGreatest()));
                        }});
    }
    readMap(node, "set", keys);
    if (change.values.empty()) fail(node.Mark(), "set names no field of the record");
    return change;
}

Key changes(std::vector<Change>& to) {
    return {"set", [&to](const YAML::Node& node) {
                if (!node.IsSequence()) {
                    to.push_back(readChange(node));
                    return;
                }
                for (const YAML::Node& item : node)
                    to.push_back(readChange(item));
            }};
}

// Places

using Points = std::map<std::string, Point>;

const Point& namedPoint(const YAML::Node& node, const Points& points) {
    const auto found = node.IsScalar() ? points.find(node.Scalar()) : points.end();
    if (found != points.end()) return found->second;
    if (!node.IsScalar()) fail(node.Mark(), "a point's name must be a word");
    std::vector<std::string> names;
    for (const auto& [name, point] : points)
        names.push_back(name);
    fail(node.Mark(),
         "there is no point \"" + node.Scalar() + "\"" + nearest(node.Scalar(), names));
}

Enu readVelocity(const YAML::Node& node) {
    constexpr double FASTEST_SHIP = 25;
    if (!node.IsSequence() || node.size() != 2)
        fail(node.Mark(), "velocity must be [east, north] in m/s");
    return {readNumber(node[0], "velocity", -FASTEST_SHIP, FASTEST_SHIP),
            readNumber(node[1], "velocity", -FASTEST_SHIP, FASTEST_SHIP), 0};
}

Point readPoint(const YAML::Node& node, const Points& points) {
    if (node.IsScalar()) return namedPoint(node, points);
    Point from = points.at("start");
    Point point;
    std::optional<double> longitude, latitude, east, north, bearing, distance;
    std::optional<Enu> velocity;
    readMap(node, "a point",
            {number("longitude", longitude, -180, 180),
             number("latitude", latitude, -89, 89),
             number("east", east, -MOST_DISTANCE, MOST_DISTANCE),
             number("north", north, -MOST_DISTANCE, MOST_DISTANCE),
             number("bearing", bearing, -360, 360),
             number("distance", distance, 0, MOST_DISTANCE),
             number("surface", point.position.altitude, -500, MOST_ALTITUDE),
             {"from", [&](const YAML::Node& value) { from = namedPoint(value, points); }},
             {"velocity", [&](const YAML::Node& value) { velocity = readVelocity(value); }}});
    const bool geodetic = longitude && latitude;
    const bool polar = bearing && distance;
    if ((longitude || latitude) != geodetic || (bearing || distance) != polar ||
        int(geodetic) + int(polar) + int(east || north) != 1)
        fail(node.Mark(), "a point is either longitude and latitude, or bearing and distance, or "
                          "east and north");
    const Enu step =
        polar ? Enu::ofCourse(*bearing, *distance) : Enu{east.value_or(0), north.value_or(0), 0};
    const Geodetic place =
        geodetic ? Geodetic{*longitude, *latitude, 0} : moved(from.position, step);
    point.velocity =
        velocity.value_or(geodetic ? Enu{} : from.velocity); // a deck goes with its ship
    point.position.longitude = place.longitude;
    point.position.latitude = place.latitude;
    return point;
}

// Legs

/// A kind of leg in the file: its keys, the first of which may be given without its name, as in
/// "hover: 5", and how many of them have to be there.
struct LegForm {
    const char* name;
    LegKind kind;
    std::vector<std::string> keys;
    bool first_required;
    Leg defaults;
};

Leg legDefaults(double seconds, double rate) {
    Leg leg;
    leg.seconds = seconds;
    leg.rate = rate;
    return leg;
}

const std::vector<LegForm>& legForms() {
    using enum LegKind;
    const Leg usual = legDefaults(5, 3);
    Leg rising = legDefaults(0, 2);
    rising.height = 5;
    Leg nearing = usual;
    nearing.radius = 2;
    static const std::vector<LegForm> FORMS = {
        {"spin_up", spin_up, {"seconds"}, false, legDefaults(12, 3)},
        {"take_off", take_off, {"height", "rate", "heading"}, false, rising},
        {"hover", hover, {"seconds", "height", "altitude", "heading", "turn_rate"}, false, usual},
        {"follow",
         follow,
         {"to", "seconds", "height", "altitude", "heading", "speed", "rate", "acceleration",
          "deceleration", "turn_rate", "lean", "bank"},
         true,
         usual},
        {"turn_to", turn_to, {"heading", "turn_rate"}, true, usual},
        {"climb", climb, {"height", "altitude", "rate"}, false, usual},
        {"descend", descend, {"height", "altitude", "rate"}, false, usual},
        {"fly_to",
         fly_to,
         {"to", "altitude", "height", "speed", "lean", "bank", "acceleration", "deceleration",
          "rate", "radius"},
         true,
         usual},
        {"approach",
         approach,
         {"to", "height", "altitude", "speed", "lean", "bank", "acceleration", "deceleration",
          "rate", "heading", "turn_rate", "radius"},
         true,
         nearing},
        {"land", land, {"to", "rate", "heading"}, false, legDefaults(0, 1.5)},
        {"wait", wait, {"seconds"}, false, usual},
        {"spin_down", spin_down, {"seconds"}, false, legDefaults(12, 3)},
    };
    return FORMS;
}

Keys legKeys(Leg& leg, const Points& points) {
    return {number("seconds", leg.seconds, 0, MOST_SECONDS),
            number("height", leg.height, 3, MOST_ALTITUDE),
            number("altitude", leg.altitude, -500, MOST_ALTITUDE),
            number("heading", leg.heading, -360, 360),
            number("speed", leg.speed, 2, 80),
            number("rate", leg.rate, 0.5, 8),
            number("turn_rate", leg.turn_rate, 2, 40),
            number("lean", leg.lean, 5, 30),
            number("bank", leg.bank, 5, 30),
            number("acceleration", leg.acceleration, 0.3, 4),
            number("deceleration", leg.deceleration, 0.3, 3.5),
            number("radius", leg.radius, 1, 1000),
            {"to", [&](const YAML::Node& node) { leg.point = readPoint(node, points); }}};
}

/// `mark`: of the whole leg; an empty body has none of its own.
void readLegBody(const YAML::Node& node, const YAML::Mark& mark, const LegForm& form,
                 const Points& points, Leg& leg) {
    leg = form.defaults;
    leg.kind = form.kind;
    leg.name = form.name;
    Keys keys;
    for (Key& key : legKeys(leg, points))
        if (std::ranges::count(form.keys, key.name)) keys.push_back(std::move(key));
    const bool bare = !node.IsNull() && !node.IsMap();
    const auto first = std::ranges::find(keys, form.keys.front(), &Key::name);
    if (bare)
        first->read(node);
    else if (node.IsMap())
        readMap(node, form.name, keys);
    if (form.first_required && !bare && !(node.IsMap() && node[form.keys.front()]))
        fail(mark, std::string(form.name) + " needs \"" + form.keys.front() + "\"");
    const bool vertical = form.kind == LegKind::climb || form.kind == LegKind::descend;
    if (leg.height && leg.altitude)
        fail(mark, std::string(form.name) + ": height excludes altitude");
    if (vertical && !leg.height && !leg.altitude)
        fail(mark, std::string(form.name) + " needs \"height\" or \"altitude\"");
    if (leg.point && leg.point->velocity.horizontal() > leg.speed - 2)
        fail(mark, "the leg's speed must exceed that of its point by 2 m/s");
}

Leg readLeg(const YAML::Node& node, const Points& points) {
    Leg leg;
    std::string name;
    double stretch = 0, from = 0, below = std::numeric_limits<double>::infinity();
    std::vector<Change> leg_changes;
    bool has_kind = false;
    Keys keys;
    for (const LegForm& form : legForms())
        keys.push_back({form.name, [&](const YAML::Node& body) {
                            if (has_kind) fail(body.Mark(), "a leg has one kind only");
                            has_kind = true;
                            readLegBody(body, node.Mark(), form, points, leg);
                        }});
    const Keys common = {text("name", name), number("stretch", stretch, 0, 1000),
                         number("optional_from", from, 0, MOST_SECONDS),
                         number("optional_below", below, 0, MOST_SECONDS), changes(leg_changes)};
    keys.insert(keys.end(), common.begin(), common.end());
    readMap(node, "a leg", keys);
    if (!has_kind) fail(node.Mark(), "a leg needs a kind, such as \"hover\" or \"fly_to\"");
    const bool timed =
        leg.kind == LegKind::hover || leg.kind == LegKind::wait || leg.kind == LegKind::follow;
    if (stretch > 0 && !timed) fail(node.Mark(), "only hover, follow and wait can stretch");
    if (!name.empty()) leg.name = name;
    leg.line = node.Mark().line + 1;
    leg.column = node.Mark().column + 1;
    leg.stretch = stretch;
    leg.optional_from = from;
    leg.optional_below = below;
    leg.changes = leg_changes;
    return leg;
}

// The whole

void readStart(const YAML::Node& node, Mission& mission) {
    double surface = 0;
    std::optional<double> longitude, latitude;
    readMap(node, "start",
            {number("longitude", longitude, -180, 180), number("latitude", latitude, -89, 89),
             number("surface", surface, -500, MOST_ALTITUDE),
             number("wheel_height", mission.wheel_height, 0, 20),
             number("heading", mission.heading, -360, 360),
             number("rotor", mission.rotor, 0, FULL_ROTOR)});
    if (!longitude || !latitude) fail(node.Mark(), "start needs \"longitude\" and \"latitude\"");
    mission.start = {*longitude, *latitude, surface + mission.wheel_height};
}

Points readPoints(const YAML::Node& node, const Mission& mission) {
    Points points;
    Point& start = points["start"];
    start.position = mission.start;
    start.position.altitude -= mission.wheel_height;
    if (node.IsNull()) return points;
    if (!node.IsMap()) fail(node.Mark(), "points must be a map of names and points");
    for (const auto& entry : node) {
        if (!entry.first.IsScalar()) fail(entry.first.Mark(), "a point's name must be a word");
        if (points.contains(entry.first.Scalar()))
            fail(entry.first.Mark(), "the point \"" + entry.first.Scalar() + "\" exists already");
        const Point point = readPoint(entry.second, points);
        points.emplace(entry.first.Scalar(), point);
    }
    return points;
}

/// An empty file has a mark of its own that is nowhere; the beginning stands for it.
std::string messageAt(const std::string& path, const YAML::Mark& mark, const std::string& what) {
    return missionMessage(path, std::max(mark.line, 0) + 1, std::max(mark.column, 0) + 1, what);
}

Mission readDocument(const YAML::Node& root) {
    Mission mission;
    YAML::Node start, points, legs;
    readMap(root, "a mission",
            {text("name", mission.name),
             {"reset",
              [&](const YAML::Node& node) {
                  if (!YAML::convert<bool>::decode(node, mission.reset))
                      fail(node.Mark(), "reset must be true or false");
              }},
             number("duration", mission.duration, 1, MOST_SECONDS),
             changes(mission.changes),
             later("start", start),
             later("points", points),
             later("legs", legs)});
    if (start.IsNull()) fail(root.Mark(), "a mission needs \"start\"");
    readStart(start, mission);
    const Points known = readPoints(points, mission);
    if (!legs.IsSequence() || legs.size() == 0)
        fail(legs.IsNull() ? root.Mark() : legs.Mark(), "a mission needs a list of \"legs\"");
    for (const YAML::Node& leg : legs)
        mission.legs.push_back(readLeg(leg, known));
    return mission;
}

} // namespace

std::optional<Mission> readMission(const std::string& path, std::string& message) {
    constexpr std::size_t LARGEST = 1 << 20; // bytes
    const std::string why = program::whyUnreadable(path);
    if (!why.empty()) {
        message = "cannot read \"" + path + "\": " + why;
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    std::string content(LARGEST + 1, '\0');
    file.read(content.data(), content.size());
    if (file.bad() || (!file.eof() && file.fail())) {
        message = "cannot read \"" + path + "\": " + std::strerror(errno);
        return std::nullopt;
    }
    content.resize(file.gcount());
    if (content.size() <= LARGEST) return parseMission(content, path, message);
    message = "\"" + path + "\" is larger than a mission file may be: 1 MiB";
    return std::nullopt;
}

std::optional<Mission> parseMission(const std::string& content, const std::string& path,
                                    std::string& message) {
    try {
        Mission mission = readDocument(YAML::Load(content));
        mission.path = path;
        return mission;
    } catch (const Fault& fault) {
        message = messageAt(path, fault.mark, fault.what);
    } catch (const YAML::Exception& error) {
        message = messageAt(path, error.mark, error.msg);
    }
    return std::nullopt;
}

} // namespace flightsim
