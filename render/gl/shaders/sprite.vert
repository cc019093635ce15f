// SPDX-License-Identifier: MIT
// Particles and lamps: squares that face the eye, or lie along their flight.
layout(location = 0) in vec4 aPlace;   // in the eye's frame; w: half the edge, m
layout(location = 1) in vec4 aColor;   // linear; w: opacity
layout(location = 2) in vec4 aShape;   // turn, rad; light of its own; 1 adds light only, 0 covers; kind:
// below 0 a cable, 0 a disc, 1 a lamp, from 2 on the shapes of the sheet
layout(location = 3) in vec4 aStretch; // half the length along the flight, m; zero: round; youth
out vec2 vCorner;
out vec4 vColor; // premultiplied
flat out float vKind;
flat out float vYouth;
out vec2 vSoft; // distance along the view; over how many metres it fades before what lies behind
void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0 - 1.0;
    vCorner = corner;
    vKind = aShape.w;
    vYouth = aStretch.w;
    bool isLamp = aShape.w > 0.5 && aShape.w < 1.5;
    vec3 p = aPlace.xyz;
    float range = length(p), size = aPlace.w, faint = 1.0;
    // Not thinner than most of a pixel: what is smaller gets fainter instead.
    float least = range * uTime.y * (aShape.w < 0.0 ? 1.0 : 0.7);
    if (size < least) {
        faint = size / least;
        faint = isLamp ? max(faint, 0.05) : aShape.w < 0.0 ? sqrt(faint) : (dot(aStretch.xyz, aStretch.xyz) > 0.0 ? faint : faint * faint);
        size = least;
    }
    // A lamp is seen however far: its light spreads in the eye.
    if (aShape.w > 0.5 && aShape.w < 1.5) {
        size = max(size, range * uTime.y * 1.7);
        faint = max(faint, 0.3);
    }
    vec3 eye = mat3(uView) * p;
    if (dot(aStretch.xyz, aStretch.xyz) > 0.0) {
        vec3 along = mat3(uView) * aStretch.xyz;
        vec3 side = normalize(cross(along, eye) + vec3(1e-6, 0.0, 0.0));
        eye += along * corner.y + side * (corner.x * size);
    } else {
        float s = sin(aShape.x), c = cos(aShape.x);
        eye.xy += mat2(c, s, -s, c) * corner * size;
    }
    float sunlit = isLamp ? 0.0 : 0.17 * (1.0 + 0.5 * corner.y) * cloudShade(p) * lightReachingOnce(p);
    vec3 lit = aColor.rgb * (uAmbient.rgb * 0.9 + uLight.rgb * sunlit);
#ifdef LIGHTS
    lit += aColor.rgb * (0.25 * lampAround(p));
#endif
    // Lamps keep their look whatever the exposure; by day they drown.
    vec3 own = aColor.rgb * aShape.y * pow(0.3 / uLight.w, 0.8);
    vec3 color = (isLamp ? own : lit + own);
    float clear = clearness(p), opacity = aColor.a * faint;
    color = mix((1.0 - aShape.z) * hazeColor(p.xy), color, clear);
    vColor = vec4(color * opacity, (1.0 - aShape.z) * opacity);
    vSoft = vec2(-eye.z, isLamp || dot(aStretch.xyz, aStretch.xyz) > 0.0 ? 0.0 : 0.6 * size);
    gl_Position = uProjection * vec4(eye, 1.0);
}
