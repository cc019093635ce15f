// SPDX-License-Identifier: MIT
#include "Provenance.h"

#include "Options.h"
#include "frames/Digest.h"
#include "ig/base/jLog.h"
#include "program/Clock.h"
#include "program/InputFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gnu/libc-version.h>

using frames::LoggedFile;
using frames::LogHead;
using ig::jLog;

namespace {

constexpr std::size_t MOST_NAMES = 3; ///< of files that differ

/// Options of the run that have become part of what its frames took in, or of the log's head.
const char* const IN_THE_FRAMES[] = {"fps", "step", "script", "size", "width", "height"};

std::uint64_t digestFile(const std::string& path) {
    frames::Digest digest;
    std::ifstream file(path, std::ios::binary);
    std::vector<char> chunk(1 << 16);
    while (file.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || file.gcount())
        digest.add(chunk.data(), static_cast<std::size_t>(file.gcount()));
    return digest.get();
}

void addFolder(const char* folder, std::vector<LoggedFile>& files) {
    std::error_code error; // of what can't be read nothing is said
    for (std::filesystem::recursive_directory_iterator it(folder, error), end; it != end;
         it.increment(error)) {
        const std::string path = it->path().generic_string();
        if (path == "config/visual_channel.cfg" || !program::whyUnreadable(path).empty()) continue;
        files.push_back({path, digestFile(path)});
    }
}

/// Files of a folder that only one of the two has, or that differ.
std::vector<std::string> listDifferent(const std::string& folder, const LogHead& a,
                                       const LogHead& b) {
    std::vector<std::string> paths;
    const auto add = [&](const std::vector<LoggedFile>& from, const std::vector<LoggedFile>& to) {
        for (const LoggedFile& file : from)
            if (file.path.starts_with(folder) && std::ranges::count(to, file) == 0)
                paths.push_back(file.path);
    };
    add(a.files, b.files);
    add(b.files, a.files);
    std::ranges::sort(paths);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
}

} // namespace

LogHead describeRun(const Options& options, float density) {
    LogHead head;
    head.program = "visual_channel " VERSION;
    head.start_wall_ns = program::wallNow_ns();
    head.width = options.width;
    head.height = options.height;
    head.density = density;
    head.options = options.logged;
    addFolder("config", head.files);
    addFolder("data", head.files);
    std::ranges::sort(head.files, {}, &LoggedFile::path);
    head.libraries = {"compiler " __VERSION__, std::string("libc ") + gnu_get_libc_version()};
    return head;
}

void tellDifferences(const LogHead& log, const LogHead& now) {
    if (log.program != now.program)
        jLog::warning("visual_channel: the log is of %s, this is %s: the replay may differ",
                      log.program.c_str(), now.program.c_str());
    for (const char* folder : {"config/", "data/"}) {
        const std::vector<std::string> paths = listDifferent(folder, log, now);
        if (paths.empty()) continue;
        std::string names;
        for (std::size_t i = 0; i < std::min(paths.size(), MOST_NAMES); i++)
            names += (i ? ", " : "") + paths[i];
        if (paths.size() > MOST_NAMES)
            names += " and " + std::to_string(paths.size() - MOST_NAMES) + " more";
        jLog::warning("visual_channel: %s not the log's: the replay may differ",
                      (names + (paths.size() > 1 ? " are" : " is")).c_str());
    }
}

bool readLogOptions(Options& options, std::vector<Setting>& settings) {
    frames::LogReader log;
    if (!log.open((std::filesystem::path(options.directory) / options.replay).string())) {
        jLog::error("visual_channel: --replay: %s", log.getMessage().c_str());
        return false;
    }
    const LogHead& head = log.getHead();
    options.width = head.width;
    options.height = head.height;
    options.density = head.density;
    for (const std::string& word : head.options)
        if (word.starts_with("--"))
            settings.push_back({word.substr(2), {}, options.replay});
        else if (!settings.empty())
            settings.back().values.push_back(word);
    options.logged = head.options;
    std::erase_if(settings, [](const Setting& setting) {
        return std::ranges::count(IN_THE_FRAMES, setting.key) > 0;
    });
    for (Setting& setting : settings)
        if (setting.values.empty()) setting.values = {"true"}; // a flag
    return true;
}
