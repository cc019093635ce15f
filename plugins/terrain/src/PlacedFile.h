// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace ig {

/// A file of a built world while it is made: written here and there, and not lost when the machine
/// stops. Until it is whole it stands beside its path, under the name of a part. Failures are a
/// sentence in `failure`.
class PlacedFile {
public:
    /// Opens the part, which need not be there yet.
    explicit PlacedFile(const std::string& path);
    PlacedFile(const PlacedFile&) = delete;
    ~PlacedFile();

    /// So many bytes from `begin` on, which are on the disk afterwards.
    bool write(const void* data, std::uint64_t size, std::uint64_t begin, std::string& failure);
    /// The file ends there, and is put in its place.
    bool finish(std::uint64_t size, std::string& failure);

    /// Of what has been written for that path, whole or not, bytes; 0 when nothing has.
    static std::uint64_t getSize(const std::string& path);
    /// It is in its place.
    static bool isFinished(const std::string& path);

private:
    bool tell(std::string& failure) const;

    std::string m_path;
    int m_number;
};

} // namespace ig
