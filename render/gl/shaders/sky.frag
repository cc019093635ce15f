// SPDX-License-Identifier: MIT
// What of the background is soft, for a picture of half the size: the clear sky, clouds before it and a
// bank of fog before both. Its opacity is the share that shows of what shines beyond them. VOLUME: clouds
// come later.
in vec2 vPlace;
uniform sampler2D uClearSky;
uniform vec4 uRay; // half width and height of the picture at unit distance, and its offset
out vec4 oColor;

void main() {
    vec2 n = vPlace * 2.0 - 1.0;
    vec3 d = normalize(transpose(mat3(uView)) * vec3(n * uRay.xy + uRay.zw, -1.0));
    vec3 lifted = d;
    lifted.z = d.z + uAir.w; // the sky reaches down to the dipped horizon
    vec3 c = texture(uClearSky, skyMapPlace(lifted)).rgb * uSky.x, haze = hazeColor(d.xy);
    vec4 clouds = vec4(0.0);
#ifndef VOLUME
    clouds = cloudsAbove(normalize(vec3(lifted.xy, max(lifted.z, 0.0))), haze, -1.0); // as sharp as in a whole one
#endif
    float clear = bankClearness(lifted.z);
    c = mix(haze, c * (1.0 - clouds.a) + clouds.rgb, clear);
    oColor = vec4(c, (1.0 - clouds.a) * clear);
}
