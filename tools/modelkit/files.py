# SPDX-License-Identifier: MIT
"""What the programs that build the data write."""

import argparse
import pathlib


def write(contents, description):
    """Writes the bytes of every file, by path below the data folder, which the command line may
    name."""
    default = pathlib.Path(__file__).resolve().parents[2] / "data"
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("data", nargs="?", type=pathlib.Path, default=default,
                        help="the data folder (default: the repository's)")
    data = parser.parse_args().data
    for path, content in contents.items():
        target = data / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(content)
        print(f"{target}: {len(content)} bytes")
