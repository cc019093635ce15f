// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <unordered_map>

namespace ig {

class Mesh;

/// Which level of detail of each object is shown, by the size that it has in the picture: level n
/// where its sphere is less than `FIRST` / 2^(n − 1) pixels across. A finer one comes back only
/// where it is larger than that by a sixth, so that what stays at the border doesn't flicker.
///
/// One for all frames of a view; what is not asked for in a while is forgotten.
class LevelChoice {
public:
    static constexpr float FIRST = 300; ///< pixels

    /// Once a frame, before it is asked.
    void beginFrame();
    /// The mesh to be drawn of an object with that number, `pixels` across: the object's own, or
    /// one of its coarser ones. Valid as long as the mesh.
    const std::shared_ptr<const Mesh>& choose(const std::shared_ptr<const Mesh>& mesh, int object,
                                              float pixels);

private:
    struct Shown {
        int level;
        unsigned frame; ///< when it was asked for last
    };
    std::unordered_map<int, Shown> m_shown;
    unsigned m_frame = 0;
};

} // namespace ig
