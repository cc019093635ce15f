// SPDX-License-Identifier: MIT
#include "program/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

namespace program {

namespace {

/// A file that isn't there yet, or one that can be replaced.
bool isReplaceable(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return !fs::exists(status) || fs::is_regular_file(status);
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

} // namespace

std::string OutputFile::whyNot(const std::string& path, Kind kind) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (path.empty() || path.ends_with('/') || fs::is_directory(status))
        return "it is a folder, not a file";
    const bool exists = fs::exists(status);
    if (exists && access(path.c_str(), W_OK) != 0) return std::strerror(errno);
    if (exists && (kind == Kind::growing || !fs::is_regular_file(status))) return {};
    const fs::path folder = folderOf(fs::weakly_canonical(path, error));
    if (!fs::is_directory(folder, error))
        return "there is no folder \"" + folderOf(path).string() + "\"";
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        return "folder \"" + folderOf(path).string() + "\": " + std::strerror(errno);
    return {};
}

std::string OutputFile::partPath(const std::string& path) {
    const fs::path whole(path);
    return (whole.parent_path() / (whole.stem().string() + ".part" + whole.extension().string()))
        .string();
}

void OutputFile::remove(const std::string& path) {
    std::error_code ignored;
    if (isReplaceable(path)) fs::remove(path, ignored);
}

bool OutputFile::open(const std::string& path, Kind kind) {
    discard();
    m_path = path;
    m_message.clear();
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error);
    m_target = error ? path : target.string();
    m_written = kind == Kind::whole && isReplaceable(m_target) ? partPath(m_target) : m_target;
    const std::string why = whyNot(path, kind);
    if (!why.empty()) {
        m_message = "cannot write \"" + path + "\": " + why;
        return false;
    }
    m_file = std::fopen(m_written.c_str(), "wbe"); // e: not for the programs that we start
    if (!m_file) m_message = "cannot write \"" + path + "\": " + std::strerror(errno);
    return m_file != nullptr;
}

bool OutputFile::write(std::string_view bytes) {
    return m_file && (std::fwrite(bytes.data(), 1, bytes.size(), m_file) == bytes.size() || fail());
}

bool OutputFile::close() {
    if (!m_file) return false;
    if (std::fflush(m_file) != 0) return fail();
    std::FILE* const file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0) return fail();
    if (m_written == m_target || std::rename(m_written.c_str(), m_target.c_str()) == 0) return true;
    return fail();
}

void OutputFile::discard() {
    if (!m_file) return;
    std::fclose(m_file);
    m_file = nullptr;
    remove(m_written);
}

/// Keeps the system's reason and removes what there is.
bool OutputFile::fail() {
    m_message = "cannot write \"" + m_path + "\": " + std::strerror(errno);
    if (m_file) std::fclose(m_file);
    m_file = nullptr;
    remove(m_written);
    return false;
}

} // namespace program
