// SPDX-License-Identifier: MIT
// The sea as a fan over azimuth and depression angle around the eye: triangles stay of one size in
// the picture. Every vertex asks the wave tiles themselves how the water has moved there, at the
// level of detail that its neighbours' distance can carry. Comes after ocean.glsl. RAISED: ships
// are making waves.
layout(location = 0) in vec2 aCell; // 0 to 1 over azimuth, and from near to far
uniform vec4 uFan;      // first azimuth, range of azimuth, steepest and flattest depression, rad
uniform vec3 uFanSize;  // cells over azimuth and depression; eye height that the rows go by, m
uniform vec2 uPatch;    // nadir in the noise's own period, m
uniform sampler2D uDisplacement0, uDisplacement1, uDisplacement2;
uniform sampler2D uNoise;
uniform sampler2D uRaised;   // m that ships raise the water near the eye
uniform vec3 uRaisedPlace;   // corner in the plane from the nadir, 1 / edge
out vec4 vWater;        // distance along the view axis; how far east and north the water has moved
                        // from its place at rest, m; divergence
out float vPatches;     // patchiness of the ripples

vec4 displacement(sampler2D tile, vec2 place, float texel, float spacing) {
    float level = log2(max(spacing / texel, 1.0));
    if (level > 5.5) return vec4(0.0);
    return textureLod(tile, place, level) * (1.0 - smoothstep(4.5, 5.5, level));
}

void main() {
    float azimuth = uFan.x + uFan.y * aCell.x;
    float depression = mix(uFan.z, uFan.w, aCell.y);
    float h = uFanSize.z, r = h / tan(depression);
    float across = r * uFan.y / uFanSize.x;
    float along = (r * r / h + h) * (uFan.z - uFan.w) / uFanSize.y;
    float spacing = max(max(across, min(along, across * 3.0)), along * 0.3);
    vec2 place = vec2(sin(azimuth), cos(azimuth)) * r;
    vec2 plane = toPlane(place);

    vec4 moved = vec4(0.0); // east, north, up, divergence
    if (uWaves.y > 0.0) {
        vec4 first = displacement(uDisplacement0, plane * uTile[0].x + uTile[0].yz, uTile[0].w, spacing);
        vec4 second = displacement(uDisplacement0, turn(plane) * uTile[0].x + uTurned.zw, uTile[0].w, spacing);
        second.xy = turnBack(second.xy);
        moved = (first + second) * 0.70710678;
        moved += displacement(uDisplacement1, plane * uTile[1].x + uTile[1].yz, uTile[1].w, spacing);
        moved += displacement(uDisplacement2, plane * uTile[2].x + uTile[2].yz, uTile[2].w, spacing);
    }
#ifdef RAISED
    moved.z += textureLod(uRaised, (plane - uRaisedPlace.xy) * uRaisedPlace.z, 0.0).x;
#endif
    moved *= uWaves.y;
    vec2 offset = moved.xy / uPlane.xy;
    vec3 position = vec3(place + offset, moved.z + levelAt(r));
    vec2 noise_place = plane + uPatch;
    vPatches = 0.75 + 0.55 * textureLod(uNoise, noise_place / 720.0, 1.0).y +
               0.4 * textureLod(uNoise, noise_place.yx / 2880.0, 1.0).y;
    vec3 eye = mat3(uView) * position;
    vWater = vec4(-eye.z, offset, moved.w);
    gl_Position = uProjection * vec4(eye, 1.0);
}
