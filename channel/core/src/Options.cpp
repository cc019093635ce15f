// SPDX-License-Identifier: MIT
#include "Options.h"

#include "OptionPaths.h"
#include "OptionRules.h"
#include "OptionValues.h"
#include "Provenance.h"
#include "Settings.h"
#include "ig/base/jLog.h"
#include "manual/Manual.h"
#include "manual/Version.h"
#include "program/DataFolder.h"
#include "program/Process.h"
#include "render/factory/RendererKind.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <iterator>

using namespace option_values;
using ig::jLog;

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

/// Pictures are written as PNG whatever their names say; empty for a good path.
std::string needPng(const std::string& path) {
    const std::filesystem::path file(path);
    std::string suffix = file.extension().string();
    std::ranges::transform(suffix, suffix.begin(), [](unsigned char c) { return std::tolower(c); });
    if (path.empty() || suffix == ".png") return {};
    return "\"" + path + "\": pictures are written as PNG: name it \"" +
           std::filesystem::path(file).replace_extension(".png").string() + "\"";
}

void addInterfaceOptions(CLI::App& app, Options& options) {
    app.add_option("--script", options.script,
                   "Do the timed operator commands in this file (docs/operator.md)")
        ->type_name("FILE");
    app.add_option("--language", options.language,
                   "Of boxes, key map and statistics: zh or en (config/texts.*.yaml)")
        ->check(word({"zh", "en"}));
    app.add_flag("--no-ui", options.no_interface, "Pictures without panels and texts");
    app.add_option("--interface-size", options.interface_size,
                   "How many times larger than usual panels and texts are, 0.5 to 4, as far as "
                   "the picture has room for them")
        ->check(number(0.5, 4));
    app.add_flag("--help-overlay", options.show_help, "Begin with the key map over the picture");
    static const std::vector<std::string> FORMS = {"off", "rate", "full"};
    app.add_option_function<std::string>(
           "--statistics",
           [&options](const std::string& form) {
               options.statistics = static_cast<Overlays::Statistics>(indexOf(form, FORMS));
           },
           "In the picture: off, rate or full; F11 steps through them")
        ->check(word(FORMS))
        ->default_str("off");
}

