// SPDX-License-Identifier: MIT
#include "PlacedFile.h"

#include "program/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace ig {

PlacedFile::PlacedFile(const std::string& path)
    : m_path(path), m_number(::open(program::OutputFile::partPath(path).c_str(),
                                    O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {}

PlacedFile::~PlacedFile() {
    if (m_number >= 0) ::close(m_number);
}

bool PlacedFile::write(const void* data, std::uint64_t size, std::uint64_t begin,
                       std::string& failure) {
    const auto* bytes = static_cast<const char*>(data);
    while (m_number >= 0 && size > 0) {
        const ssize_t written = pwrite(m_number, bytes, size, static_cast<off_t>(begin));
        if (written < 0) return tell(failure);
        bytes += written;
        begin += static_cast<std::uint64_t>(written);
        size -= static_cast<std::uint64_t>(written);
    }
    return (m_number >= 0 && fdatasync(m_number) == 0) || tell(failure);
}

bool PlacedFile::finish(std::uint64_t size, std::string& failure) {
    if (ftruncate(m_number, static_cast<off_t>(size)) != 0 || fdatasync(m_number) != 0)
        return tell(failure);
    std::error_code error;
    std::filesystem::rename(program::OutputFile::partPath(m_path), m_path, error);
    if (error) failure = "cannot write \"" + m_path + "\": " + error.message();
    return !error;
}

std::uint64_t PlacedFile::getSize(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(
        isFinished(path) ? path : program::OutputFile::partPath(path), error);
    return error ? 0 : size;
}

bool PlacedFile::isFinished(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error) &&
           !std::filesystem::exists(program::OutputFile::partPath(path), error);
}

bool PlacedFile::tell(std::string& failure) const {
    failure = "cannot write \"" + m_path + "\": " + std::strerror(errno);
    return false;
}

} // namespace ig
