// SPDX-License-Identifier: MIT
layout(location = 0) in vec3 aPosition; // in the chunk's own east-north-up frame
layout(location = 1) in vec4 aNormal;
layout(location = 2) in float aAltitude;
uniform vec4 uRow0, uRow1, uRow2;       // chunk to the eye's frame
uniform vec2 uPatch;                    // the chunk's middle in the noise's own period, m
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
    gl_Position = uProjection * vec4(mat3(uView) * vPosition, 1.0);
}