void addPictureOptions(CLI::App& app, Options& options) {
    std::vector<std::string> renderers = {"auto"};
    std::string help;
    for (const ig::RendererKind& kind : ig::getRendererKinds()) {
        renderers.push_back(kind.name);
        help +=
            std::string(kind.name) + (kind.draws ? ": pictures or nothing; " : ": no pictures; ");
    }
    app.add_option("--renderer", options.renderer,
                   help + "auto: pictures where the machine can draw them")
        ->check(word(renderers));
    app.add_flag_function(
        "--null", [&options](std::int64_t) { options.renderer = "null"; }, "--renderer null");
    app.add_flag("--headless", options.headless, "No window");
    app.add_flag("--window", options.window, "A window or nothing");
    static const std::vector<std::string> SYNCS = {"on", "off", "late"};
    app.add_option_function<std::string>(
           "--vsync",
           [&options](const std::string& sync) {
               options.vertical_sync = static_cast<VerticalSync>(indexOf(sync, SYNCS));
           },
           "on: the window's pictures wait for the display, which sets the pace; late: but those "
           "that come too late are shown at once, torn; off: none waits, and each may be torn")
        ->check(word(SYNCS))
        ->default_str("on");
    app.add_flag("--full-screen", options.full_screen,
                 "The window begins as all of its monitor (Alt + Return goes back)");
    app.add_option("--monitor", options.monitor,
                   "The monitor that the window goes to: its name, or its number from 1");
    app.add_option_function<std::string>(
           "--scale",
           [&options](const std::string& text) {
               options.scale = 0;
               read(text, options.scale);
           },
           "Rendered pixels per pixel of the picture, 0.5 to 1, or auto: as many as "
           "20 frames a second allow")
        ->check(number({0.5, 1, false, "", "auto"}))
        ->default_str("1");
    app.add_option("--screenshot", options.screenshot, "Write the last frame to this PNG file")
        ->type_name("FILE")
        ->check(needPng);
    app.add_option("--screenshot-every", options.screenshot_every,
                   "Write a picture each time so many seconds of scene time have passed, numbered "
                   "after the name of --screenshot")
        ->check(number({}));
    app.add_option("--contact-sheet", options.contact_sheet,
                   "Write small copies of the numbered pictures, side by side, to this PNG file")
        ->type_name("FILE")
        ->check(needPng);
    app.add_option("--video", options.video,
                   "Write a video of the pictures to this file, with ffmpeg, which must be "
                   "installed; the suffix says in which format")
        ->type_name("FILE");
    app.add_option("--eye", options.eye,
                   "Look from a fixed place: LONGITUDE LATITUDE ALTITUDE HEADING PITCH (down is "
                   "negative)")
        ->expected(5)
        ->check(number({-180, 180, false, "LONGITUDE"}).application_index(0))
        ->check(number({-90, 90, false, "LATITUDE (the second)"}).application_index(1))
        ->check(number({-12000, 1e7, false, "ALTITUDE"}).application_index(2))
        ->check(number({-360, 360, false, "HEADING"}).application_index(3))
        ->check(number({-90, 90, false, "PITCH"}).application_index(4));
    app.add_option_function<std::string>(
           "--warm-up", [&options](const std::string& text) { options.warm_up = text == "on"; },
           "on: before the first frame, everything that may be drawn is got ready, so that no "
           "frame "
           "waits for it; off: at its first use")
        ->check(word({"on", "off"}))
        ->default_str("on");
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
        ->check(number(0, 24));
    add("--time-scale", options.time_scale, "How many times faster than real the hour passes")
        ->check(number(0, 10000));
    add("--day", options.day_of_year, "Day of the year")->check(whole(1, 366));
    static const std::vector<std::string> LOOKS = {"clear", "overcast", "storm", "fog"};
    app.add_option_function<std::string>(
           "--weather",
           [&weather](const std::string& look) { weather.look = indexOf(look, LOOKS); },
           "Sky: clear, overcast, storm or fog")
        ->check(word(LOOKS))
        ->group(group);
    add("--rain", weather.rain, "Level, 0 to 3")->check(whole(0, 3))->default_str("");
    add("--snow", weather.snow, "Level, 0 to 3")->check(whole(0, 3))->default_str("");
    add("--hail", weather.hail, "Level, 0 to 3")->check(whole(0, 3))->default_str("");
    add("--visibility", weather.visibility, "Metres")->check(number(20, 1e6))->default_str("");
    add("--sea,--beaufort", weather.beaufort, "Beaufort number of the sea")
        ->check(whole(0, 12))
        ->default_str("");
    app.add_option_function<std::vector<float>>(
           "--wind",
           [&weather](const std::vector<float>& wind) {
               weather.wind_direction = 270 - wind[0]; // from, clockwise from north: to towards
               weather.wind_speed = wind[1];
           },
           "Where the wind comes from (degrees clockwise from north), and its speed (m/s)")
        ->expected(2)
        ->check(number({0, 360, false, "the direction"}).application_index(0))
        ->check(number({0, 100, false, "the speed"}).application_index(1))
        ->group(group);
}

void addSizeOptions(CLI::App& app, Options& options) {
    app.add_option("--width", options.width, "Width of the picture, pixels")
        ->check(whole(16, 16384));
    app.add_option("--height", options.height, "Height of the picture, pixels")
        ->check(whole(16, 16384));
    app.add_option_function<std::string>(
           "--size", [&options](const std::string& text) { readSize(text, options); },
           "Size of the picture, WIDTHxHEIGHT")
        ->check([](const std::string& text) {
            Options probe;
            return readSize(text, probe)
                       ? std::string()
                       : "must be WIDTHxHEIGHT, each 16 to 16384, not \"" + text + '"';
        });
}

