// SPDX-License-Identifier: MIT
// The scene outside in a few pixels, for drops that show it small and films that blur it. What is
// inside with the eye hides in them: in its place stand sky and ground.
in vec2 vPlace;
uniform sampler2D uPicture, uDepth;
uniform vec3 uNear; // near plane's and far one's distance, m; 1 where depth is reversed
uniform vec2 uTexel; // of the small picture
out vec4 oColor;
float outside(vec2 place) {
    float depth = textureLod(uDepth, place, 0.0).x;
    return uNear.z < 0.5 || uNear.x * uNear.y > 4.0 * (depth * (uNear.y - uNear.x) + uNear.x) ? 1.0 : 0.0;
}
void main() {
    vec3 ray = vec3((vPlace * 2.0 - 1.0 + uProjection[2].xy) / vec2(uProjection[0].x, uProjection[1].y), -1.0);
    vec3 way = transpose(mat3(uView)) * ray;
    vec3 sum = 0.02 * (way.z < 0.0 ? hazeColor(way.xy) * 0.25 : skyAt(way, 4.0));
    float weight = 0.02;
    for (int i = 0; i < 4; i++) {
        vec2 place = vPlace + (vec2(i & 1, i >> 1) - 0.5) * 0.5 * uTexel;
        float here = outside(place);
        sum += here * textureLod(uPicture, place, 0.0).rgb;
        weight += here;
    }
    oColor = vec4(sum / weight, 1.0);
}
