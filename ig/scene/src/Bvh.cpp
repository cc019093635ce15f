// SPDX-License-Identifier: MIT
#include "ig/scene/Bvh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace ig {

namespace {

constexpr int NUM_BINS = 16;
constexpr std::uint32_t MAX_LEAF = 4;
constexpr int MAX_SPLIT_DEPTH = 64;
constexpr int STACK_SIZE = 128; ///< 64 levels more than the deepest tree of halves needs

float component(const vec3& v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

float halfArea(const vec3& min, const vec3& max) {
    const vec3 d = max - min;
    return d.x * d.y + d.y * d.z + d.z * d.x;
}

} // namespace

struct Bvh::Box {
    vec3 min{std::numeric_limits<float>::max(), std::numeric_limits<float>::max(),
             std::numeric_limits<float>::max()};
    vec3 max = -min;

    void expand(const vec3& low, const vec3& high) {
        min = {std::min(min.x, low.x), std::min(min.y, low.y), std::min(min.z, low.z)};
        max = {std::max(max.x, high.x), std::max(max.y, high.y), std::max(max.z, high.z)};
    }
    vec3 doubledCenter() const { return min + max; }
};

/// The query in the forms that the box and the triangle test need.
struct Bvh::Segment {
    dvec3 origin, direction;
    double inverse[3];

    Segment(const dvec3& a, const dvec3& b) : origin(a), direction(b - a) {
        const double d[3] = {direction.x, direction.y, direction.z};
        for (int i = 0; i < 3; i++)
            inverse[i] = std::abs(d[i]) > 1e-30 ? 1 / d[i] : 1e30;
    }

