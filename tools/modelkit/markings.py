# SPDX-License-Identifier: MIT
"""Painted numbers."""

# Strokes of digits on a grid 2 wide and 4 high, as rectangles (u0, u1, v0, v1).
STROKES = {"a": (0, 2, 3.5, 4), "b": (1.5, 2, 2, 4), "c": (1.5, 2, 0, 2), "d": (0, 2, 0, 0.5),
           "e": (0, 0.5, 0, 2), "f": (0, 0.5, 2, 4), "g": (0, 2, 1.75, 2.25)}
DIGITS = {"0": "abcdef", "1": "bc", "2": "abged", "3": "abgcd", "4": "fgbc", "5": "afgcd",
          "6": "afgedc", "7": "abc", "8": "abcdefg", "9": "abcdfg"}


def number(part, material, digits, height, place):
    """A number painted on a surface; `place(u, v)` answers points to the right and up from its
    lower left corner. Strokes are cut where they meet, so that none lies on another."""
    unit = height / 4
    for n, digit in enumerate(digits):
        for name in DIGITS[digit]:
            u0, u1, v0, v1 = STROKES[name]
            if name in "adg":  # the cross strokes give way to the upright ones
                u0 += 0.5 * any(k in DIGITS[digit] for k in ("ef" if name == "g" else
                                                             "f" if name == "a" else "e"))
                u1 -= 0.5 * any(k in DIGITS[digit] for k in ("bc" if name == "g" else
                                                             "b" if name == "a" else "c"))
            left = 2.8 * n
            corners = [(left + u0, v0), (left + u1, v0), (left + u1, v1), (left + u0, v1)]
            part.polygon(material, [place(unit * u, unit * v) for u, v in corners])