void addLogOptions(CLI::App& app, Options& options) {
    app.add_option("--record", options.record,
                   "Write a log of all that the frames take in to this file, to be played again")
        ->type_name("FILE");
    app.add_option("--replay", options.replay,
                   "Play such a log again, as fast as possible: no link, no operator, the options "
                   "of the log; what is shown and written is asked for here")
        ->type_name("FILE");
    app.add_option("--wall", options.wall,
                   "Let the displays of the wall that this file describes show the run "
                   "(docs/wall.md)")
        ->type_name("FILE");
    app.add_option("--display", options.display,
                   "Be that display of the wall: show the first channel's run, with its options; "
                   "what is shown and written is asked for here");
    app.add_flag("--real-time", options.real_time,
                 "The replay takes the time that the flight took");
}

void addOptions(CLI::App& app, Options& options) {
    app.add_option("--logic", options.logic, "Library of the scene logic")
        ->type_name("FILE")
        ->default_str("the one shipped with this program");
    app.add_option("--world", options.world,
                   "File of the world to fly in (docs/worlds.md), in place of the logic's own")
        ->type_name("FILE");
    app.add_option("--plugin", options.plugins, "Further engine plug-in library; may be repeated")
        ->type_name("FILE");
    app.add_option("--fps", options.frame_rate,
                   "Frames per second in real time, in a window at most so many (--vsync); 0: as "
                   "fast as possible")
        ->check(number(0, 10000));
    app.add_option("--step", options.step,
                   "Advance every frame by this many seconds instead of the time that has passed")
        ->check(number(0, 1));
    app.add_flag("--smooth", options.smooth,
                 "Show the helicopter moving evenly, carried on from its records to the time of "
                 "each frame (docs/operator.md)");
    app.add_option("--seconds", options.seconds, "End after this scene time; 0: run until stopped")
        ->check(number({}));
    app.add_option("--frames", options.frames, "End after this many frames; 0: run until stopped")
        ->check(number({.whole = true}));
    addSizeOptions(app, options);
    addPictureOptions(app, options);
    addWeatherOptions(app, options);
    addInterfaceOptions(app, options);
    addLogOptions(app, options);
    app.add_option("--allow-sender", options.allow_sender,
                   "Take records from this IPv4 address only");
    app.add_flag("--obey-exit", options.obey_exit,
                 "End in order when the flight simulation commands it (system_cmd 4)");
    app.add_option("--trace", options.trace, "Write a CSV line per frame to this file")
        ->type_name("FILE");
    app.add_option("--metrics", options.metrics,
                   "Tell monitoring on this machine how the run goes, at this port of 127.0.0.1; "
                   "0: a free one (docs/operator.md)")
        ->check(whole(0, 65535))
        ->default_str("");
    app.add_flag("--quiet", options.quiet, "No status line every second");
}

// ------------------------------------------------------------------ command line, then file

/// What comes before the settings file, or ends the program.
const char* const BEFORE_SETTINGS[] = {
    "help",   "version",   "verbose", "print-manual", "print-completion",
    "schema", "directory", "config"};
/// What else only the command line says.
const char* const COMMAND_LINE_ONLY[] = {"null", "replay", "real-time", "display"};

std::string nameOf(const CLI::Option& option) { return option.get_lnames().front(); }

/// The options that the settings file offers too, by name.
std::vector<std::string> settingNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        if (std::ranges::count(BEFORE_SETTINGS, nameOf(*option)) +
                std::ranges::count(COMMAND_LINE_ONLY, nameOf(*option)) ==
            0)
            for (const std::string& name : option->get_lnames())
                names.push_back(name);
    return names;
}

bool isFalse(const std::string& text) {
    bool value = true;
    return read(text, value) && !value;
}

/// Adds what the values ask for, unless they are the option's default.
void addWish(const CLI::Option& option, const std::vector<std::string>& values,
             const std::string& place, Wishes& wishes) {
    if (values.empty()) return;
    std::string name = nameOf(option);
    const bool flag = option.get_expected_min() == 0;
    if (flag ? isFalse(values[0]) : values[0] == option.get_default_str()) return;
    if (name == "renderer" && values[0] == "null") name = "null";
    wishes[name] = {values[0], place};
}

/// The innermost command that the command line names; the program itself without.
const CLI::App& commandOf(const CLI::App& app) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    return *command;
}

