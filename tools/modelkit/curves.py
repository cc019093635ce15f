# SPDX-License-Identifier: MIT
"""Curves through given points, and outlines of flat shapes."""

import bisect
import math


class Monotone:
    """A smooth curve through (x, y) that neither overshoots nor wiggles between them: a cubic
    Hermite with harmonic-mean slopes (Fritsch and Butland 1984). Constant beyond its ends."""

    def __init__(self, xs, ys):
        self.xs, self.ys = list(xs), list(ys)
        steps = [(y1 - y0) / (x1 - x0) for x0, x1, y0, y1 in zip(xs, xs[1:], ys, ys[1:])]
        inner = [2 * a * b / (a + b) if a * b > 0 else 0.0 for a, b in zip(steps, steps[1:])]
        self.slopes = [steps[0], *inner, steps[-1]]

    def __call__(self, x):
        x = min(max(x, self.xs[0]), self.xs[-1])
        i = min(max(bisect.bisect_right(self.xs, x) - 1, 0), len(self.xs) - 2)
        h = self.xs[i + 1] - self.xs[i]
        t = (x - self.xs[i]) / h
        return (self.ys[i] * (1 + 2 * t) * (1 - t) ** 2 + self.slopes[i] * h * t * (1 - t) ** 2 +
                self.ys[i + 1] * t * t * (3 - 2 * t) + self.slopes[i + 1] * h * t * t * (t - 1))


def table(rows):
    """Monotone curves of all columns of a table over its first one."""
    xs, *columns = zip(*rows)
    curves = [Monotone(xs, column) for column in columns]
    return lambda x: tuple(curve(x) for curve in curves)


def through(points, cuts):
    """A Catmull-Rom spline through 2-D `points`. `cuts` gives for each piece the parameters, 0 to
    1, at which it is sampled after its first point."""
    ends = [points[0], *points, points[-1]]
    result = [points[0]]
    for i, piece in enumerate(cuts):
        p0, p1, p2, p3 = ends[i:i + 4]
        for t in piece:
            result.append(tuple(
                0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t * t +
                       (3 * b - a - 3 * c + d) * t ** 3) for a, b, c, d in zip(p0, p1, p2, p3)))
    return result


def rounded_rectangle(u0, u1, v0, v1, radius, steps=3):
    """Corners of a rectangle with round corners, counter-clockwise."""
    result = []
    for cu, cv, start in ((u1, v1, 0), (u0, v1, 90), (u0, v0, 180), (u1, v0, 270)):
        middle = (cu - radius if cu == u1 else cu + radius,
                  cv - radius if cv == v1 else cv + radius)
        for k in range(steps + 1):
            t = math.radians(start + 90 * k / steps)
            result.append((middle[0] + radius * math.cos(t), middle[1] + radius * math.sin(t)))
    return result


def superellipse(half_width, up, down, power, count):
    """A closed outline around the origin, clockwise from the top. Power 2 makes an ellipse, more
    makes it boxier."""
    result = []
    for i in range(count):
        t = 2 * math.pi * i / count
        s, c = math.sin(t), math.cos(t)
        result.append((half_width * math.copysign(abs(s) ** (2 / power), s),
                       (up if c > 0 else down) * math.copysign(abs(c) ** (2 / power), c)))
    return result


def airfoil(chord, thickness, count=5):
    """A symmetrical four-digit section from the leading edge at +chord/4 to the trailing edge at
    -3/4 chord, closed, over the upper side first."""
    def half(x):
        return 5 * thickness * (0.2969 * math.sqrt(x) - 0.1260 * x - 0.3516 * x * x +
                                0.2843 * x ** 3 - 0.1036 * x ** 4)

    xs = [(i / count) ** 1.7 for i in range(count + 1)]
    upper = [(chord * (0.25 - x), half(x) * chord) for x in xs]
    lower = [(u, -v) for u, v in reversed(upper[1:-1])]
    return upper + lower
