// SPDX-License-Identifier: MIT
layout(location = 0) in vec3 aPosition; // in the chunk's own east-north-up frame
layout(location = 1) in vec4 aNormal;
layout(location = 2) in float aAltitude;
uniform vec4 uRow0, uRow1, uRow2;       // chunk to the eye's frame
uniform vec2 uPatch;                    // the chunk's middle in the noise's own period, m
#ifdef IMAGERY
uniform vec4 uMap;  // the chunk's north-western sample in cells of its patch; cells from one sample to the next
uniform vec2 uLast; // samples from there to the ground's eastern and southern edge
out vec2 vMap;      // cells of the patch
#endif
#ifdef COVER
layout(location = 3) in vec4 aWoodsToSand; // shares of woods, crop, soil, sand
layout(location = 4) in vec4 aRockToWater; // of rock, what is built, snow, water
out vec4 vWoodsToSand, vRockToWater;
#endif
out vec3 vPosition;
out vec3 vNormal;
out vec3 vPlace;  // east, north in the noise's period; altitude
out float vSlope; // rise over run
out vec4 vHaze;   // w: clearness of the air
out float vSun;   // share of the key light that clouds let through
void main() {
    vec4 p = vec4(aPosition, 1.0);
    vPosition = vec3(dot(uRow0, p), dot(uRow1, p), dot(uRow2, p));
    vNormal = vec3(dot(uRow0.xyz, aNormal.xyz), dot(uRow1.xyz, aNormal.xyz), dot(uRow2.xyz, aNormal.xyz));
    vPlace = vec3(aPosition.xy + uPatch, aAltitude);
    vSlope = length(aNormal.xy) / max(aNormal.z, 0.05);
    vHaze = vec4(hazeColor(vPosition.xy), clearness(vPosition));
    vSun = cloudShade(vPosition);
#ifdef IMAGERY
    // Rows of samples with the skirt's on either side, which repeats those of the border.
    ivec2 at = ivec2(gl_VertexID % (CHUNK_CELLS + 3), gl_VertexID / (CHUNK_CELLS + 3));
    vMap = uMap.xy + min(vec2(clamp(at - 1, 0, CHUNK_CELLS)), uLast) * uMap.zw;
#endif
#ifdef COVER
    vWoodsToSand = aWoodsToSand;
    vRockToWater = aRockToWater;
#endif
    gl_Position = uProjection * vec4(mat3(uView) * vPosition, 1.0);
}
