// SPDX-License-Identifier: MIT
in vec2 vCorner;
in vec4 vColor;
in vec2 vSoft;
flat in float vKind;
flat in float vYouth;
uniform sampler2D uSheet; // 4 x 4 shapes: density, light
uniform sampler2D uDepth; // of the scene
uniform vec4 uNearFar;    // z: 1 where distances can be told from depth
out vec4 oColor;
void main() {
    // No depth is tested against, since it is read here: both at once no driver need allow.
    float depth = texelFetch(uDepth, ivec2(gl_FragCoord.xy), 0).x;
    float d = dot(vCorner, vCorner), a = max(1.0 - d, 0.0), light = 1.0;
    if (vKind > 1.5) {
        float cell = vKind - 2.0;
        vec2 place = (vec2(mod(cell, 4.0), floor(cell * 0.25)) + 0.5 + 0.484 * vCorner) * 0.25;
        vec2 shape = texture(uSheet, place).xy;
        // Old ones are eaten away from their thin parts.
        float eaten = 0.4 * vYouth;
        a = smoothstep(eaten, eaten + 0.6, shape.x);
        light = 0.72 + 0.56 * shape.y;
    } else if (vKind < -0.5) {
        a = 1.0 - vCorner.x * vCorner.x; // a cable: evenly along, softly across
    } else {
        a = vKind > 0.5 ? a * a * a * a + 1.5 * smoothstep(0.06, 0.02, d) : a * a;
    }
    if (vSoft.y > 0.0 && uNearFar.z > 0.5) {
        float behind = uNearFar.x * uNearFar.y / (depth * (uNearFar.y - uNearFar.x) + uNearFar.x);
        a *= clamp((behind - vSoft.x) / vSoft.y, 0.0, 1.0);
    }
    a = gl_FragCoord.z < depth ? 0.0 : a;
    oColor = vec4(vColor.rgb * light, vColor.a) * a;
}
