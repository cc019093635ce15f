// SPDX-License-Identifier: MIT
in vec3 vPlace;
in vec3 vAmbient, vLight;
in vec3 vNormal;
flat in vec4 vHaze;
flat in vec4 vSurface;
uniform sampler2DArray uPictures;
out vec4 oColor;
void main() {
    vec4 texel = texture(uPictures, vPlace);
    if (texel.a < vSurface.y) discard;
    vec3 albedo = texel.rgb / texel.a, normal = normalize(vNormal);
    albedo *= albedo * vSurface.x;
    albedo = mix(albedo, vec3(0.62, 0.70, 0.76), vSurface.z * 0.8 * smoothstep(0.0, 0.7, normal.z));
    float facing = max(dot(normal, uLightDirection.xyz), 0.0);
    vec3 color = albedo * (vAmbient * mix(0.33, 1.0, normal.z * 0.5 + 0.5) + vLight * facing);
    oColor = vec4(mix(vHaze.rgb, color, vHaze.w), 1.0);
}
