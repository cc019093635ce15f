// SPDX-License-Identifier: MIT
#include "plugins/terrain/WorldBuilder.h"

#include "Fingerprint.h"
#include "HeightStage.h"
#include "LookStages.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"
#include "program/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <sys/file.h>
#include <unistd.h>

namespace ig {

namespace {

constexpr const char* DESCRIPTION = "/terrain.yaml";
constexpr const char* NOTES = "/building.txt";

bool isThere(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

} // namespace

/// What earlier runs have finished: the fingerprint of what they built, a line "steps:", and a line
/// for each step that is done. While it is open no other builder works in the folder.
class WorldBuilder::Notes {
public:
    explicit Notes(std::string path) : m_path(std::move(path)) {}
    Notes(const Notes&) = delete;
    ~Notes() {
        if (m_number >= 0) ::close(m_number);
    }

    /// Where they are of other sources, `clear` takes away what was made of those: before the first
    /// note of these, so that a run that is killed meanwhile doesn't pass for one of them.
    bool open(const std::string& fingerprint, const std::function<void()>& clear,
              std::string& failure) {
        m_number = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        if (m_number < 0) return tell(failure);
        if (flock(m_number, LOCK_EX | LOCK_NB) != 0) {
            failure = "the folder is being built by another process: wait for its end";
            return false;
        }
        std::ostringstream read;
        read << std::ifstream(m_path).rdbuf();
        const std::string text = read.str();
        const std::string head = fingerprint + "steps:\n";
        if (!text.starts_with(head)) {
            if (ftruncate(m_number, 0) != 0) return tell(failure);
            clear();
            return append(head, failure);
        }
        std::size_t begin = head.size();
        for (std::size_t end; (end = text.find('\n', begin)) != text.npos; begin = end + 1)
            m_done.insert(text.substr(begin, end - begin));
        if (begin == text.size()) return true;
        // The last line is half a one.
        return ftruncate(m_number, static_cast<off_t>(begin)) == 0 || tell(failure);
    }
    bool isDone(const BuildStage& stage, int step) const {
        return m_done.contains(getLine(stage, step));
    }
    bool note(const BuildStage& stage, int step, std::string& failure) {
        return append(getLine(stage, step) + '\n', failure);
    }
    void remove() const {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }

private:
    static std::string getLine(const BuildStage& stage, int step) {
        return std::string(stage.getName()) + ' ' + std::to_string(step);
    }
    bool append(const std::string& text, std::string& failure) const {
        return write(m_number, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ||
               tell(failure);
    }
    bool tell(std::string& failure) const {
        failure = "cannot write \"" + m_path + "\": " + std::strerror(errno);
        return false;
    }

    std::string m_path;
    int m_number = -1;
    std::set<std::string> m_done;
};

WorldBuilder::WorldBuilder(const TerrainSources& sources)
    : m_sources(sources), m_folder(sources.built.c_str()) {
    while (m_folder.size() > 1 && m_folder.ends_with('/'))
        m_folder.pop_back();
    if (sources.rasters.empty()) return;
    add(std::make_unique<HeightStage>(sources));
    if (!sources.land_cover.empty()) add(std::make_unique<LandStage>(sources.land_cover));
    if (!sources.imagery.empty()) add(std::make_unique<ImageryStage>(sources.imagery));
}

WorldBuilder::Result WorldBuilder::build(const Tell& tell, std::string& failure) {
    if (m_folder.empty() || m_stages.empty()) {
        failure = m_folder.empty() ? "the terrain names no folder to build into: add \"built\""
                                   : "the terrain names no sources to build from: add \"rasters\"";
        return Result::failed;
    }
    std::vector<std::string> files;
    for (const auto& stage : m_stages)
        for (std::string& file : stage->getSources())
            files.push_back(std::move(file));
    const Fingerprint fingerprint(m_sources, files);
    if (!prepareFolder(failure)) return Result::failed;
    const std::string description = m_folder + DESCRIPTION;
    Package known;
    if (isThere(description) && !isThere(m_folder + NOTES) &&
        mjl::open(description.c_str(), &known) && Fingerprint(known) == fingerprint)
        return Result::up_to_date;
    Notes notes(m_folder + NOTES);
    if (!notes.open(
            fingerprint.toYaml(), [this] { clear(); }, failure))
        return Result::failed;
    m_notes = &notes;
    Result result = Result::built;
    for (std::size_t i = 0; i < m_stages.size() && result == Result::built; i++) {
        result = runStage(*m_stages[i], tell, failure);
        if (result == Result::failed)
            failure = std::string(m_stages[i]->getName()) + ": " + failure;
    }
    m_notes = nullptr;
    if (result != Result::built) return result;
    if (!describe(fingerprint.toYaml(), failure)) return Result::failed;
    notes.remove();
    return Result::built;
}

/// Nothing that is not a built world is written into.
bool WorldBuilder::prepareFolder(std::string& failure) const {
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    if (!std::filesystem::is_directory(m_folder)) {
        failure = "cannot make the folder \"" + m_folder + "\"" +
                  (error ? ": " + error.message() : ", it is a file");
        return false;
    }
    if (!std::filesystem::is_empty(m_folder, error) && !isThere(m_folder + DESCRIPTION) &&
        !isThere(m_folder + NOTES)) {
        failure = "\"" + m_folder + "\" holds other things than a built world: name an empty " +
                  "folder, or one that isn't there yet";
        return false;
    }
    return true;
}

/// What was made of other sources goes, its description first: until the new one is whole there is
/// no built world.
void WorldBuilder::clear() const {
    std::error_code ignored;
    std::filesystem::remove(m_folder + DESCRIPTION, ignored);
    std::vector<std::filesystem::path> made;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder, ignored)) {
        const std::string name = entry.path().filename().string();
        if (name == "imagery" || name.starts_with("heights_") || name.starts_with("land_cover."))
            made.push_back(entry.path());
    }
    for (const std::filesystem::path& path : made)
        std::filesystem::remove_all(path, ignored);
}

WorldBuilder::Result WorldBuilder::runStage(BuildStage& stage, const Tell& tell,
                                            std::string& failure) {
    if (!stage.open(m_folder, failure)) return Result::failed;
    const int steps = stage.getNumSteps();
    bool wanted = tell(stage.getName(), 0, steps);
    for (int step = 0; step < steps; step++) {
        if (!wanted) return Result::stopped;
        if (m_notes->isDone(stage, step) && stage.isThere(step)) continue;
        if (!stage.make(step, failure) || !m_notes->note(stage, step, failure))
            return Result::failed;
        wanted = tell(stage.getName(), step + 1, steps);
    }
    return stage.close(failure) ? Result::built : Result::failed;
}

bool WorldBuilder::describe(const std::string& fingerprint, std::string& failure) const {
    std::string text = "# What this built world was made of. \"visual_channel world build\" makes "
                       "it anew.\n" +
                       fingerprint;
    for (const auto& stage : m_stages) {
        const std::vector<std::string> lines = stage->describe();
        if (lines.empty()) continue;
        text += std::string(stage->getName()) + ":\n";
        for (const std::string& line : lines)
            text += "  " + line + '\n';
    }
    program::OutputFile file;
    if (file.open(m_folder + DESCRIPTION, program::OutputFile::Kind::whole) && file.write(text) &&
        file.close())
        return true;
    failure = file.getMessage();
    return false;
}

} // namespace ig
