// SPDX-License-Identifier: MIT
// Fast approximate anti-aliasing after Lottes (2009): blurs along edges found in the luma.
in vec2 vPlace;
uniform sampler2D uPicture;
uniform vec2 uTexel;
out vec4 oColor;
void main() {
    vec4 m = texture(uPicture, vPlace);
    vec2 h = uTexel * 0.75;
    float nw = texture(uPicture, vPlace + vec2(-h.x, h.y)).a, ne = texture(uPicture, vPlace + h).a;
    float sw = texture(uPicture, vPlace - h).a, se = texture(uPicture, vPlace + vec2(h.x, -h.y)).a;
    float low = min(m.a, min(min(nw, ne), min(sw, se))), high = max(m.a, max(max(nw, ne), max(sw, se)));
    if (high - low < max(0.05, high * 0.12)) {
        oColor = vec4(m.rgb, 1.0);
        return;
    }
    vec2 along = vec2((sw + se) - (nw + ne), (nw + sw) - (ne + se));
    float reduce = max((nw + ne + sw + se) * 0.03125, 0.0078);
    along = clamp(along / (min(abs(along.x), abs(along.y)) + reduce), -8.0, 8.0) * uTexel;
    vec3 a = 0.5 * (texture(uPicture, vPlace - along / 6.0).rgb + texture(uPicture, vPlace + along / 6.0).rgb);
    vec3 b = a * 0.5 + 0.25 * (texture(uPicture, vPlace - along * 0.5).rgb +
                               texture(uPicture, vPlace + along * 0.5).rgb);
    float luma = dot(b, vec3(0.3, 0.6, 0.1));
    oColor = vec4(luma < low || luma > high ? a : b, 1.0);
}
