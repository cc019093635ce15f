// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <cstdint>
#include <vector>

namespace ig {

/// A bounding volume hierarchy over triangles for segment queries: binary, built by the
/// surface-area heuristic over 16 bins (Wald, "On fast Construction of SAH-based Bounding Volume
/// Hierarchies", 2007). Boxes are single precision and padded outwards, the triangle test is double
/// precision with closed edges, so that a segment through a shared edge or vertex never slips
/// between triangles.
class Bvh {
public:
    /// `positions` holds the vertices, `indices` three per triangle. Both must outlive the tree and
    /// stay unchanged.
    void build(const std::vector<vec3>& positions, const std::vector<std::uint32_t>& indices);
    bool empty() const { return m_nodes.empty(); }

    /// The first crossing along a → b, either side of a triangle counting: its parameter in [0, 1],
    /// or a negative number when there is none.
    double intersect(const dvec3& a, const dvec3& b) const;

private:
    struct Node {
        vec3 min;
        std::uint32_t
            first; ///< of a leaf: first triangle; of an inner node: left child, right next
        vec3 max;
        std::uint32_t count; ///< triangles of a leaf, 0 for an inner node
    };
    struct Box;
    struct Segment;

    void split(std::uint32_t node, std::uint32_t begin, std::uint32_t end, int depth,
               const std::vector<Box>& boxes);
    std::uint32_t partition(std::uint32_t begin, std::uint32_t end, const std::vector<Box>& boxes);
    void intersectLeaf(const Node& leaf, const Segment& segment, double& best) const;

    const std::vector<vec3>* m_positions = nullptr;
    const std::vector<std::uint32_t>* m_indices = nullptr;
    std::vector<Node> m_nodes;
    std::vector<std::uint32_t> m_triangles;
};

} // namespace ig
