// SPDX-License-Identifier: MIT

// A program with a command; its completion is tried in a real bash.

#include "manual/Manual.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <gtest/gtest.h>

namespace manual {
namespace {

struct ManualTest : testing::Test {
    ManualTest() {
        app.option_defaults()->always_capture_default();
        app.add_option("--look,-l", look, "What it's like: 'so'")
            ->check(CLI::Validator([](std::string&) { return std::string(); }, "day|night"));
        app.add_option("--rate", rate, "Records \\ a second")
            ->type_name("HZ")
            ->check(CLI::Validator([](std::string&) { return std::string(); }, "1 to 9"));
        app.add_flag("--quiet", quiet, "No table")->group("Later");
        addOptions(app, {"summary of it", "thing 2.5", "other(1)"});
        CLI::App* command = app.add_subcommand("fly", "Fly a mission");
        command->add_option("MISSION", look, "The file")->required();
        command->add_flag("--loop", quiet, "Again");
        command->footer("Plain.\n  thing fly a.yaml\n.dots too");
        app.add_subcommand("flop", "Nobody's")->group("");
        CLI::App* world = app.add_subcommand("world", "Worlds");
        world->add_subcommand("new", "Make one")->add_flag("--bare", quiet, "No more");
        world->add_subcommand("fly", "Over it");
    }
    /// What a user who types these words and a tab is offered, in one line; the last word is what
    /// he has begun.
    std::string offer(const std::string& words) const {
        const std::string line = "bash -c '" + std::string("source /dev/stdin; COMP_WORDS=(") +
                                 words +
                                 "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _thing 2>/dev/null; "
                                 "echo ${COMPREPLY[@]} >&3' 3>&1 >/dev/null <<'END'\n" +
                                 makeBashCompletion(app) + "END\n";
        std::string text;
        FILE* pipe = popen(line.c_str(), "r");
        char buffer[256];
        while (pipe && std::fgets(buffer, sizeof buffer, pipe))
            text += buffer;
        EXPECT_EQ(pclose(pipe), 0) << text;
        return text.substr(0, text.find('\n'));
    }

    CLI::App app{"It does things.", "thing"};
    std::string look = "day";
    double rate = 5;
    bool quiet = false;
};

TEST_F(ManualTest, ThePageTellsAllThatTheProgramTakes) {
    const std::string page = makePage(app, {"summary of it", "thing 2.5", "other(1)"});
    for (const char* part :
         {".TH THING 1 \"\" \"thing 2.5\"", "thing \\- summary of it", "\\fBday|night\\fR",
          "Records \\e a second (1 to 9). Default: 5.", ".SH LATER\n.TP\n\\fB\\-\\-quiet\\fR\n",
          ".SS \\fBthing fly\\fR [\\fIOPTION\\fR]... \\fIMISSION\\fR", "\\fB\\-\\-loop\\fR",
          "Plain.\n.nf\n  thing fly a.yaml\n.fi\n\\&.dots", "other(1)",
          ".SS \\fBthing world new\\fR [\\fIOPTION\\fR]...\nMake one.\n", "\\fB\\-\\-bare"})
        EXPECT_NE(page.find(part), std::string::npos) << part << " is missing in\n" << page;
    for (const char* part : {"print", "flop", "Worlds."}) // hidden, or only holding others
        EXPECT_EQ(page.find(part), std::string::npos) << page;
}

TEST_F(ManualTest, BashOffersWhatFitsThere) {
    EXPECT_EQ(offer("thing f"), "fly");
    EXPECT_EQ(offer("thing --"), "--help --look --rate --quiet");
    EXPECT_EQ(offer("thing --look n"), "night");
    EXPECT_EQ(offer("thing --look = \"\""), "day night");
    EXPECT_EQ(offer("thing -l d"), "day");
    EXPECT_EQ(offer("thing --rate f"), ""); // a number
    EXPECT_EQ(offer("thing --quiet fly --l"), "--loop");
    EXPECT_EQ(offer("thing fly \"\""), ""); // left to bash: files
    EXPECT_EQ(offer("thing world \"\""), "new fly");
    EXPECT_EQ(offer("thing world new --b"), "--bare");
    EXPECT_EQ(offer("thing fly new --"), "--help --loop");
}

TEST_F(ManualTest, TheOtherShellsScriptsQuoteTexts) {
    const std::string zsh = makeZshCompletion(app), fish = makeFishCompletion(app);
    EXPECT_NE(zsh.find("'--look[What it'\\''s like\\: '\\''so'\\'']:TEXT:(day night)'"),
              std::string::npos)
        << zsh;
    EXPECT_NE(fish.find("-l look -xa 'day night' -d 'What it\\'s like: \\'so\\''"),
              std::string::npos)
        << fish;
    EXPECT_EQ((zsh + fish).find("flop"), std::string::npos);
    EXPECT_NE(fish.find("-n '__fish_seen_subcommand_from world; and __fish_seen_subcommand_from "
                        "new' -l bare"),
              std::string::npos)
        << fish;
}

} // namespace
} // namespace manual
