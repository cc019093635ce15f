// SPDX-License-Identifier: MIT
// The radar's fan. The picture that comes in shows the surroundings from above, the radar in its
// middle, ahead up, its range at the edges. What goes out shows the half ahead: the radar at the
// middle of the lower edge, its range short of the upper edge, shapes kept. Angles are degrees
// clockwise from the left.
in vec2 vPlace;
uniform sampler2D uPicture;
uniform vec2 uSize;
uniform float uSceneTime;
uniform int fan;          // 1: only the sector from min_angle to max_angle, with its bounds
uniform vec4 min_angle, max_angle;
uniform vec4 rings;       // number of them
uniform vec4 sweep_rate;  // of the antenna, degrees per second; 0: it shows everything at once
uniform vec4 persistence; // seconds in which an echo fades after the antenna has passed
out vec4 oColor;

const float RADIUS = 0.94; // of the outer ring, heights of the picture
const float BEAM = 0.013;  // half the antenna's beam, rad
const vec3 GREEN = vec3(0.13, 1.0, 0.35);

// The echo at a place of the fan, 1 at the outer ring, smeared over the width of the beam.
float echoAt(vec2 p) {
    vec2 side = vec2(p.y, -p.x) * BEAM;
    float echo = texture(uPicture, 0.5 + 0.5 * p).g;
    float beside = max(texture(uPicture, 0.5 + 0.5 * (p + side)).g,
                       texture(uPicture, 0.5 + 0.5 * (p - side)).g);
    return max(echo, 0.8 * beside);
}

// A line one and a half pixels wide; distance in pixels.
float line(float distance) { return clamp(1.25 - abs(distance), 0.0, 1.0); }

// Of the line from the apex at that angle; p in pixels from the apex.
float boundary(vec2 p, float angle) {
    vec2 direction = vec2(-cos(radians(angle)), sin(radians(angle)));
    return dot(p, direction) > 0.0 ? line(p.x * direction.y - p.y * direction.x) : 0.0;
}

// The antenna swings to and fro between the bounds. What it has just passed is bright.
float freshness(float share, float width) {
    if (sweep_rate.x <= 0.0 || width <= 0.0) return 1.0;
    float swing = width / sweep_rate.x;
    float age = min(mod(uSceneTime - share * swing, 2.0 * swing), mod(uSceneTime + share * swing, 2.0 * swing));
    return 0.7 + 0.3 * exp(-age / max(persistence.x, 0.01));
}

void main() {
    vec2 pixels = vec2((vPlace.x - 0.5) * uSize.x, vPlace.y * uSize.y);
    float radius = RADIUS * uSize.y;
    vec2 p = pixels / radius;
    float range = length(p);
    float angle = degrees(atan(p.y, -p.x));
    float width = clamp(max_angle.x - min_angle.x, 0.0, 360.0);
    bool whole = fan == 0 || width >= 360.0;
    float first = whole ? 0.0 : min_angle.x, sector = whole ? 180.0 : width;
    float beyond = mod(angle - first, 360.0); // the sector's first bound
    bool in_sector = whole || beyond <= sector;

    float light = 0.0;
    if (in_sector && range <= 1.0)
        light = 0.05 + 0.95 * echoAt(p) * freshness(beyond / max(sector, 1.0), sector);
    float number = max(rings.x, 1.0);
    float ring = (fract(range * number + 0.5) - 0.5) / number; // beyond the nearest one
    if (in_sector && rings.x > 0.0 && range > 0.5 / number && range < 1.0 + 1.0 / radius)
        light += line(ring * radius) * max(0.5 - light, 0.12); // seen over echoes too
    if (!whole && range <= 1.0)
        light = max(light, 0.8 * max(boundary(pixels, min_angle.x), boundary(pixels, max_angle.x)));
    oColor = vec4(GREEN * light, 1.0);
}
