// SPDX-License-Identifier: MIT
// The sky on its way from one map to the next.
uniform sampler2D uClearBefore, uClearNow, uBefore, uNow;
uniform float uShare; // of the map before
layout(location = 0) out vec4 oClear;
layout(location = 1) out vec4 oColor;
void main() {
    ivec2 place = ivec2(gl_FragCoord.xy);
    oClear = mix(texelFetch(uClearNow, place, 0), texelFetch(uClearBefore, place, 0), uShare);
    oColor = mix(texelFetch(uNow, place, 0), texelFetch(uBefore, place, 0), uShare);
}
