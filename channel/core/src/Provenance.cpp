// SPDX-License-Identifier: MIT
#include "Provenance.h"

#include "Options.h"
#include "frames/Digest.h"
#include "ig/base/jLog.h"
#include "ig/ui/Font.h"
#include "program/Clock.h"
#include "program/InputFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gnu/libc-version.h>
#include <iterator>
#include <utility>

using frames::LoggedFile;
using frames::LogHead;
using ig::jLog;

namespace {

constexpr std::size_t MOST_NAMES = 3;          ///< of files that differ
constexpr std::size_t MOST_FILES = 500;        ///< that a folder is listed with
constexpr std::uintmax_t WHOLE_SIZE = 1 << 20; ///< bytes that a file is digested whole with
constexpr std::size_t END_SIZE = std::size_t{64} << 10; ///< bytes at each end of a larger one

/// Options of the run that have become part of what its frames took in, or of the log's head.
const char* const IN_THE_FRAMES[] = {"fps", "step", "script", "size", "width", "height"};

/// Of a large file what is at its ends stands for all of it, with its size: the start must not wait
/// for gigabytes of terrain.
std::uint64_t digestFile(const std::string& path) {
    frames::Digest digest;
    std::ifstream file(path, std::ios::binary);
    std::vector<char> chunk(END_SIZE);
    const auto add_chunk = [&] {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        if (file.gcount()) digest.add(chunk.data(), static_cast<std::size_t>(file.gcount()));
        return file.gcount() > 0;
    };
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size <= WHOLE_SIZE) {
        while (add_chunk()) {
        }
        return digest.get();
    }
    digest.add(size);
    add_chunk();
    file.seekg(-static_cast<std::streamoff>(END_SIZE), std::ios::end);
    add_chunk();
    return digest.get();
}

/// One entry in place of all those of a folder.
std::vector<LoggedFile> fold(const std::string& folder, std::vector<LoggedFile> files) {
    std::ranges::sort(files, {}, &LoggedFile::path);
    frames::Digest digest;
    for (const LoggedFile& file : files) {
        digest.add(file.path.data(), file.path.size());
        digest.add(file.digest);
    }
    return {{folder + '/', digest.get()}};
}

/// What lies in a folder and below, MOST_FILES at most: where there are more, the folders below
/// that have most of them become an entry each, and if that isn't enough the folder itself.
/// `above`: the folders that it lies in, for links that lead back to one.
std::vector<LoggedFile> listFolder(const std::string& folder,
                                   std::vector<std::filesystem::path> above = {}) {
    std::error_code error; // of what can't be read nothing is said
    above.push_back(std::filesystem::canonical(folder, error));
    if (error || std::ranges::count(above, above.back()) > 1) return {};
    std::vector<LoggedFile> files;
    std::vector<std::pair<std::string, std::vector<LoggedFile>>> below;
    for (std::filesystem::directory_iterator it(folder, error), end; it != end;
         it.increment(error)) {
        const std::string path = it->path().generic_string();
        std::error_code unknown;
        if (it->is_directory(unknown))
            below.emplace_back(path, listFolder(path, above));
        else if (path != "config/visual_channel.cfg" && program::whyUnreadable(path).empty())
            files.push_back({path, digestFile(path)});
    }
    std::size_t count = files.size();
    for (const auto& [path, list] : below)
        count += list.size();
    std::ranges::sort(below, [](const auto& a, const auto& b) { // whatever order they were found in
        return a.second.size() != b.second.size() ? a.second.size() > b.second.size()
                                                  : a.first < b.first;
    });
    for (auto& [path, list] : below) {
        if (count > MOST_FILES && list.size() > 1) {
            count -= list.size() - 1;
            list = fold(path, std::move(list));
        }
        files.insert(files.end(), list.begin(), list.end());
    }
    return count > MOST_FILES ? fold(folder, std::move(files)) : files;
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

/// The file of the font: the only one that lies in no folder of the system's.
const LoggedFile* findFont(const LogHead& head) {
    const auto font = std::ranges::find_if(
        head.files, [](const LoggedFile& file) { return file.path.starts_with('/'); });
    return font == head.files.end() ? nullptr : &*font;
}

/// Where a text ends, and so what a click meets, is the font's to say. Of a log that names none
/// nothing is known.
void tellFont(const LogHead& log, const LogHead& now, const char* name) {
    const LoggedFile* const its = findFont(log);
    const LoggedFile* const ours = findFont(now);
    if (!its || (ours && its->digest == ours->digest)) return;
    jLog::warning("visual_channel: %s's texts are in the font \"%s\", this run's in %s: panels "
                  "and what is clicked may differ",
                  name, its->path.c_str(),
                  !ours                     ? "none"
                  : ours->path == its->path ? "another version of it"
                                            : ('"' + ours->path + '"').c_str());
}

} // namespace

std::vector<std::string> listLibraries() {
    return {"compiler " __VERSION__,
            std::string("libc ") + gnu_get_libc_version(),
            "FreeType " FREETYPE,
            "Bullet " BULLET,
            "GDAL " GDAL,
            "Assimp " ASSIMP};
}

LogHead describeRun(const Options& options, float density) {
    LogHead head;
    head.program = "visual_channel " VERSION;
    head.start_wall_ns = program::wallNow_ns();
    head.width = options.width;
    head.height = options.height;
    head.density = density;
    head.options = options.logged;
    for (const char* folder : {"config", "data"})
        std::ranges::move(listFolder(folder), std::back_inserter(head.files));
    const std::string& font = ig::Font::get().getPath(); // texts are measured by it
    if (!font.empty()) head.files.push_back({font, digestFile(font)});
    std::ranges::sort(head.files, {}, &LoggedFile::path);
    head.libraries = listLibraries();
    return head;
}

void tellDifferences(const LogHead& log, const LogHead& now, const char* name) {
    tellFont(log, now, name);
    if (log.program != now.program)
        jLog::warning("visual_channel: %s is of %s, this is %s: the scene may differ", name,
                      log.program.c_str(), now.program.c_str());
    for (const char* folder : {"config/", "data/"}) {
        const std::vector<std::string> paths = listDifferent(folder, log, now);
        if (paths.empty()) continue;
        std::string names;
        for (std::size_t i = 0; i < std::min(paths.size(), MOST_NAMES); i++)
            names += (i ? ", " : "") + paths[i];
        if (paths.size() > MOST_NAMES)
            names += " and " + std::to_string(paths.size() - MOST_NAMES) + " more";
        jLog::warning("visual_channel: %s not %s's: the scene may differ",
                      (names + (paths.size() > 1 ? " are" : " is")).c_str(), name);
    }
}

std::vector<Setting> takeLogOptions(const LogHead& head, const std::string& place,
                                    Options& options) {
    options.width = head.width;
    options.height = head.height;
    options.density = head.density;
    options.logged = head.options;
    std::vector<Setting> settings;
    for (const std::string& word : head.options)
        if (word.starts_with("--"))
            settings.push_back({word.substr(2), {}, place});
        else if (!settings.empty())
            settings.back().values.push_back(word);
    std::erase_if(settings, [](const Setting& setting) {
        return std::ranges::count(IN_THE_FRAMES, setting.key) > 0;
    });
    for (Setting& setting : settings)
        if (setting.values.empty()) setting.values = {"true"}; // a flag
    return settings;
}
