// SPDX-License-Identifier: MIT
// The sky on its way from one map to the next.
uniform sampler2D uBefore, uNow;
uniform float uShare; // of the map before
out vec4 oColor;
void main() {
    ivec2 place = ivec2(gl_FragCoord.xy);
    oColor = mix(texelFetch(uNow, place, 0), texelFetch(uBefore, place, 0), uShare);
}
