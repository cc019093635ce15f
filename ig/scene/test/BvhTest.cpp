// SPDX-License-Identifier: MIT
#include "ig/scene/Bvh.h"

#include <gtest/gtest.h>
#include <random>

namespace ig {
namespace {

struct Triangles {
    std::vector<vec3> positions;
    std::vector<std::uint32_t> indices;

    void add(vec3 a, vec3 b, vec3 c) {
        for (const vec3& p : {a, b, c}) {
            indices.push_back(static_cast<std::uint32_t>(positions.size()));
            positions.push_back(p);
        }
    }
    /// A wavy n × n grid over the unit square times n, with shared vertices.
    static Triangles grid(int n) {
        Triangles t;
        for (int y = 0; y <= n; y++)
            for (int x = 0; x <= n; x++)
                t.positions.push_back({static_cast<float>(x), static_cast<float>(y),
                                       std::sin(0.7f * static_cast<float>(x)) +
                                           std::cos(0.4f * static_cast<float>(y))});
        for (int y = 0; y < n; y++)
            for (int x = 0; x < n; x++) {
                const auto i = static_cast<std::uint32_t>(y * (n + 1) + x);
                const auto j = i + static_cast<std::uint32_t>(n) + 1;
                t.indices.insert(t.indices.end(), {i, i + 1, j + 1, i, j + 1, j});
            }
        return t;
    }
    /// First crossing by the plane of each triangle and three edge sides: another way than the
    /// tree.
    double bruteForce(const dvec3& a, const dvec3& b) const {
        double best = 2;
        for (std::size_t i = 0; i < indices.size(); i += 3) {
            const dvec3 p[3] = {dvec3(positions[indices[i]]), dvec3(positions[indices[i + 1]]),
                                dvec3(positions[indices[i + 2]])};
            const dvec3 normal = cross(p[1] - p[0], p[2] - p[0]);
            const double da = dot(a - p[0], normal), db = dot(b - p[0], normal);
            if (da == db) continue;
            const double t = da / (da - db);
            if (t < 0 || t > 1 || t >= best) continue;
            const dvec3 x = a + (b - a) * t;
            bool inside = true;
            for (int k = 0; k < 3; k++)
                inside &=
                    dot(cross(p[(k + 1) % 3] - p[k], x - p[k]), normal) >= -1e-7 * length2(normal);
            if (inside) best = t;
        }
        return best > 1 ? -1 : best;
    }
};

TEST(Bvh, AgreesWithBruteForceOnRandomSegments) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> u(-2, 2);
    Triangles soup;
    const auto point = [&] {
        return vec3(static_cast<float>(u(random)), static_cast<float>(u(random)),
                    static_cast<float>(u(random)));
    };
    for (int i = 0; i < 300; i++) {
        const vec3 c = point();
        soup.add(c, c + point() * 0.2f, c + point() * 0.2f);
    }
    Bvh tree;
    tree.build(soup.positions, soup.indices);
    int hits = 0;
    for (int i = 0; i < 3000; i++) {
        const dvec3 a(u(random), u(random), u(random)), b(u(random), u(random), u(random));
        const double expected = soup.bruteForce(a, b);
        ASSERT_NEAR(tree.intersect(a, b), expected, 1e-6) << i;
        hits += expected >= 0;
    }
    EXPECT_GT(hits, 300); // the test has something to compare
}

TEST(Bvh, NoSegmentSlipsThroughASharedEdgeOrVertex) {
    const int n = 40;
    const Triangles grid = Triangles::grid(n);
    Bvh tree;
    tree.build(grid.positions, grid.indices);
    std::mt19937 random(5);
    std::uniform_real_distribution<double> u(0, n);
    std::uniform_int_distribution<int> line(0, n);
    int missed = 0;
    for (int i = 0; i < 20000; i++) {
        // On a grid line, on a grid point, on a diagonal, in turn.
        const double x = i % 3 == 2 ? std::floor(u(random)) : line(random);
        const double f = u(random) / n;
        dvec3 p(x, i % 3 == 0 ? u(random) : line(random), 0);
        if (i % 3 == 2) p = {std::min(x, n - 1.0) + f, std::min(std::floor(p.y), n - 1.0) + f, 0};
        const dvec3 above = p + dvec3(0, 0, 100), below = p - dvec3(0, 0, 100);
        missed += tree.intersect(above, below) < 0;
        missed += tree.intersect(below, above) < 0;
    }
    EXPECT_EQ(missed, 0);
}

TEST(Bvh, FlatAxisParallelAndDegenerateMeshes) {
    Triangles flat;
    flat.add({-1, -1, 2}, {1, -1, 2}, {1, 1, 2});
    flat.add({0, 0, 0}, {0, 0, 0}, {0, 0, 0}); // no area
    Bvh tree;
    tree.build(flat.positions, flat.indices);
    EXPECT_NEAR(tree.intersect({0.5, 0, 10}, {0.5, 0, -10}), 0.4, 1e-12);
    EXPECT_NEAR(tree.intersect({0.5, 0, 2}, {0.5, 0, -10}), 0, 1e-12); // begins on it
    EXPECT_NEAR(tree.intersect({0.5, 0, 10}, {0.5, 0, 2}), 1, 1e-12);  // ends on it
    EXPECT_LT(tree.intersect({0.5, 0, 10}, {0.5, 0, 2.1}), 0);
    EXPECT_LT(tree.intersect({0.5, 0, 1}, {0.5, 0, 1}), 0); // no length
    Triangles same;
    for (int i = 0; i < 50; i++)
        same.add({0, 0, 0}, {1, 0, 0}, {0, 1, 0}); // all centres coincide
    tree.build(same.positions, same.indices);
    EXPECT_NEAR(tree.intersect({0.2, 0.2, 1}, {0.2, 0.2, -1}), 0.5, 1e-12);
    Triangles none;
    tree.build(none.positions, none.indices);
    EXPECT_LT(tree.intersect({0, 0, 1}, {0, 0, -1}), 0);
}

} // namespace
} // namespace ig
