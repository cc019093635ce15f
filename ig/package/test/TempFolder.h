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
        std::string name = (std::filesystem::temp_directory_path() / "package_XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TempFolder() { std::filesystem::remove_all(m_path); }
    TempFolder(const TempFolder&) = delete;

    ig::jString file(const std::string& name) const { return (m_path / name).string(); }
    ig::jString write(const std::string& name, const std::string& bytes) const {
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
