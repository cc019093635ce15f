// SPDX-License-Identifier: MIT
#pragma once

// Every file that the logic asks the engine for, relative to the working directory.

inline constexpr const char* WORLD = "data/PELMAR_PROJECT/PELMAR_PROJECT.world";
inline constexpr const char* HELICOPTER =
    "data/PELMAR_PROJECT/prefabs/KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.prefab";

// What is put into the scene on its way.
inline constexpr const char* TORPEDO = "data/PELMAR_PROJECT/prefabs/yulei_CORAXF/yulei.prefab";
inline constexpr const char* MISSILE = "data/PELMAR_PROJECT/prefabs/missile/missile.prefab";
inline constexpr const char* DECOY = "data/PELMAR_PROJECT/prefabs/vfx/decoy/decoy.prefab";
inline constexpr const char* SONOBUOY = "data/PELMAR_PROJECT/prefabs/sonar/sonar.prefab";
inline constexpr const char* DIPPING_SONAR = "data/PELMAR_PROJECT/prefabs/sonar/sonar_rope.prefab";
inline constexpr const char* BASKET = "data/PELMAR_PROJECT/prefabs/rope_car/rope_car.prefab";
inline constexpr const char* HOIST = "data/PELMAR_PROJECT/prefabs/winch/winch.prefab";

// Effects that are shown once.
inline constexpr const char* EXPLOSION = "data/art/prefab/vfx/explosion_1/explosion_1.prefab";
inline constexpr const char* MISSILE_HIT = "data/art/prefab/vfx/explosion/explosion.prefab";
inline constexpr const char* COLUMN_OF_WATER =
    "data/PELMAR_PROJECT/prefabs/vfx/water_explosion/water_explosion.prefab";
inline constexpr const char* SPLASH =
    "data/PELMAR_PROJECT/prefabs/vfx/water_drop/water_drop.prefab";

/// What start-up brings into the engine's caches, in this fixed order. Nothing spawns the hoist,
/// and the basket that the winch lowers is loaded when it is.
inline constexpr const char* PRELOADED[] = {TORPEDO,       MISSILE_HIT, EXPLOSION, COLUMN_OF_WATER,
                                            SONOBUOY,      HOIST,       SPLASH,    MISSILE,
                                            DIPPING_SONAR, DECOY};

// Animation tracks, which the application's values move.
inline constexpr const char* WET_RUNWAY = "data/PELMAR_PROJECT/ANIM/runway_ssr.anim"; ///< rain
inline constexpr const char* ICY_RUNWAY = "data/PELMAR_PROJECT/ANIM/runway_ice.anim"; ///< snow
inline constexpr const char* LIGHTS = "data/PELMAR_PROJECT/ANIM/light.anim"; ///< time of day
inline constexpr const char* TRACKS[] = {WET_RUNWAY, ICY_RUNWAY, LIGHTS};

// Icons of the camera panel, and the material that the radar's picture passes through.
inline constexpr const char* SPEED_ICON = "data/core/editor/gui/run.dds";
inline constexpr const char* POSITION_ICON = "data/core/editor/gui/position.dds";
inline constexpr const char* COLLECTIVE_ICON = "data/PELMAR_PROJECT/gui/thr.png";
inline constexpr const char* POST_RADAR = "post_radar";
