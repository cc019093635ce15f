// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace ig {

class Mesh;

/// Makes the mesh of "file" or "file#part" out of its file. Null, with one log line, when there is
/// none.
std::shared_ptr<const Mesh> readMesh(const std::string& reference);

} // namespace ig
