// SPDX-License-Identifier: MIT
layout(location = 0) in vec4 aPlace; // pixels from the top left corner; place in the texture
layout(location = 1) in vec4 aColor; // straight opacity
uniform vec2 uSize;                  // of the picture, pixels
out vec2 vPlace;
out vec4 vColor;
void main() {
    vPlace = aPlace.zw;
    vColor = aColor;
    gl_Position = vec4(aPlace.x / uSize.x * 2.0 - 1.0, 1.0 - aPlace.y / uSize.y * 2.0, CLIP_Z(0.5), 1.0);
}
