// SPDX-License-Identifier: MIT
#include "program/InputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

std::string program::whyUnreadable(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::strerror(errno);
    if (S_ISDIR(status.st_mode)) return "a folder, not a file";
    if (!S_ISREG(status.st_mode)) return "not a regular file";
    const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return std::strerror(errno);
    ::close(file);
    return {};
}
