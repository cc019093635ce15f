// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

#include <cstddef>
#include <span>

namespace ig {

/// The pictures that models carry in themselves, as the bytes of picture files, by names that no
/// file has: the model's path, "*" and a number. Materials name them like any other picture.
class PackedPictures {
public:
    /// Keeps a picture until `release`; one that is there already stays.
    static void add(const jString& name, std::span<const std::byte> bytes);
    /// Its bytes, valid until `release`; none for a name that was never added.
    static std::span<const std::byte> find(const jString& name);
    static void release();
};

} // namespace ig
