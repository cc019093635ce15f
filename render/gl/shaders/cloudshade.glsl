// SPDX-License-Identifier: MIT
// How much of the key light clouds let through to a place of E. They are hundreds of metres wide:
// vertices are enough to ask for.
uniform sampler2D uCloudField;
float cloudShade(vec3 p) {
    float below = uCloudShade.w - (p.z + uAir.z);
    vec2 place = uCloudPlace.xy + (p.xy + uCloudShade.xy * max(below, 0.0)) * uCloudPlace.z;
    float rise = textureLod(uCloudField, place, 1.0).r - uCloudLayer.z, soft = uCloudLayer.w + 0.25 * CLOUD_FRAY;
    return 1.0 - uCloudShade.z * smoothstep(-soft, soft, rise) * smoothstep(-uCloudLayer.y, 0.0, below);
}
