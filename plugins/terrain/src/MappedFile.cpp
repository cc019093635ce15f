// SPDX-License-Identifier: MIT
#include "MappedFile.h"

#include "program/InputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ig {

namespace {

/// Closes a file that was opened, whatever happens.
struct Descriptor {
    int number;
    ~Descriptor() {
        if (number >= 0) close(number);
    }
};

} // namespace

std::unique_ptr<const MappedFile> MappedFile::open(const std::string& path, std::string& failure) {
    failure = program::whyUnreadable(path);
    if (!failure.empty()) return nullptr;
    const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    struct stat status {};
    if (file.number < 0 || fstat(file.number, &status) != 0) {
        failure = std::strerror(errno);
        return nullptr;
    }
    if (status.st_size == 0) {
        failure = "is empty: build the world anew";
        return nullptr;
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_SHARED, file.number, 0);
    if (bytes == MAP_FAILED) {
        failure = std::string("cannot be mapped: ") + std::strerror(errno);
        return nullptr;
    }
    // Looks go from place to place: reading ahead along rows would fetch what nobody wants.
    madvise(bytes, size, MADV_RANDOM);
    return std::unique_ptr<const MappedFile>(
        new MappedFile(static_cast<const unsigned char*>(bytes), size));
}

MappedFile::~MappedFile() { munmap(const_cast<unsigned char*>(m_bytes), m_size); }

} // namespace ig
