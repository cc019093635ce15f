// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace program {

/// A file that a program was asked to write. Either all of it gets there or nothing stays: what the
/// disk refuses is seen while writing and at closing, and the part that had been written is
/// removed. A device or a pipe in the place of the file is written as it is.
class OutputFile {
public:
    enum class Kind {
        whole,  ///< stands under its name from `close` on: nobody meets half of it, and a failure
                ///< leaves the former file
        growing ///< stands under its name from `open` on, for those who follow it
    };

    /// Why a file can't be written there, as far as that can be told without writing: "" when it
    /// can. For refusing a path at the start of what ends with writing it.
    static std::string whyNot(const std::string& path, Kind kind);
    /// Path for the incomplete form of a file, beside it and with its suffix.
    static std::string partPath(const std::string& path);
    /// Removes a file, unless it is a device or a pipe.
    static void remove(const std::string& path);

    OutputFile() = default;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile() { discard(); }

    /// Creates the file. False with `getMessage()` when it can't; so are the following.
    bool open(const std::string& path, Kind kind);
    bool isOpen() const { return m_file != nullptr; }
    /// Adds bytes. A failure is told once: the file is closed and removed, and nothing is open any
    /// more. So with `close`.
    bool write(std::string_view bytes);
    /// Hands over what is waiting and puts the file in its place.
    bool close();
    /// Closes and removes what has been written. Nothing when nothing is open.
    void discard();

    /// The path, and what went wrong with it.
    const std::string& getMessage() const { return m_message; }

private:
    bool fail();

    std::string m_path;    ///< as asked for
    std::string m_target;  ///< the same with links followed
    std::string m_written; ///< where the bytes go: `m_target` or its part
    std::FILE* m_file = nullptr;
    std::string m_message;
};

} // namespace program
