// SPDX-License-Identifier: MIT
#pragma once

#include <string>

struct aiScene;

namespace ig {

/// A model as the importer gives it. The scene is valid until the next model is read.
struct ModelFile {
    const aiScene* scene = nullptr; ///< null, with one log line, when it can't be read
    std::string path;
    std::string folder; ///< with its closing slash, or empty
    bool y_up = false;  ///< glTF: its Y becomes Z and its −Z becomes Y
};

/// Reads a glTF or OBJ file. The last one read is kept while its parts are being asked for.
ModelFile readModel(const std::string& path);
/// Files that have been read so far, or tried.
int getNumModelsRead();
/// Forgets the last one and the failures.
void releaseModels();

} // namespace ig
