// SPDX-License-Identifier: MIT
#include "Options.h"
#include "Provenance.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <sstream>

namespace {

struct OptionsTest : testing::Test {
    /// In a folder to work in, which needs no other.
    OptionsTest() {
        for (const char* name : {"config", "data"})
            std::filesystem::create_directory(name);
    }
    /// Whether the program would go on with these words on the command line.
    bool parse(const std::string& line) {
        std::istringstream stream("visual_channel " + line);
        std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        options = {};
        log.lines.clear();
        return parseOptions(static_cast<int>(argv.size()), argv.data(), options, exit_status);
    }
    /// The same with a settings file in the folder.
    bool parse(const std::string& line, const std::string& settings) {
        folder.write("config/visual_channel.cfg", settings);
        return parse(line);
    }
    /// Refuses with one error, which holds `part`.
    void expectError(const std::string& part) {
        EXPECT_EQ(exit_status, 2);
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_NE(log.lines[0].find(part), std::string::npos) << log.lines[0];
    }

    WorkingFolder folder;
    LogCapture log;
    Options options;
    int exit_status = 0;
};

TEST_F(OptionsTest, MistakesAreNamedWithWhatIsAllowed) {
    const std::pair<const char*, const char*> mistakes[] = {
        {"--weather sunny", "--weather: must be one of clear, overcast, storm, fog, not \"sunny\""},
        {"--vsync later", "must be one of on, off, late, not \"later\"; nearest is \"late\""},
        {"--scale 3", "must be a number, 0.5 to 1 or auto, not \"3\""},
        {"--metrics 65536", "--metrics: must be a whole number, 0 to 65535"},
        {"--seconds inf", "must be a number, 0 or more, not \"inf\""},
        {"--rain 1.5", "must be a whole number, 0 to 3"},
        {"--eye 1 2", "--eye: needs 5 values"},
        {"--eye 19 120 10 0 0", "LATITUDE (the second) must be a number, -90 to 90, not \"120\""},
        {"--wind 270 400", "the speed must be a number, 0 to 100"},
        {"--size 1x1", "must be WIDTHxHEIGHT"},
        {"--screnshot a.png", "there is no option \"--screnshot\"; nearest is \"--screenshot\""},
        {"--config mine.cfg", "there is no settings file \"mine.cfg\""},
        {"--null --video a.mp4", "--video can't go together with --null: there are no pictures"},
        {"--renderer gl --null", "only one of them can draw"},
        {"--headless --window", "--window can't go together with --headless"},
        {"--screenshot-every 5", "does nothing without --screenshot"},
        {"--replay a --script b", "--script can't go together with --replay: the log says what"},
        {"--replay a --rain 2", "--rain can't go together with --replay: the log says what scene"},
        {"--replay a --record a", "they name the same file"},
        {"--directory x --replay a --record ../x/a", "they name the same file"},
        {"--replay a --record ./a", "they name the same file"},
        {"--trace b.png --screenshot c.png", "they name the same file"},
        {"--replay a", "--replay: cannot open \"a\": "},
        {"--real-time", "does nothing without --replay"},
        {"--verbose", "--verbose requires --version"},
        {"--world a --trace ./a", "they name the same file"},
        {"world", "world needs a command"},
        {"world chekc a", "there is no command \"chekc\"; nearest is \"check\""},
        {"world check --hlep a", "there is no option \"--hlep\"; nearest is \"--help\""},
        {"--screenshot a.jpg", "pictures are written as PNG: name it \"a.png\""},
    };
    std::filesystem::create_hard_link(folder.write("b.png", "").c_str(), "c.png");
    for (const auto& [line, part] : mistakes) {
        EXPECT_FALSE(parse(line)) << line;
        expectError(part);
    }
}

TEST_F(OptionsTest, WhatGoesTogetherIsTaken) {
    for (const char* line :
         {"", "--null --headless --no-ui --size 100x100 --weather fog",
          "--headless --screenshot a.png --screenshot-every 1 --contact-sheet b.png",
          "--contact-sheet b.png --script c", "--null --statistics off"})
        EXPECT_TRUE(parse(line)) << line << log.lines[0];
    ASSERT_TRUE(parse("--scale auto --wind 270 12 --weather storm --statistics full --size 64x32 "
                      "--vsync late"));
    EXPECT_EQ(options.scale, 0);
    EXPECT_EQ(options.weather.wind_direction, 0); // towards east
    EXPECT_EQ(options.weather.look, 2);
    EXPECT_EQ(options.statistics, Overlays::Statistics::full);
    EXPECT_EQ(options.vertical_sync, VerticalSync::late);
    EXPECT_EQ(options.width * 1000 + options.height, 64032);
}

TEST_F(OptionsTest, SettingsHoldUnlessTheCommandLineSaysOtherwise) {
    const std::string settings = "fps: 25\nwind: [90, 7]\nquiet: yes\nplugin: [a.so, b.so]\n"
                                 "rain:\nhail:\nno-ui: false\ntime: 4\n";
    ASSERT_TRUE(parse("--rain 2 --fps 30", settings));
    EXPECT_EQ(options.frame_rate, 30);
    EXPECT_EQ(options.weather.wind_speed, 7);
    EXPECT_TRUE(options.quiet && !options.no_interface);
    EXPECT_EQ(options.plugins.size(), 2u);
    EXPECT_EQ(options.weather.rain, 2);
    EXPECT_EQ(options.time_of_day, 4);

    folder.write("else/mine.cfg", "frames: 3\n");
    ASSERT_TRUE(parse("--directory else --config mine.cfg"));
    EXPECT_EQ(options.frames, 3);
}

TEST_F(OptionsTest, SettingsGiveWayToACommandLineThatContradictsThem) {
    const std::string settings = "window: true\nscreenshot: a.png\nscreenshot-every: 2\n"
                                 "contact-sheet: b.png\n";
    ASSERT_TRUE(parse("--null", settings));
    EXPECT_TRUE(options.screenshot.empty() && options.contact_sheet.empty() && !options.window);
    EXPECT_EQ(options.screenshot_every, 0);
    EXPECT_EQ(log.lines.size(), 4u);
    ASSERT_TRUE(parse("--eye 1 2 3 4 5", "renderer: null\n"));
    EXPECT_EQ(options.renderer, "auto");
    EXPECT_EQ(log.lines, (std::vector<std::string>{
                             "visual_channel: --eye can't go together with \"renderer: null\" "
                             "(config/visual_channel.cfg:1): there are no pictures; the command "
                             "line wins"}));
}

TEST_F(OptionsTest, MistakesInTheFileAreNamedWithTheirLine) {
    const std::pair<const char*, const char*> mistakes[] = {
        {"fps: 30\nfsp: 20\n", "cfg:2: there is no setting \"fsp\"; nearest is \"fps\""},
        {"directory: a\n", "there is no setting \"directory\""},
        {"fps: 30x\n", "cfg:1: fps: must be a number, 0 to 10000, not \"30x\""},
        {"quiet: perhaps\n", "cfg:1: quiet: \"perhaps\" is neither true nor false"},
        {"wind: 3\n", "wind: needs 2 values"},
        {"fps: {a: 1}\n", "\"fps\" takes a value"},
        {"fps: 1\nstep: [2\n", "cfg:3:"},
        {"video: a.mp4\nrenderer: null\n", "\"video\" (config/visual_channel.cfg:1) can't go"},
    };
    for (const auto& [settings, part] : mistakes) {
        EXPECT_FALSE(parse("", settings)) << settings;
        expectError(part);
    }
}

TEST_F(OptionsTest, AReplayHasTheScenesOptionsOfItsLogAndTheDisplaysOfItsOwn) {
    ASSERT_TRUE(parse("--rain 2 --obey-exit --size 64x32 --fps 20 --scale 0.5 --script a "
                      "--record b.flog --metrics 9464",
                      "wind: [270, 12]\nquiet: true\n"));
    frames::LogWriter written;
    ASSERT_TRUE(written.open("b.flog", describeRun(options, 1.5f)));
    ASSERT_TRUE(written.close());
    ASSERT_TRUE(parse("--replay b.flog --statistics full --metrics 0", "rain: 1\n"))
        << log.lines[0];
    EXPECT_EQ(options.metrics, 0);
    EXPECT_EQ(options.weather.rain, 2);
    EXPECT_EQ(options.weather.wind_speed, 12);
    EXPECT_TRUE(options.obey_exit && !options.quiet && options.script.empty());
    EXPECT_EQ(options.width * 1000 + options.height, 64032);
    EXPECT_EQ(options.density, 1.5f);
    EXPECT_EQ(options.scale, 1);
    EXPECT_EQ(options.frame_rate, 60);
    EXPECT_EQ(options.statistics, Overlays::Statistics::full);

    // Anybody's log writes no files and loads no code.
    frames::LogHead head = describeRun(options, 1.5f);
    head.options = {"--trace",     "t.csv", "--record", "c.flog", "--screenshot", "s.png",
                    "--directory", "/",     "--rain",   "3",      "--quiet"};
    const auto rewrite = [&] { return written.open("b.flog", head) && written.close(); };
    ASSERT_TRUE(rewrite() && parse("--replay b.flog")) << log.lines[0];
    EXPECT_EQ(options.trace + options.record + options.screenshot + options.directory, "");
    EXPECT_TRUE(options.weather.rain == 3 && !options.quiet);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("asks for --trace, --record, --screenshot, --directory, --quiet"),
              std::string::npos)
        << log.lines[0];
    head.options = {"--logic", "a.so", "--plugin", "b.so"};
    ASSERT_TRUE(rewrite());
    EXPECT_FALSE(parse("--replay b.flog --logic mine.so"));
    expectError("with --plugin b.so: it opens no libraries and worlds here");
    EXPECT_TRUE(parse("--replay b.flog --logic mine.so --plugin b.so")) << log.lines[0];
    EXPECT_EQ(options.logic + ' ' + options.plugins.at(0), "mine.so b.so");
}

