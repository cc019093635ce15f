# SPDX-License-Identifier: MIT
import pathlib
import struct
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))

import build_icons  # noqa: E402


class Icons(unittest.TestCase):
    def test_committed_files_are_what_the_program_draws(self):
        for name, icon in build_icons.ICONS.items():
            rows = build_icons.draw(icon)
            drawn = build_icons.png(rows) if name.endswith(".png") else build_icons.dds(rows)
            with self.subTest(name):
                self.assertEqual((ROOT / name).read_bytes(), drawn)

    def test_dds_holds_rows_from_the_top_as_bgra(self):
        data = build_icons.dds([[(1, 2, 3, 4), (5, 6, 7, 8)], [(9, 10, 11, 12), (0, 0, 0, 0)]])
        self.assertEqual(struct.unpack_from("<4sI4xII", data)[1:], (124, 2, 2))
        self.assertEqual(data[128:140], bytes([3, 2, 1, 4, 7, 6, 5, 8, 11, 10, 9, 12]))


if __name__ == "__main__":
    unittest.main()
