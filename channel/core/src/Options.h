// SPDX-License-Identifier: MIT
#pragma once

#include "Weather.h"
#include "Window.h"
#include "channel/interface/Overlays.h"
#include "channel/world/WorldCommands.h"

#include <string>
#include <vector>

namespace frames {
struct LogHead;
}

/// What the command line asks for. The defaults are those of a user who gives nothing.
struct Options {
    /// Done in place of a flight; empty: a flight.
    world_commands::Command command;
    std::string logic;                ///< library of the scene logic; empty: the one that we ship
    std::string world;                ///< file of the world; empty: the logic's own
    std::vector<std::string> plugins; ///< further engine plug-ins, loaded before the logic
    std::string directory;            ///< to work in; empty: the present one
    /// Folder, with its slash, of pictures that no option names; empty: the one to work in.
    std::string pictures;
    bool print_schema = false; ///< tell what nodes of scene files may say, and end
    bool print_device = false; ///< tell version, libraries and graphics device, and end
    double frame_rate = 60;    ///< frames per second in real time; 0: as fast as possible
    double step = 0; ///< seconds that every frame advances the scene; 0: the time that has passed
    bool smooth = false;            ///< what the picture is about moves evenly between its records
    double seconds = 0;             ///< of scene time until the end; 0: until stopped
    int frames = 0;                 ///< until the end; 0: until stopped
    int width = 1280, height = 720; ///< of the picture
    std::string renderer = "auto";  ///< gl, null, or auto: gl where the machine has it
    bool headless = false;          ///< no window, even with a display
    bool window = false;            ///< a window or nothing
    VerticalSync vertical_sync = VerticalSync::on; ///< of the window's pictures
    bool full_screen = false;                      ///< the window begins as all of its monitor
    std::string monitor;                           ///< name or number of the window's; empty: any
    float interface_size = 1;                      ///< of panels and texts, 0.5 to 4
    float scale = 1;             ///< of the rendering, 0.5 to 1; 0: so that 20 frames/s hold
    std::string screenshot;      ///< PNG of the last frame; empty: none
    std::string contact_sheet;   ///< PNG of all numbered pictures; empty: none
    std::string video;           ///< file for ffmpeg to write; empty: none
    double screenshot_every = 0; ///< s of scene time between numbered pictures; 0: none
    double time_of_day = 10;     ///< local solar time, hours
    int day_of_year = 172;       ///< 1 to 366
    double time_scale = 1;       ///< seconds by which the hour advances in a second of the scene
    Weather weather;             ///< what is asked for here, whatever the flight simulation says
    std::vector<double> eye;  ///< longitude, latitude, altitude, heading, pitch of a fixed camera
    bool warm_up = true;      ///< get ready before the first frame what later ones need
    bool profile = false;     ///< milliseconds per pass in the summary
    std::string script;       ///< file of timed operator commands; empty: none
    std::string allow_sender; ///< whose records are taken; empty: anybody's
    std::string trace;        ///< CSV file with a line per frame; empty: none
    int metrics = -1;       ///< port that tells them to whoever asks; 0: a free one; negative: none
    bool quiet = false;     ///< no status line
    bool obey_exit = false; ///< the flight simulation may end the channel
    bool no_interface = false; ///< pictures without panels and texts
    std::string record;        ///< log to write of what the frames take in; empty: none
    std::string replay;        ///< log that they take in; empty: they are live
    std::string wall;          ///< file of the wall whose displays show the run; empty: none
    std::string display;       ///< name of the one of them that this is; empty: the first channel
    bool real_time = false;    ///< the log's frames last as long as they did
    /// Those of these options that a log keeps, because the scene depends on them, as words of a
    /// command line.
    std::vector<std::string> logged;
    /// Of the picture of a log, pixels per 1/96 inch; 0: the display's.
    float density = 0;
    std::string language = "zh"; ///< of what the application says in the picture: zh or en
    bool show_help = false;      ///< the key map, from the start
    Overlays::Statistics statistics = Overlays::Statistics::off; ///< in the picture
};

/// Reads the command line. False when the program is to end at once with `exit_status`: after
/// --help, or after a mistake, which has been explained.
///
/// For a display of a wall the options of the scene are those of the first channel's run, which
/// begins with `first`; null: it isn't known yet, and nothing of the scene is set.
bool parseOptions(int argc, char** argv, Options& options, int& exit_status,
                  const frames::LogHead* first = nullptr);