/// False, with an error each, when the command line holds what is no option or command.
bool nameExtras(const CLI::App& app) {
    const CLI::App& command = commandOf(app);
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    for (const CLI::App* part : command.get_subcommands({}))
        names.push_back(part->get_name());
    const std::vector<std::string> extras = app.remaining(true);
    // What follows an option or a command that there isn't says nothing further.
    const bool only_values =
        std::ranges::none_of(extras, [](const std::string& text) { return text.starts_with('-'); });
    for (const std::string& text : extras)
        if (text.starts_with('-') || (only_values && &text == &extras.front()))
            jLog::error("visual_channel: there is no %s \"%s\"%s (--help tells all options)",
                        text.starts_with('-') ? "option" : "command", text.c_str(),
                        ig::nearest(text, names).c_str());
    if (!extras.empty() || &command == &app || command.get_subcommands({}).empty())
        return extras.empty();
    jLog::error("visual_channel: %s needs a command (%s --help tells all)",
                command.get_name().c_str(), command.get_name().c_str());
    return false;
}

/// What is wrong with an option's values, without its name.
std::string explain(const CLI::Option& option, const CLI::Error& error) {
    if (dynamic_cast<const CLI::ValidationError*>(&error)) // begins with the name and a colon
        return std::string(error.what()).substr(option.get_name().size() + 2);
    const int count = std::max(option.get_items_expected_min(), 1);
    return "needs " + std::to_string(count) + (count > 1 ? " values" : " value");
}

/// The error that `parse` threw for some option.
void logMistake(const CLI::App& app, const CLI::ParseError& error) {
    std::string what = error.what();
    for (const CLI::Option* option : commandOf(app).get_options())
        if (what.starts_with(option->get_name() + ':'))
            what = option->get_name() + ": " + explain(*option, error);
    jLog::error("visual_channel: %s (--help tells all options)", what.c_str());
}

/// False, with an error, when a mistake stands in it. What the command line says stays.
bool applySetting(CLI::Option& option, const Setting& setting) {
    const auto refuse = [&setting](const std::string& what) {
        jLog::error("visual_channel: %s: %s: %s", setting.place.c_str(), setting.key.c_str(),
                    what.c_str());
        return false;
    };
    bool value = false;
    if (option.get_expected_min() == 0 && !read(setting.values[0], value))
        return refuse('"' + setting.values[0] + "\" is neither true nor false");
    try {
        option.add_result(setting.values);
        option.run_callback();
        return true;
    } catch (const CLI::Error& error) {
        return refuse(explain(option, error));
    }
}

/// False, with an error each, when keys of the file are no options.
bool checkKeys(const CLI::App& app, std::vector<Setting>& settings) {
    bool known = true;
    const std::vector<std::string> names = settingNames(app);
    for (const Setting& setting : settings) {
        if (std::ranges::count(names, setting.key) > 0) continue;
        known = false;
        jLog::error("visual_channel: %s: there is no setting \"%s\"%s", setting.place.c_str(),
                    setting.key.c_str(), ig::nearest(setting.key, names).c_str());
    }
    return known;
}

/// What the command line asks for.
Wishes wishesOf(const CLI::App& app) {
    Wishes wishes;
    for (const CLI::Option* option : app.get_options())
        if (std::ranges::count(BEFORE_SETTINGS, nameOf(*option)) == 0)
            addWish(*option, option->results(), "", wishes);
    return wishes;
}

/// The settings file below what the command line says. False after the errors that explain it.
bool applySettings(CLI::App& app, const Options& options, const std::string& config, bool needed) {
    std::string folder = options.directory;
    if (folder.empty() && !needed) program::findDataFolder(folder);
    const std::string path = (std::filesystem::path(folder) / config).string();
    std::vector<Setting> settings;
    if (std::error_code error; needed || std::filesystem::exists(path, error))
        if (!readSettings(path, settings) || !checkKeys(app, settings)) return false;
    for (Setting& setting : settings) // a bare null is YAML for no value, but here it is a word
        if (setting.key == "renderer" && setting.values.empty()) setting.values = {"null"};
    Wishes wishes = wishesOf(app);
    std::erase_if(settings, [&app](const Setting& setting) {
        return setting.values.empty() || app.get_option("--" + setting.key)->count() > 0;
    });
    for (const Setting& setting : settings)
        addWish(*app.get_option("--" + setting.key), setting.values, setting.place, wishes);
    if (!settleWishes(wishes, options.directory)) return false;
    bool right = true;
    for (const Setting& setting : settings) {
        CLI::Option& option = *app.get_option("--" + setting.key);
        const bool wished = std::ranges::any_of(
            wishes, [&](const auto& wish) { return wish.second.place == setting.place; });
        if (wished && !applySetting(option, setting)) right = false;
    }
    return right;
}

