// SPDX-License-Identifier: MIT
// The picture as a projector has to throw it: each place shows another one of it, dimmed where
// projectors overlap. What the mesh says counts as far as it says something.
in vec2 vPlace;
uniform sampler2D uPicture;
uniform sampler2D uMesh; // place times share, share: 0 where it shows nothing
uniform sampler2D uMask; // share of the light
out vec4 oColor;
void main() {
    vec3 mesh = texture(uMesh, vPlace).xyz;
    vec2 place = mesh.xy / max(mesh.z, 1e-6);
    bool shown = mesh.z > 0.5 && place == clamp(place, 0.0, 1.0);
    vec3 light = pow(texture(uMask, vPlace).rgb, vec3(1.0 / 2.2)); // the picture is not linear
    oColor = vec4(shown ? textureLod(uPicture, place, 0.0).rgb * light : vec3(0.0), 1.0);
}
