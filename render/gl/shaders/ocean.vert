// SPDX-License-Identifier: MIT
// The sea as a fan over azimuth and depression angle around the eye: triangles stay of one size in
// the picture. Every vertex asks the wave tiles themselves how the water has moved there, at the
// level of detail that its neighbours' distance can carry.
layout(location = 0) in vec2 aCell; // 0 to 1 over azimuth, and from near to far
uniform vec4 uFan;      // first azimuth, range of azimuth, steepest and flattest depression, rad
uniform vec4 uFanSize;  // cells over azimuth and depression; eye height that the rows go by, m;
                        // half the earth's curvature, 1/m
uniform vec4 uWaves;    // eye altitude, m; amplitude 0 to 1; mean level, m; significant height, m
uniform vec4 uPlane;    // metres of the waves' plane per metre east and north; second-order terms
uniform vec4 uTile[4];  // per tile: 1 / edge, place of the nadir, edge of a texel
uniform vec4 uTurned;   // second copy of tile 0: cosine, sine of its turn, place of the nadir
uniform vec2 uPatch;    // nadir in the noise's own period, m
uniform sampler2D uDisplacement0, uDisplacement1, uDisplacement2;
uniform sampler2D uNoise;
out vec3 vPosition;
out vec2 vPlane;        // in the waves' plane, from the nadir, at rest
out vec4 vWave;         // divergence, height, patchiness of the ripples, clearness of the air
out vec3 vHaze;

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
    // Where that lies in the plane that the waves are laid out in.
    vPlane = uPlane.xy * (place + vec2(place.x * place.y * uPlane.z, -place.x * place.x * uPlane.w));

    vec4 moved = vec4(0.0); // east, north, up, divergence
    if (uWaves.y > 0.0) {
        vec2 turned = vec2(uTurned.x * vPlane.x - uTurned.y * vPlane.y,
                           uTurned.y * vPlane.x + uTurned.x * vPlane.y);
        vec4 first = displacement(uDisplacement0, vPlane * uTile[0].x + uTile[0].yz, uTile[0].w, spacing);
        vec4 second = displacement(uDisplacement0, turned * uTile[0].x + uTurned.zw, uTile[0].w, spacing);
        second.xy = vec2(uTurned.x * second.x + uTurned.y * second.y,
                         uTurned.x * second.y - uTurned.y * second.x);
        moved = (first + second) * 0.70710678;
        moved += displacement(uDisplacement1, vPlane * uTile[1].x + uTile[1].yz, uTile[1].w, spacing);
        moved += displacement(uDisplacement2, vPlane * uTile[2].x + uTile[2].yz, uTile[2].w, spacing);
    }
    moved *= uWaves.y;
    vPosition = vec3(place + moved.xy / uPlane.xy,
                     moved.z + uWaves.z * uWaves.y * uWaves.y - r * r * uFanSize.w - uWaves.x);
    vec2 noise_place = vPlane + uPatch;
    float patches = 0.75 + 0.55 * textureLod(uNoise, noise_place / 720.0, 1.0).y +
                    0.4 * textureLod(uNoise, noise_place.yx / 2880.0, 1.0).y;
    vWave = vec4(moved.w, moved.z, patches, clearness(vPosition));
    vHaze = hazeColor(vPosition.xy);
    gl_Position = uProjection * vec4(mat3(uView) * vPosition, 1.0);
}
