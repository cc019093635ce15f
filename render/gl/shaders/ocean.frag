// SPDX-License-Identifier: MIT
// What the shading of the sea must know of a pixel, which it finds in the texel of the same place:
// several triangles of the fan cover most pixels, and only the last one there is worth shading.
in vec4 vWater;
in float vPatches;
out vec4 oWater;
void main() {
    oWater = vec4(vWater.xyz, pack(vWater.w, vPatches));
}
