// SPDX-License-Identifier: MIT
// Panes around the eye, dry ones without a word; see mesh.vert for the attributes. What they mirror is
// so faint and even that it is found at the corners. RAINY or SNOWY ones have places: a pane's mesh
// has Z up and Y ahead, windscreens and roofs are laid out along X and up their slope, sides along Y
// and Z.
layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec4 aNormal;
layout(location = 2) in vec2 aPlace; // x: distance from the pane's edge, m
layout(location = 3) in vec4 aRow0;
layout(location = 4) in vec4 aRow1;
layout(location = 5) in vec4 aRow2;
uniform vec4 uColor;   // w: opacity
uniform vec4 uSurface; // x: roughness
out vec4 vPane;        // light of the pane itself, and how much it hides
#if defined(RAINY) || defined(SNOWY)
#define COVERED
uniform vec4 uFlow;   // these and the next two: see GlassFilm
uniform vec3 uStream; // of the air over the pane, E, m/s
uniform vec4 uBlades[3 * MOST_BLADES];
uniform float uRim;   // 0: the mesh knows the distances; else they are that everywhere, m
uniform vec3 uMiddle; // of the mesh: around it the ways of drops turn
out float vRim;
out vec4 vPlaces;  // to the right and up the pane, m; across and along the way of running drops, m
out vec4 vTilt;   // the eye's x and y of a way to the right, and of one up the pane
out vec4 vSweeps; // along each blade's angle 0 and quarter turn, m
out vec2 vOff;    // from each blade's plane, m
#endif

vec4 pane(vec3 position, vec3 normal) {
    vec3 toEye = -normalize(position);
    if (dot(toEye, normal) < 0.0) normal = -normal;
    vec3 ambient = uAmbient.rgb * mix(vec3(0.30, 0.34, 0.36), vec3(1.0), normal.z * 0.5 + 0.5);
    float away = 1.0 - dot(toEye, normal), away2 = away * away;
    float fresnel = 0.04 + (0.96 - uSurface.x) * away2 * away2 * away; // see mesh.frag
    vec3 mirrored = reflect(-toEye, normal);
    vec3 environment = skyAt(mirrored, mix(1.0, 5.5, uSurface.x)) * (mirrored.z < 0.0 ? 0.22 : 1.0);
    environment *= mix(1.0, 0.3, uSurface.x);
    return vec4(uColor.rgb * ambient * uColor.a + environment * fresnel, min(uColor.a + fresnel * 0.8, 1.0));
}

void main() {
    vec4 p = vec4(aPosition, 1.0);
    vec3 position = vec3(dot(aRow0, p), dot(aRow1, p), dot(aRow2, p));
    mat3 to_own = mat3(aRow0.xyz, aRow1.xyz, aRow2.xyz);
    vPane = pane(position, normalize(aNormal.xyz * to_own));
    gl_Position = uProjection * vec4(mat3(uView) * position, 1.0);
#ifdef COVERED
    bool raked = aNormal.y > 0.4, side = abs(aNormal.x) > 0.7;
    vec3 right = side ? vec3(0.0, 1.0, 0.0) : vec3(1.0, 0.0, 0.0);
    vec3 up = side ? vec3(0.0, 0.0, 1.0) : raked ? vec3(0.0, -0.7071, 0.7071) : vec3(0.0, -1.0, 0.0);
    vec2 place = vec2(dot(aPosition - uMiddle, right), dot(aPosition - uMiddle, up));
    vec3 drive = to_own * (uFlow.y > 0.5 ? uStream : vec3(0.0, 0.0, -1.0));
    vec2 way = normalize(vec2(dot(drive, right), dot(drive, up)) + vec2(0.0, 1e-3));
    vPlaces = vec4(place, dot(place, vec2(way.y, -way.x)), dot(place, way));
    mat3 to_eye = mat3(uView) * transpose(to_own);
    vTilt = vec4((to_eye * right).xy, (to_eye * up).xy) * vec4(uScreen.y * uScreen.z, 1.0, uScreen.y * uScreen.z, 1.0);

    vRim = max(aPlace.x, uRim);
    vec3 first = position - uBlades[0].xyz, second = position - uBlades[3].xyz;
    vSweeps = vec4(dot(first, uBlades[1].xyz), dot(first, uBlades[2].xyz),
                   dot(second, uBlades[4].xyz), dot(second, uBlades[5].xyz));
    vOff = vec2(dot(first, cross(uBlades[1].xyz, uBlades[2].xyz)),
                dot(second, cross(uBlades[4].xyz, uBlades[5].xyz)));
#endif
}