// ------------------------------------------------------------------ command line and log

/// Where options that another run was started with come from.
struct LogSource {
    const char* option;
    const char* name;
    std::string place;
};

/// The options in force that a log keeps.
std::vector<std::string> wordsForLog(const CLI::App& app) {
    std::vector<std::string> words;
    for (const CLI::Option* option : app.get_options()) {
        const bool flag = option->get_expected_min() == 0;
        const std::string name = nameOf(*option);
        if (option->count() == 0 || (flag && isFalse(option->results()[0]))) continue;
        if (std::ranges::count(BEFORE_SETTINGS, name) > 0 || isOfDisplay(name)) continue;
        words.push_back("--" + name);
        if (!flag) std::ranges::copy(option->results(), std::back_inserter(words));
    }
    return words;
}

/// Of a library or world, which a flight and its replay read.
bool namesScene(const std::string& name) {
    return name == "logic" || name == "plugin" || name == "world";
}

/// What a log may not say: it can come from anybody, and says what the scene is, not which files
/// are written. These are taken out, with one line for all.
void dropForeign(const CLI::App& app, const LogSource& source, std::vector<Setting>& settings) {
    std::string names;
    std::erase_if(settings, [&](const Setting& setting) {
        const CLI::Option* const option = app.get_option_no_throw("--" + setting.key);
        if (!option) return false;
        const std::string name = nameOf(*option);
        if (!isOfDisplay(name) && std::ranges::count(BEFORE_SETTINGS, name) == 0) return false;
        names += (names.empty() ? "--" : ", --") + name;
        return true;
    });
    if (!names.empty())
        jLog::warning("visual_channel: %s: %s asks for %s: passed over, only the command line may",
                      source.option, source.name, names.c_str());
}

/// A log opens no files: libraries and world that it names have to be named by the command line
/// too. They are taken out. False, with an error that tells which, when they are not.
bool settleSceneFiles(const CLI::App& app, const LogSource& source,
                      std::vector<Setting>& settings) {
    std::string missing;
    std::erase_if(settings, [&](const Setting& setting) {
        if (!namesScene(setting.key)) return false;
        if (app.get_option("--" + setting.key)->count() == 0)
            missing += " --" + setting.key + ' ' + CLI::detail::join(setting.values, " ");
        return true;
    });
    if (missing.empty()) return true;
    jLog::error("visual_channel: %s: %s is of a flight with%s: it opens no libraries and worlds "
                "here; if you trust these, name them on the command line too",
                source.option, source.name, missing.c_str());
    return false;
}

/// What the command line asks for beside the log, which takes the place of the settings file.
/// False, with an error, when it contradicts that.
bool settleBesideLog(const CLI::App& app, const Options& options, bool has_config) {
    Wishes wishes = wishesOf(app);
    if (has_config) wishes["config"] = {};
    std::erase_if(wishes, [](const auto& wish) { return namesScene(wish.first); });
    return settleWishes(wishes, options.directory);
}

/// The options of the run that the head is of. One that there isn't is another version's: it goes
/// on without. False, with an error, when the run needs libraries that the command line doesn't
/// name.
bool applyLog(CLI::App& app, Options& options, const frames::LogHead& head,
              const LogSource& source) {
    std::vector<Setting> settings = takeLogOptions(head, source.place, options);
    dropForeign(app, source, settings);
    if (!settleSceneFiles(app, source, settings)) return false;
    for (const Setting& setting : settings) {
        CLI::Option* const option = app.get_option_no_throw("--" + setting.key);
        if (!option)
            jLog::warning(
                "visual_channel: %s: there is no option \"%s\" here: the scene may differ",
                setting.place.c_str(), setting.key.c_str());
        else if (!applySetting(*option, setting))
            return false;
    }
    return true;
}

