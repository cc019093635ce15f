// SPDX-License-Identifier: MIT
// What the sea's fan and its shading share: the plane that the waves are laid out in, its origin
// below the eye, the tiles that repeat in it, and how one tells the other of the water.
uniform vec4 uWaves;   // eye altitude, m; amplitude 0 to 1; mean level, m; significant height, m
uniform vec4 uPlane;   // metres of the plane per metre east and north; second-order terms
uniform vec4 uTile[4]; // per tile: 1 / edge, place of the nadir, edge of a texel
uniform vec4 uTurned;  // second copy of tile 0: cosine, sine of its turn, place of the nadir

// Where water at rest so far east and north of the eye lies in the plane.
vec2 toPlane(vec2 place) {
    return uPlane.xy * (place + vec2(place.x * place.y * uPlane.z, -place.x * place.x * uPlane.w));
}
vec2 turn(vec2 plane) {
    return vec2(uTurned.x * plane.x - uTurned.y * plane.y, uTurned.y * plane.x + uTurned.x * plane.y);
}
vec2 turnBack(vec2 v) {
    return vec2(uTurned.x * v.x + uTurned.y * v.y, uTurned.x * v.y - uTurned.y * v.x);
}
// Altitude of still water so far away, above the eye's: the earth bends away.
float levelAt(float range) {
    return uWaves.z * uWaves.y * uWaves.y - range * range * HALF_CURVATURE - uWaves.x;
}

// Divergence, -4 to 4 in steps of 1/128, and patchiness, below 2, in one float.
float pack(float divergence, float patches) {
    return floor(clamp(divergence + 4.0, 0.0, 7.99) * 128.0) + patches * 0.5;
}
vec2 unpack(float both) { return vec2(floor(both) / 128.0 - 4.0, fract(both) * 2.0); }
