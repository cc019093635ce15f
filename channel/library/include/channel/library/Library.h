// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A shared library loaded at run time, given back to the loader when the object goes; the loader
/// may keep it until the process ends.
class Library {
public:
    Library() = default;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { unload(); }

    /// A path without a slash is looked for beside this program's own libraries. False, with one
    /// log line, when it can't be loaded.
    bool load(const std::string& path);
    void unload();
    /// The file's name without folder and suffix, by which what belongs to the library is found.
    std::string getName() const;
    /// Null, with one log line, when the library doesn't export `name`.
    void* find(const char* name) const;

private:
    std::string m_path;
    void* m_handle = nullptr;
};
