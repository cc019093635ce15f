#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes every model of the channel below the data folder, as a binary glTF or an OBJ file, and the
lights of the airfield.

The same program always writes the same bytes: a test compares them with the files in the
repository.
"""

import functools

from modelkit import airfield, equipment, frigate, helicopter, landing_ship, scenery
from modelkit.files import write
from modelkit.glb import glb_bytes
from modelkit.obj import obj_text

PREFABS = "PELMAR_PROJECT/prefabs"


def models():
    """Every file with its parts, by path below the data folder."""
    return {
        f"{PREFABS}/KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.glb": helicopter.parts(),
        f"{PREFABS}/SM_055_CN_2023/SM_055_CN_2023.glb": frigate.parts(),
        f"{PREFABS}/LNJ_2023/LNJ_2023.glb": landing_ship.parts(),
        f"{PREFABS}/airfield/airfield.obj": airfield.parts(),
        f"{PREFABS}/cmder/cmder.glb": equipment.commander(),
        f"{PREFABS}/yulei_CORAXF/yulei.glb": equipment.torpedo(),
        f"{PREFABS}/missile/missile.glb": equipment.missile(),
        f"{PREFABS}/sonar/sonar.glb": equipment.sonobuoy() + equipment.dipping_sonar(),
        f"{PREFABS}/rope_car/rope_car.glb": equipment.rescue_basket(),
        f"{PREFABS}/vfx/decoy/decoy.glb": equipment.decoy(),
        f"{PREFABS}/scenery/scenery.glb": scenery.parts(),
    }


@functools.cache
def model_contents():
    """The bytes of every model's file, by path below the data folder."""
    return {path: obj_text(parts).encode() if path.endswith(".obj") else glb_bytes(parts)
            for path, parts in models().items()}


def contents():
    """The bytes of every file that is written."""
    return {**model_contents(),
            f"{PREFABS}/airfield/runway_lights.prefab": airfield.lights_prefab().encode()}


if __name__ == "__main__":
    write(contents(), __doc__)