/// The options of the log that is to be played again.
bool applyReplay(CLI::App& app, Options& options, bool has_config) {
    if (!settleBesideLog(app, options, has_config)) return false;
    frames::LogReader log;
    if (log.open((std::filesystem::path(options.directory) / options.replay).string()))
        return applyLog(app, options, log.getHead(), {"--replay", "the log", options.replay});
    jLog::error("visual_channel: --replay: %s", log.getMessage().c_str());
    return false;
}

/// Those of the first channel's run, once it has begun.
bool applyFirst(CLI::App& app, Options& options, bool has_config, const frames::LogHead* first) {
    return settleBesideLog(app, options, has_config) &&
           (!first || applyLog(app, options, *first,
                               {"--display", "the first channel's run", "the first channel"}));
}

} // namespace

bool parseOptions(int argc, char** argv, Options& options, int& exit_status,
                  const frames::LogHead* first) {
    CLI::App app{"The visual channel: loads a scene logic and its world, takes the flight "
                 "simulation's records over UDP, and answers every frame with what lies below the "
                 "helicopter. Ports and addresses stand in config/Logic_Nerith_Heli_Final.cfg.",
                 "visual_channel"};
    app.option_defaults()->always_capture_default();
    CLI::Option* const version =
        app.add_flag("--version")->description("Tell the version and exit");
    app.add_flag("--verbose", options.print_device,
                 "With --version: also the libraries, the font, and what draws the pictures")
        ->needs(version);
    manual::addOptions(app, {.summary = "visual channel of a naval helicopter simulator",
                             .version = "visual_channel " VERSION,
                             .see = "flight_sim(1)"});
    app.add_flag(
        "--schema", options.print_schema,
        "Tell, as YAML, what nodes may say in world and prefab files (docs/worlds.md), those "
        "of --logic and --plugin too, and exit");
    app.add_option("--directory", options.directory,
                   "Folder that holds config/ and data/, to which all other paths are "
                   "relative; default: the present one, or else, with paths relative to the "
                   "present one, the installation's or the checkout's")
        ->type_name("FOLDER");
    std::string config = "config/visual_channel.cfg";
    const CLI::Option* config_option =
        app.add_option("--config", config,
                       "Settings file: every option that stands below, as `fps: 60`; what stands "
                       "on the command line wins")
            ->type_name("FILE");
    addOptions(app, options);
    app.footer("Stop with Ctrl-C. Exit status: 0 after an orderly end, 1 when the logic, the world "
               "or its start marker is missing, the port of the metrics can't be had, a script "
               "could not be done, a file could not be written, a replay differs from its log or "
               "the log is damaged, 2 for a wrong "
               "command line or settings file.");
    app.allow_extras(); // named below, with what is meant; commands inherit it
    world_commands::add(app, options.command);
    exit_status = 2;
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& wish) { // --help, --version
        exit_status = app.exit(wish);
        return false;
    } catch (const CLI::ParseError& error) {
        logMistake(app, error);
        return false;
    }
    if (!nameExtras(app)) return false;
    if (options.print_device) return true;
    if (version->count() > 0) {
        std::printf("visual_channel %s\n", manual::getVersion().c_str());
        std::string message;
        exit_status = program::endOutput(message) ? 0 : 1;
        if (exit_status != 0) jLog::error("visual_channel: %s", message.c_str());
        return false;
    }
    const bool has_config = config_option->count() > 0;
    if (!options.display.empty()) {
        if (!applyFirst(app, options, has_config, first)) return false;
    } else if (!options.replay.empty()) {
        if (!applyReplay(app, options, has_config)) return false;
    } else {
        if (!applySettings(app, options, config, has_config)) return false;
        options.logged = wordsForLog(app);
    }
    settlePaths(options);
    return true;
}
