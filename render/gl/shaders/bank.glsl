// SPDX-License-Identifier: MIT
// Share of what is far away that a bank of fog lets through, which covers the sky too, most where the
// ray stays long in it. `z`: sine of the ray's height above the horizon.
float bankClearness(float z) { return exp(-uSky.w * uAir.y / max(z, 0.004)); }