TEST_F(OptionsTest, WithoutAFolderOfItsOwnAUsersFilesStayWhereHeIs) {
    std::filesystem::remove("config");
    const std::string here = folder.path().string() + '/';
    ASSERT_TRUE(parse("--trace t.csv --plugin a/b.so --plugin c.so --record /tmp/r.flog "
                      "--script data/missions/demo.script.yaml"));
    const std::string checkout = folder.before().string();
    EXPECT_EQ(options.directory, checkout); // the tests were built in it
    EXPECT_EQ(options.trace + ' ' + options.record, here + "t.csv /tmp/r.flog");
    EXPECT_EQ(options.plugins, (std::vector<std::string>{here + "a/b.so", "c.so"}));
    EXPECT_EQ(options.script, checkout + "/data/missions/demo.script.yaml");
    EXPECT_EQ(options.pictures, here);
    EXPECT_EQ(log.lines.size(), 1u);
    ASSERT_TRUE(parse("--directory . --trace t.csv"));
    EXPECT_EQ(options.trace + options.pictures, "t.csv");
}

TEST_F(OptionsTest, TheShippedFileOffersEveryOptionWithItsDefault) {
    testing::internal::CaptureStdout();
    EXPECT_FALSE(parse("--help"));
    EXPECT_EQ(exit_status, 0);
    std::istringstream help(testing::internal::GetCapturedStdout());
    const std::regex option("^ +(?:-h,)?--([a-z-]+)[^=]*(?:=([^ ]+))?.*");
    std::map<std::string, std::string> known, offered; // defaults by name
    for (std::string line; std::getline(help, line);)
        if (std::smatch found; std::regex_match(line, found, option)) known[found[1]] = found[2];
    for (const char* name : {"help", "version", "verbose", "schema", "directory", "config", "null",
                             "replay", "real-time", "display"})
        EXPECT_EQ(known.erase(name), 1u); // these make no sense in the file
    known["logic"] = "";

    const std::string shipped = (folder.before() / "config/visual_channel.cfg").string();
    EXPECT_TRUE(parse("--config " + shipped));
    const std::regex setting("^([a-z-]+): *([^ #]*).*");
    std::ifstream file(shipped);
    for (std::string line; std::getline(file, line);)
        if (std::smatch found; std::regex_match(line, found, setting))
            offered[found[1]] = found[2] == "false" ? "" : found[2].str(); // a flag
    EXPECT_EQ(offered, known);
}

} // namespace