    /// Where the segment enters the box, as a parameter; negative when it misses it before `limit`.
    double enter(const Node& node, double limit) const {
        double t0 = 0, t1 = limit;
        const double o[3] = {origin.x, origin.y, origin.z};
        for (int i = 0; i < 3; i++) {
            const double a = (component(node.min, i) - o[i]) * inverse[i];
            const double b = (component(node.max, i) - o[i]) * inverse[i];
            t0 = std::max(t0, std::min(a, b));
            t1 = std::min(t1, std::max(a, b));
        }
        return t0 <= t1 ? t0 : -1;
    }
};

void Bvh::build(const std::vector<vec3>& positions, const std::vector<std::uint32_t>& indices) {
    m_positions = &positions;
    m_indices = &indices;
    m_nodes.clear();
    const auto count = static_cast<std::uint32_t>(indices.size() / 3);
    m_triangles.resize(count);
    std::vector<Box> boxes(count);
    for (std::uint32_t t = 0; t < count; t++) {
        m_triangles[t] = t;
        for (int corner = 0; corner < 3; corner++) {
            const vec3& p = positions[indices[3 * t + corner]];
            boxes[t].expand(p, p);
        }
    }
    if (count == 0) return;
    m_nodes.reserve(count);
    m_nodes.push_back({});
    split(0, 0, count, 0, boxes);
    m_nodes.shrink_to_fit();
}

void Bvh::split(std::uint32_t node, std::uint32_t begin, std::uint32_t end, int depth,
                const std::vector<Box>& boxes) {
    Box box;
    for (std::uint32_t i = begin; i < end; i++)
        box.expand(boxes[m_triangles[i]].min, boxes[m_triangles[i]].max);
    // Outwards by more than the rounding of a slab test, so that flat boxes are hit as well.
    const float extent = std::max({std::abs(box.min.x), std::abs(box.min.y), std::abs(box.min.z),
                                   std::abs(box.max.x), std::abs(box.max.y), std::abs(box.max.z)});
    const float pad = extent * 1e-6f + 1e-6f;
    m_nodes[node].min = box.min - vec3(pad, pad, pad);
    m_nodes[node].max = box.max + vec3(pad, pad, pad);
    if (end - begin <= MAX_LEAF) {
        m_nodes[node].first = begin;
        m_nodes[node].count = end - begin;
        return;
    }
    // Meshes made for it can be split off triangle by triangle: from some depth on halve instead.
    const std::uint32_t middle =
        depth < MAX_SPLIT_DEPTH ? partition(begin, end, boxes) : (begin + end) / 2;
    const auto left = static_cast<std::uint32_t>(m_nodes.size());
    m_nodes.resize(m_nodes.size() + 2);
    m_nodes[node].first = left;
    m_nodes[node].count = 0;
    split(left, begin, middle, depth + 1, boxes);
    split(left + 1, middle, end, depth + 1, boxes);
}

/// Sorts the triangles begin … end into two halves of the least expected cost and returns the
/// border.
std::uint32_t Bvh::partition(std::uint32_t begin, std::uint32_t end,
                             const std::vector<Box>& boxes) {
    Box centers;
    for (std::uint32_t i = begin; i < end; i++) {
        const vec3 c = boxes[m_triangles[i]].doubledCenter();
        centers.expand(c, c);
    }
    struct Bin {
        Box box;
        int count = 0;
    };
    float best_cost = std::numeric_limits<float>::max();
    int best_axis = -1, best_bin = 0;
    const auto binOf = [&](std::uint32_t triangle, int axis) {
        const float low = component(centers.min, axis);
        const float width = component(centers.max, axis) - low;
        const float c = component(boxes[triangle].doubledCenter(), axis);
        return std::min(NUM_BINS - 1, static_cast<int>((c - low) / width * NUM_BINS));
    };
    for (int axis = 0; axis < 3; axis++) {
        if (!(component(centers.max, axis) > component(centers.min, axis))) continue;
        std::array<Bin, NUM_BINS> bins;
        for (std::uint32_t i = begin; i < end; i++) {
            Bin& bin = bins[binOf(m_triangles[i], axis)];
            bin.box.expand(boxes[m_triangles[i]].min, boxes[m_triangles[i]].max);
            bin.count++;
        }
        std::array<float, NUM_BINS> right_cost{};
        Bin side;
        for (std::size_t b = NUM_BINS - 1; b > 0; b--) {
            side.box.expand(bins[b].box.min, bins[b].box.max);
            side.count += bins[b].count;
            if (side.count)
                right_cost[b] =
                    halfArea(side.box.min, side.box.max) * static_cast<float>(side.count);
        }
        side = {};
        for (std::size_t b = 0; b + 1 < NUM_BINS; b++) {
            side.box.expand(bins[b].box.min, bins[b].box.max);
            side.count += bins[b].count;
            if (side.count == 0 || side.count == static_cast<int>(end - begin)) continue;
            const float cost = right_cost[b + 1] + halfArea(side.box.min, side.box.max) *
                                                       static_cast<float>(side.count);
            if (cost < best_cost) {
                best_cost = cost;
                best_axis = axis;
                best_bin = static_cast<int>(b);
            }
        }
    }
    if (best_axis < 0) return (begin + end) / 2; // all centres coincide
    const auto border =
        std::partition(m_triangles.begin() + begin, m_triangles.begin() + end,
                       [&](std::uint32_t t) { return binOf(t, best_axis) <= best_bin; });
    return static_cast<std::uint32_t>(border - m_triangles.begin());
}

double Bvh::intersect(const dvec3& a, const dvec3& b) const {
    const Segment segment(a, b);
    double best = 2; // beyond the end of the segment
    if (m_nodes.empty() || segment.enter(m_nodes[0], 1) < 0) return -1;
    std::uint32_t stack[STACK_SIZE];
    int depth = 0;
    stack[depth++] = 0;
    while (depth > 0) {
        const Node& node = m_nodes[stack[--depth]];
        if (node.count) {
            intersectLeaf(node, segment, best);
            continue;
        }
        const double limit = std::min(best, 1.0);
        const double left = segment.enter(m_nodes[node.first], limit);
        const double right = segment.enter(m_nodes[node.first + 1], limit);
        // The nearer child is pushed last and so visited first.
        const bool left_first = left >= 0 && (right < 0 || left <= right);
        if (left_first && right >= 0) stack[depth++] = node.first + 1;
        if (left >= 0) stack[depth++] = node.first;
        if (!left_first && right >= 0) stack[depth++] = node.first + 1;
    }
    return best <= 1 ? best : -1;
}

void Bvh::intersectLeaf(const Node& leaf, const Segment& segment, double& best) const {
    // Möller and Trumbore 1997, in double precision; the small allowance closes the edges.
    constexpr double EDGE = 1e-9;
    for (std::uint32_t i = 0; i < leaf.count; i++) {
        const std::uint32_t* corner = &(*m_indices)[3 * m_triangles[leaf.first + i]];
        const dvec3 p0((*m_positions)[corner[0]]);
        const dvec3 e1 = dvec3((*m_positions)[corner[1]]) - p0;
        const dvec3 e2 = dvec3((*m_positions)[corner[2]]) - p0;
        const dvec3 h = cross(segment.direction, e2);
        const double determinant = dot(e1, h);
        if (determinant == 0) continue;
        const dvec3 s = segment.origin - p0;
        const double u = dot(s, h) / determinant;
        if (u < -EDGE || u > 1 + EDGE) continue;
        const dvec3 q = cross(s, e1);
        const double v = dot(segment.direction, q) / determinant;
        if (v < -EDGE || u + v > 1 + EDGE) continue;
        const double t = dot(e2, q) / determinant;
        if (t >= 0 && t <= 1 && t < best) best = t;
    }
}

} // namespace ig
