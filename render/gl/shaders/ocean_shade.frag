// SPDX-License-Identifier: MIT
// Light on the sea, once for each pixel that the fan has marked: the slopes that the picture can
// resolve tilt the mirror, those that it can't widen it; whitecaps lie on top. Comes after the texts
// of its steps.
in vec3 vAcross;
uniform vec4 uAhead; // E: along the view axis; w: 1 where lines of sight part with the distance
uniform sampler2D uWater;
out vec4 oColor;

Water readWater() {
    vec4 texel = texelFetch(uWater, ivec2(gl_FragCoord.xy), 0);
    Water w;
    w.position = vAcross * mix(1.0, texel.x, uAhead.w) + uAhead.xyz * texel.x;
    vec2 rest = w.position.xy - texel.yz, both = unpack(texel.w);
    w.plane = toPlane(rest);
    w.height = w.position.z - levelAt(length(rest));
    w.divergence = both.x;
    w.patches = both.y;
    float range = length(w.position);
    w.toEye = -w.position / range;
    w.footprint = range * uTime.y;
    // As neighbours in the picture tell; where those are another wave, or show no water now but what
    // an earlier picture left in the texture, at least and at most what level water covers.
    vec2 across = abs(dFdx(w.plane)), along = abs(dFdy(w.plane));
    float covered = max(max(across.x, across.y), max(along.x, along.y));
    float level_water = w.footprint / clamp(w.toEye.z, 0.01, 1.0);
    w.level = log2(clamp(covered, w.footprint * 0.7, level_water * 1.5));
    return w;
}

void main() {
    Water w = readWater();
    Sea sea = waves(w);
#ifdef STORM
    addRipples(w, sea);
#endif
    float torn_off = 0.0;
#ifdef WAKES
    torn_off = addWakes(w, sea);
#endif
#ifdef DOWNWASH
    torn_off = max(torn_off, addDownwash(w, sea));
#endif
    vec3 light = uLight.rgb * cloudShade(w.position);
#ifdef SHADOWS
    light *= lightReachingOnce(w.position); // waves hide how soft its edge is
#endif
    vec3 normal = normalize(vec3(-sea.slope, 1.0));
    float c = max(dot(normal, w.toEye), 0.02), sigma = sqrt(sea.variance);
    vec3 color = mix(body(w, light, c), mirroredSky(w, normal, c, sea.variance, sigma),
                     reflectance(c, sea.variance, sigma));
    Sea facets = sea;
#ifdef STORM
    facets = sparkling(w, sea);
#endif
    color += light * glitterOf(uLightDirection.xyz, w, facets, c);
    Foam foam = foamAt(w, sea, torn_off);
#ifdef STORM
    color += milk(foam, light);
#endif
    vec3 white = foamColor(foam, normal, light);
#ifdef LIGHTS
    color += lampGlitter(w, facets, c);
    white += lampLight(w.position, normal) * (0.62 + 0.2 * foam.lace);
#endif
    color = mix(color, white, foam.share);
    oColor = vec4(mix(hazeColor(w.position.xy), color, clearness(w.position)), 1.0);
}
