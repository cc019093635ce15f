// SPDX-License-Identifier: MIT
layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec4 aNormal;
layout(location = 2) in vec2 aPlace;
// Per instance: the rows of the transform from the mesh to the eye's east-north-up frame, and the
// colour of the haze in its direction; w: how high the shadow of hills reaches there, in that frame.
layout(location = 3) in vec4 aRow0;
layout(location = 4) in vec4 aRow1;
layout(location = 5) in vec4 aRow2;
layout(location = 6) in vec4 aHaze;
// Share of the key light that clouds let through: at the eye, and by how much it grows a metre to the
// east and north.
layout(location = 7) in vec3 aSun;
out vec3 vPosition;
out vec3 vNormal;
out vec2 vPlace;
flat out vec3 vHaze;
out float vSun;
out vec3 vOwn; // in the mesh's own frame
out float vHillTop;
out float vDim; // by what haze takes light on the way to the eye, 1/m
#if defined(TEXTURED) || defined(MAPPED)
out vec3 vOwnNormal;
#endif
#ifdef SECOND
layout(location = 8) in vec2 aSecond;
out vec2 vSecond;
#endif
#ifdef COLORED
layout(location = 9) in vec4 aColor;
out vec4 vColor;
#endif
void main() {
    vec4 p = vec4(aPosition, 1.0);
    vPosition = vec3(dot(aRow0, p), dot(aRow1, p), dot(aRow2, p));
    vNormal = vec3(dot(aRow0.xyz, aNormal.xyz), dot(aRow1.xyz, aNormal.xyz),
                   dot(aRow2.xyz, aNormal.xyz));
    vPlace = aPlace;
    vHaze = aHaze.rgb;
    vOwn = aPosition;
    vDim = dimming(vPosition.z);
#if defined(PAVED) || defined(SOAKED) || defined(PAINTED) || defined(DECAL) // wide ones
    vHillTop = vPosition.z + hillsAbove(vPosition);
    vSun = cloudShade(vPosition);
#else
    vHillTop = aHaze.w;
    vSun = clamp(aSun.x + dot(aSun.yz, vPosition.xy), 0.0, 1.0);
#endif
#if defined(TEXTURED) || defined(MAPPED)
    vOwnNormal = aNormal.xyz;
#endif
#ifdef SECOND
    vSecond = aSecond;
#endif
#ifdef COLORED
    vColor = aColor;
#endif
    gl_Position = uProjection * vec4(mat3(uView) * vPosition, 1.0);
}
