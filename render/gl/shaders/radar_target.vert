// SPDX-License-Identifier: MIT
layout(location = 0) in vec3 aPlace; // x, y, w in clip space
layout(location = 1) in float aStrength;
out float vStrength;
void main() {
    vStrength = aStrength;
    gl_Position = vec4(aPlace.xy, CLIP_Z(0.5) * aPlace.z, aPlace.z);
}
