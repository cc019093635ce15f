// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// A folder of its own for one test, removed at the end.
class TempFolder {
public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "channel_XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TempFolder() { std::filesystem::remove_all(m_path); }
    TempFolder(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    ig::jString file(const std::string& name) const { return (m_path / name).string(); }
    /// Writes a file, with the folders on its way; returns its path.
    ig::jString write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << bytes;
        return file(name);
    }
    /// Number of files in the folder.
    long count() const {
        return std::distance(std::filesystem::directory_iterator(m_path),
                             std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path m_path;
};

/// The same as the working directory of the process, for what reads fixed relative paths.
class WorkingFolder : public TempFolder {
public:
    WorkingFolder() : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(path());
    }
    ~WorkingFolder() { std::filesystem::current_path(m_before); }

    /// Where the process worked before: the project's folder, in tests.
    const std::filesystem::path& before() const { return m_before; }

private:
    std::filesystem::path m_before;
};
