// SPDX-License-Identifier: MIT
// A trapezoid over all that a ship leaves on the water, seen from straight above; with HULL a
// rectangle over the hull and what it raises by itself.
uniform vec4 uHull[MOST_WAKES];   // place from the eye; unit vector ahead
uniform vec4 uMotion[MOST_WAKES]; // speed, length, beam, life of foam, s
uniform vec4 uMap;          // corner from the nadir, edge, reach of wakes per m/s
out vec2 vPlane;            // from the nadir, m
void main() {
    vec4 hull = uHull[gl_InstanceID], motion = uMotion[gl_InstanceID];
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
#ifdef HULL
    float room = HULL_WAVES * 2.0 * PI * motion.x * motion.x / 9.81;
    float along = (corner.y - 0.5) * motion.y + mix(-room, min(room, 12.0), corner.y);
    float across = (corner.x * 2.0 - 1.0) * (0.5 * motion.z + room);
#else
    float reach = motion.x * uMap.w;
    float along = mix(-0.5 * motion.y - reach, 0.5 * motion.y + 12.0, corner.y);
    float across = (corner.x * 2.0 - 1.0) * (2.0 * motion.z + 0.4 * (reach + motion.y) * (1.0 - corner.y));
#endif
    vPlane = hull.xy + hull.zw * along + vec2(hull.w, -hull.z) * across;
    gl_Position = vec4((vPlane - uMap.xy) / uMap.z * 2.0 - 1.0, CLIP_Z(0.5), 1.0);
}
