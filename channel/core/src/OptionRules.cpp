// SPDX-License-Identifier: MIT
#include "OptionRules.h"

#include "ig/base/jLog.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>

using namespace ig;

namespace {

/// Two wishes that don't go together; or one that does nothing, `other` being what it lacks.
struct Conflict {
    std::string name, other;
    bool lacks = false;
    const char* why = "";
};

const char* const NO_PICTURES = "there are no pictures";
const char* const NO_INTERFACE = "the pictures are without panels and texts";
const char* const SAME_SIZE = "both say how large the picture is";

const Conflict CONFLICTS[] = {
    {"screenshot", "null", false, NO_PICTURES},
    {"screenshot-every", "null", false, NO_PICTURES},
    {"contact-sheet", "null", false, NO_PICTURES},
    {"video", "null", false, NO_PICTURES},
    {"window", "null", false, NO_PICTURES},
    {"full-screen", "null", false, NO_PICTURES},
    {"monitor", "null", false, NO_PICTURES},
    {"interface-size", "null", false, NO_PICTURES},
    {"eye", "null", false, NO_PICTURES},
    {"scale", "null", false, NO_PICTURES},
    {"profile", "null", false, NO_PICTURES},
    {"smooth", "null", false, NO_PICTURES},
    {"help-overlay", "null", false, NO_PICTURES},
    {"statistics", "null", false, NO_PICTURES},
    {"renderer", "null", false, "only one of them can draw"},
    {"help-overlay", "no-ui", false, NO_INTERFACE},
    {"statistics", "no-ui", false, NO_INTERFACE},
    {"interface-size", "no-ui", false, NO_INTERFACE},
    {"window", "headless", false, "there is a window or there is none"},
    {"vsync", "null", false, NO_PICTURES},
    {"vsync", "headless", false, "there is no display to wait for"},
    {"full-screen", "headless", false, "there is no window"},
    {"monitor", "headless", false, "there is no window"},
    {"size", "width", false, SAME_SIZE},
    {"size", "height", false, SAME_SIZE},
    {"screenshot-every", "screenshot", true, "the pictures are numbered after its name"},
    {"real-time", "replay", true, "all else is in real time"},
    {"fps", "replay", false, "the log says how long its frames are; --real-time takes that time"},
    {"step", "replay", false, "the log says how long its frames are"},
    {"script", "replay", false, "the log says what the operator did"},
    {"allow-sender", "replay", false, "nothing is received"},
    {"display", "wall", true, "the wall's file says what each of its displays shows"},
    {"display", "replay", false, "the first channel says what the frames take in"},
    {"no-ui", "display", false, "it has no panels"},
    {"statistics", "display", false, "it has no panels"},
};

/// What files are written to, and those that are read; no two of them may be the same.
const char* const FILES[] = {"screenshot", "contact-sheet", "video", "trace", "record",
                             "replay",     "script",        "world", "wall"};

const char* const OF_DISPLAY[] = {
    "renderer",         "null",   "warm-up",   "headless", "window",     "vsync",  "full-screen",
    "monitor",          "scale",  "eye",       "no-ui",    "statistics", "video",  "contact-sheet",
    "screenshot-every", "trace",  "profile",   "quiet",    "seconds",    "record", "frames",
    "screenshot",       "replay", "real-time", "smooth",   "metrics",    "wall",   "display"};

/// By whatever names; one that isn't there yet by its name without dots and links.
bool isSameFile(const std::filesystem::path& folder, const std::string& a, const std::string& b) {
    std::error_code error;
    if (std::filesystem::equivalent(folder / a, folder / b, error)) return true;
    const std::filesystem::path begin = std::filesystem::current_path(error) / folder;
    return std::filesystem::weakly_canonical(begin / a, error) ==
           std::filesystem::weakly_canonical(begin / b, error);
}

std::optional<Conflict> findConflict(const Wishes& wishes, const std::string& folder) {
    for (const Conflict& conflict : CONFLICTS)
        if (wishes.contains(conflict.name) && wishes.contains(conflict.other) != conflict.lacks)
            return conflict;
    for (const char* const taken : {"replay", "display"})
        for (const auto& [name, wish] : wishes)
            if (wishes.contains(taken) && !isOfDisplay(name))
                return Conflict{name, taken, false,
                                *taken == 'r' ? "the log says what scene it is of"
                                              : "the first channel says what the scene is"};
    for (const char* const& a : FILES)
        for (const char* const* b = FILES; b < &a; b++)
            if (wishes.contains(a) && wishes.contains(*b) &&
                isSameFile(folder, wishes.at(a).value, wishes.at(*b).value))
                return Conflict{a, *b, false, "they name the same file"};
    // In a window Alt + p takes pictures.
    if (wishes.contains("contact-sheet") && wishes.contains("headless") &&
        !wishes.contains("screenshot-every") && !wishes.contains("script"))
        return Conflict{"contact-sheet", "screenshot-every", true,
                        "nothing else takes the pictures for it; a --script could"};
    return {};
}

/// As it was written: `--video`, or `"video" (config/visual_channel.cfg:12)`.
std::string describe(const std::string& name, const Wishes& wishes) {
    const auto wish = wishes.find(name);
    if (wish == wishes.end() || wish->second.place.empty()) return "--" + name;
    return (name == "null" ? "\"renderer: null\"" : '"' + name + '"') + " (" + wish->second.place +
           ')';
}

} // namespace

bool isOfDisplay(const std::string& name) {
    return std::ranges::find(OF_DISPLAY, name) != std::end(OF_DISPLAY);
}

bool settleWishes(Wishes& wishes, const std::string& folder) {
    bool displaced = false;
    while (const std::optional<Conflict> conflict = findConflict(wishes, folder)) {
        const auto name = wishes.find(conflict->name), other = wishes.find(conflict->other);
        const bool from_file = !name->second.place.empty();
        const bool other_from_file = other != wishes.end() && !other->second.place.empty();
        const std::string text =
            describe(conflict->name, wishes) +
            (conflict->lacks ? " does nothing without " : " can't go together with ") +
            describe(conflict->other, wishes) + ": " + conflict->why;
        if (conflict->lacks ? !from_file || !displaced : from_file == other_from_file) {
            jLog::error("visual_channel: %s", text.c_str());
            return false;
        }
        jLog::message("visual_channel: %s; the command line wins", text.c_str());
        wishes.erase(from_file ? name : other);
        displaced = true;
    }
    return true;
}
