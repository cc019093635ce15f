// SPDX-License-Identifier: MIT

// visual_channel world check: what a flight would say of a world's files, and what it wouldn't.

#include "Findings.h"
#include "LogicWorld.h"
#include "Subcommands.h"
#include "TrialStart.h"
#include "WorldCheck.h"
#include "common/logic/LogicBase.h"
#include "ig/base/jLog.h"
#include "ig/package/PackageManager.h"
#include "program/Process.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

using ig::jLog;

namespace world_commands {

namespace {

/// 0 when nothing is wrong.
int tell(const std::string& world, const Findings& findings, int files) {
    for (const std::string& text : findings.get())
        std::printf("%s\n", text.c_str());
    if (findings.get().empty())
        std::printf("nothing is wrong with %s (%d files read)\n", world.c_str(), files);
    else
        std::printf("%zu found in %s (%d files read)\n", findings.get().size(), world.c_str(),
                    files);
    std::string message;
    const bool out = program::endOutput(message);
    if (!out) jLog::error("visual_channel: %s", message.c_str());
    return out && findings.get().empty() ? 0 : 1;
}

/// What the engine hasn't said already.
void checkAll(const std::string& world, TrialStart& trial, Findings& findings) {
    LogicWorld asked; // of a logic that tells nothing of its world it stays empty
    std::error_code error;
    if (std::filesystem::exists(LogicWorld::findFile(trial.getLogicName()), error))
        asked.read(trial.getLogicName());
    WorldCheck rest(world, trial.getWorld(), findings);
    rest.checkNames(asked);
    rest.checkFiles(asked);
    rest.checkPlaces(trial.getLogic().getStartNode().c_str());
}

int check(const Setup& setup, const std::string& path) {
    if (!enterFolder(setup)) return 1;
    const std::string world = findWorldFile(settlePath(setup, path));
    if (world.empty()) return 1;
    TrialStart trial;
    if (!trial.loadLibraries(setup)) return 1;
    Findings findings;
    jLog::setSink([&findings](ig::LogLevel level, std::string_view line) {
        if (level == ig::LogLevel::message)
            std::fprintf(stderr, "note: %.*s\n", static_cast<int>(line.size()), line.data());
        else
            findings.addLine(line);
    });
    trial.begin(world);
    if (!listNodes(world).empty()) checkAll(world, trial, findings);
    jLog::setSink({});
    return tell(world, findings, ig::PackageManager::getNumRead());
}

} // namespace

void addCheck(CLI::App& world, Command& command) {
    CLI::App* const app = world.add_subcommand(
        "check", "Name everything in a world that is missing, misspelt, out of reach or too heavy");
    const auto path = std::make_shared<std::string>();
    app->add_option("WORLD", *path, "The world's file, or the folder that holds it")->required();
    app->footer("Exit status: 0 when nothing is wrong, 1 when something is, or the check itself "
                "failed.");
    app->callback(
        [&command, path] { command = [path](const Setup& setup) { return check(setup, *path); }; });
}

} // namespace world_commands
