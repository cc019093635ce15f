// SPDX-License-Identifier: MIT
#include "Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

namespace {

/// "1280x720" into the options. False, and nothing changed, when it isn't that.
bool readSize(const std::string& text, Options& options) {
    int width = 0, height = 0;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%dx%d%c", &width, &height, &rest) != 2) return false;
    if (std::min(width, height) < 16 || std::max(width, height) > 16384) return false;
    options.width = width;
    options.height = height;
    return true;
}

void addInterfaceOptions(CLI::App& app, Options& options) {
    app.add_option("--script", options.script,
                   "Do the timed operator commands in this file (docs/operator.md)");
    app.add_option("--language", options.language,
                   "Of boxes, key map and statistics: zh or en (config/texts.*.yaml)")
        ->check(CLI::IsMember({"zh", "en"}));
    app.add_flag("--no-ui", options.no_interface, "Pictures without panels and texts");
    app.add_flag("--help-overlay", options.show_help, "Begin with the key map over the picture");
    app.add_option("--statistics", options.statistics,
                   "In the picture: off, rate or full; F11 steps through them")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, Overlays::Statistics>{{"off", Overlays::Statistics::off},
                                                        {"rate", Overlays::Statistics::rate},
                                                        {"full", Overlays::Statistics::full}}))
        ->default_str("off");
}

void addPictureOptions(CLI::App& app, Options& options) {
    app.add_option("--renderer", options.renderer,
                   "gl: pictures or nothing; null: no pictures; auto: pictures where the machine "
                   "can draw them")
        ->check(CLI::IsMember({"auto", "gl", "null"}));
    app.add_flag_function(
        "--null", [&options](std::int64_t) { options.renderer = "null"; }, "--renderer null");
    auto* headless = app.add_flag("--headless", options.headless, "No window");
    app.add_flag("--window", options.window, "A window or nothing")->excludes(headless);
    app.add_option("--scale", options.scale,
                   "Rendered pixels per pixel of the picture, 0.25 to 1, or auto: as many as "
                   "20 frames a second allow")
        ->transform([](const std::string& text) { return text == "auto" ? "0" : text; })
        ->check(CLI::Range(0.25, 1.0) | CLI::IsMember({"0"}));
    app.add_option("--screenshot", options.screenshot, "Write the last frame to this PNG file");
    app.add_option("--screenshot-every", options.screenshot_every,
                   "Write a picture each time so many seconds of scene time have passed, numbered "
                   "after the name of --screenshot")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--contact-sheet", options.contact_sheet,
                   "Write small copies of the numbered pictures, side by side, to this PNG file");
    app.add_option("--video", options.video,
                   "Write a video of the pictures to this file, with ffmpeg, which must be "
                   "installed; the suffix says in which format");
    app.add_option("--eye", options.eye,
                   "Look from a fixed place: LONGITUDE LATITUDE ALTITUDE HEADING PITCH (down is "
                   "negative)")
        ->expected(5);
    app.add_flag("--profile", options.profile, "Tell milliseconds per pass in the summary");
}

/// What these ask for wins over the flight simulation's weather.
void addWeatherOptions(CLI::App& app, Options& options) {
    const char* const group = "Weather and time (in place of what the flight simulation says)";
    Weather& weather = options.weather;
    const auto add = [&](const char* name, auto& value, const char* text) {
        return app.add_option(name, value, text)->group(group);
    };
    add("--time-of-day,--time", options.time_of_day, "Local solar time at the start, hours")
        ->check(CLI::Range(0.0, 24.0));
    add("--time-scale", options.time_scale, "How many times faster than real the hour passes")
        ->check(CLI::Range(0.0, 10000.0));
    add("--day", options.day_of_year, "Day of the year")->check(CLI::Range(1, 366));
    add("--weather", weather.look, "Sky: clear, overcast, storm or fog")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, int>{{"clear", 0}, {"overcast", 1}, {"storm", 2}, {"fog", 3}}))
        ->default_str("");
    add("--rain", weather.rain, "Level, 0 to 3")->check(CLI::Range(0, 3))->default_str("");
    add("--snow", weather.snow, "Level, 0 to 3")->check(CLI::Range(0, 3))->default_str("");
    add("--hail", weather.hail, "Level, 0 to 3")->check(CLI::Range(0, 3))->default_str("");
    add("--visibility", weather.visibility, "Metres")
        ->check(CLI::Range(20.0, 1e6))
        ->default_str("");
    add("--sea,--beaufort", weather.beaufort, "Beaufort number of the sea")
        ->check(CLI::Range(0, 12))
        ->default_str("");
    app.add_option_function<std::vector<float>>(
           "--wind",
           [&weather](const std::vector<float>& wind) {
               weather.wind_direction = 270 - wind[0]; // from, clockwise from north: to towards
               weather.wind_speed = wind[1];
           },
           "Where the wind comes from (degrees clockwise from north), and its speed (m/s)")
        ->expected(2)
        ->check(CLI::Range(0.0, 360.0))
        ->group(group);
}

} // namespace

bool parseOptions(int argc, char** argv, Options& options, int& exit_status) {
    CLI::App app{"The visual channel: loads a scene logic and its world, takes the flight "
                 "simulation's records over UDP, and answers every frame with what lies below the "
                 "helicopter. Ports and addresses stand in config/Logic_Nerith_Heli_Final.cfg."};
    app.option_defaults()->always_capture_default();
    app.add_option("--logic", options.logic, "Library of the scene logic")
        ->default_str("the one shipped with this program");
    app.add_option("--plugin", options.plugins, "Further engine plug-in library; may be repeated");
    app.add_option("--directory", options.directory,
                   "Folder that holds config/ and data/, to which all other paths are "
                   "relative; default: the present one");
    app.add_option("--fps", options.frame_rate,
                   "Frames per second in real time; 0: as fast as possible")
        ->check(CLI::Range(0.0, 10000.0));
    app.add_option("--step", options.step,
                   "Advance every frame by this many seconds instead of the time that has passed")
        ->check(CLI::Range(0.0, 1.0));
    app.add_option("--seconds", options.seconds, "End after this scene time; 0: run until stopped")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--frames", options.frames, "End after this many frames; 0: run until stopped")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--width", options.width, "Width of the picture, pixels")
        ->check(CLI::Range(16, 16384));
    app.add_option("--height", options.height, "Height of the picture, pixels")
        ->check(CLI::Range(16, 16384));
    app.add_option_function<std::string>(
           "--size", [&options](const std::string& text) { readSize(text, options); },
           "Size of the picture, WIDTHxHEIGHT")
        ->check([](const std::string& text) {
            Options probe;
            return readSize(text, probe) ? std::string() : "needs WIDTHxHEIGHT, 16 to 16384";
        });
    addPictureOptions(app, options);
    addWeatherOptions(app, options);
    addInterfaceOptions(app, options);
    app.add_option("--allow-sender", options.allow_sender,
                   "Take records from this IPv4 address only");
    app.add_option("--trace", options.trace, "Write a CSV line per frame to this file");
    app.add_flag("--quiet", options.quiet, "No status line every second");
    app.footer(
        "Stop with Ctrl-C. Exit status: 0 after an orderly end, 1 when the logic, the world "
        "or its start marker is missing or a script could not be done, 2 for a wrong command "
        "line.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exit_status = app.exit(error) == 0 ? 0 : 2;
        return false;
    }
    return true;
}
