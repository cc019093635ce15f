#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes every model of the channel as an OBJ file below the data folder, and the lights of the
airfield.

The same program always writes the same bytes: a test compares them with the files in the
repository.
"""

import argparse
import functools
import pathlib

from modelkit import airfield, equipment, helicopter, ships
from modelkit.mesh import obj_text

PREFABS = "PELMAR_PROJECT/prefabs"


def models():
    """Every file with its parts, by path below the data folder."""
    return {
        f"{PREFABS}/KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.obj": helicopter.parts(),
        f"{PREFABS}/SM_055_CN_2023/SM_055_CN_2023.obj": ships.frigate(),
        f"{PREFABS}/LNJ_2023/LNJ_2023.obj": ships.landing_ship(),
        f"{PREFABS}/airfield/airfield.obj": airfield.parts(),
        f"{PREFABS}/cmder/cmder.obj": equipment.commander(),
        f"{PREFABS}/yulei_CORAXF/yulei.obj": equipment.torpedo(),
        f"{PREFABS}/missile/missile.obj": equipment.missile(),
        f"{PREFABS}/sonar/sonar.obj": equipment.sonobuoy() + equipment.dipping_sonar(),
        f"{PREFABS}/rope_car/rope_car.obj": equipment.rescue_car(),
        f"{PREFABS}/vfx/decoy/decoy.obj": equipment.decoy(),
    }


@functools.cache
def model_texts():
    """The content of every model's file, by path below the data folder."""
    return {path: obj_text(parts) for path, parts in models().items()}


def texts():
    """The content of every file that is written."""
    return {**model_texts(),
            f"{PREFABS}/airfield/runway_lights.prefab": airfield.lights_prefab()}


def main():
    default = pathlib.Path(__file__).resolve().parent.parent / "data"
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("data", nargs="?", type=pathlib.Path, default=default,
                        help="the data folder (default: the repository's)")
    data = parser.parse_args().data
    for path, text in texts().items():
        target = data / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(text, encoding="utf-8", newline="\n")
        print(f"{target}: {len(text)} bytes")


if __name__ == "__main__":
    main()
