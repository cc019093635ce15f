// SPDX-License-Identifier: MIT
// Surfaces of models. One of these words is defined: PLAIN; TEXTURED: with a picture; PAVED: dry slabs
// of concrete or lanes of asphalt; SOAKED: the same when wet or icy; PAINTED: markings with soft edges;
// DECAL: pictures that lie on what is below; GLASS: what lets light through; ROTOR: blades at speed;
// MAPPED: with what further words say: BASE_MAP, NORMAL_MAP, METALLIC_ROUGHNESS_MAP, EMISSIVE_MAP,
// OCCLUSION_MAP: these pictures; with _SECOND for _MAP, by the second texture coordinates; SHARED:
// occlusion in the picture of the roughness; GLOWING; COLORED by its vertices; MASKED: with holes;
// BLENDED: as opaque as its picture.
#if defined(PAVED) || defined(PAINTED) || defined(DECAL) || defined(ROTOR)
#define MATTE // mirrors nothing, which is half of the cost
#endif
in vec3 vPosition;
in vec3 vNormal;
in vec2 vPlace;
flat in vec3 vHaze;
in float vSun;
in vec3 vOwn;
in float vHillTop;
in float vDim;
uniform vec4 uColor;      // w: opacity
uniform vec4 uSurface;    // roughness, metalness, emission, width over which paint frays, m
uniform vec4 uCover;      // wetness, ice, rain on glass
uniform vec4 uPaving;     // slab's edges along x and y, m; half a joint, m; spread of tones
uniform sampler2D uNoise;
out vec4 oColor;

#if defined(TEXTURED) || defined(MAPPED)
in vec3 vOwnNormal;
uniform sampler2D uTexture;
uniform float uTiles;     // pictures per metre; 0: by texture coordinates
vec2 place() {
    vec3 side = abs(vOwnNormal);
    vec2 own = side.z > max(side.x, side.y) ? vOwn.xy : side.x > side.y ? vOwn.yz : vOwn.xz;
    return uTiles > 0.0 ? own * uTiles : vPlace;
}
#endif

#ifdef MAPPED
#ifdef SECOND
in vec2 vSecond;
#endif
#ifdef COLORED
in vec4 vColor;
#endif
#ifdef NORMAL_SECOND
#define NORMAL_PLACE vSecond
#else
#define NORMAL_PLACE p
#endif
#ifdef METALLIC_ROUGHNESS_SECOND
#define METALLIC_ROUGHNESS_PLACE vSecond
#else
#define METALLIC_ROUGHNESS_PLACE p
#endif
#ifdef EMISSIVE_SECOND
#define EMISSIVE_PLACE vSecond
#else
#define EMISSIVE_PLACE p
#endif
#ifdef OCCLUSION_SECOND
#define OCCLUSION_PLACE vSecond
#else
#define OCCLUSION_PLACE p
#endif
uniform sampler2D uNormal, uMetallicRoughness, uEmissive, uOcclusion;
uniform vec4 uFinish;     // strength of the bumps and of the occlusion; opacity below which nothing is there
uniform vec3 uGlow;

#ifdef NORMAL_MAP
// The normal that a picture bends: right, up and out of it are red, green and blue. Where these lie on
// the surface the pixels beside this one tell, so that meshes need no tangents (C. Schueler, "Normal
// mapping without precomputed tangents").
vec3 bend(vec3 normal, vec2 p) {
    vec3 bump = texture(uNormal, p).xyz * 2.0 - 1.0;
    vec3 dx = dFdx(vPosition), dy = dFdy(vPosition);
    vec2 px = dFdx(p), py = dFdy(p);
    vec3 a = cross(dy, normal), b = cross(normal, dx);
    vec3 right = a * px.x + b * py.x, up = a * px.y + b * py.y;
    float size = max(dot(right, right), dot(up, up));
    if (size < 1e-30) return normal; // all of the mesh at one place of the picture
    return normalize((right * bump.x + up * bump.y) * (uFinish.x * inversesqrt(size)) + normal * bump.z);
}
#endif
#endif

#ifdef DECAL
uniform sampler2D uTexture;
#endif

#if defined(PAVED) || defined(SOAKED)
// Share of a pixel that a joint covers, for each of the two directions; w: size of the pixel, m.
vec2 joints(vec2 p, vec2 w) {
    vec2 cell = p / uPaving.xy;
    vec2 away = (0.5 - abs(fract(cell) - 0.5)) * uPaving.xy;
    return clamp((uPaving.z - away) / w + 0.5, 0.0, 1.0) - clamp((-uPaving.z - away) / w + 0.5, 0.0, 1.0);
}
// Tone of the paving: slabs that were poured on different days, stains, grain, and joints.
// `puddle`: 1 where water stays.
float paving(vec2 p, out float puddle) {
    vec2 w = fwidth(p) + 1e-4;
    float wide = texture(uNoise, p / 173.0).y;
    float middle = texture(uNoise, p.yx / 31.0).y;
    float fine = texture(uNoise, p / 1.7).y;
    vec2 slab = floor(p / uPaving.xy);
    float poured = (hash(slab) - 0.5) * clamp(1.5 - 2.0 * max(w.x / uPaving.x, w.y / uPaving.y), 0.0, 1.0);
    float tone = 0.88 + 0.24 * (wide - 0.5) + uPaving.w * poured + 0.17 * (fine - 0.5);
    tone *= 1.0 - 0.30 * smoothstep(0.66, 0.95, middle * 0.7 + fine * 0.3);
    vec2 gap = joints(p, w);
    puddle = smoothstep(0.45, 0.75, wide * 0.35 + middle * 0.35 + fine * 0.3);
    return tone * (1.0 - 0.55 * max(gap.x, gap.y));
}
#endif

#ifdef PAINTED
// The first texture coordinate is the distance from the edge, m, inwards positive: covered is what
// of the pixel lies within. Paint that frays ends where noise lets it. `tone`: of the worn paint.
float coverage(out float tone) {
    float fray = uSurface.w, wear = texture(uNoise, vOwn.xy / 2.3).y, flake = texture(uNoise, vOwn.yx / 0.4).y;
    tone = 0.7 + 0.3 * wear + 0.3 * flake;
    float w = fwidth(vPlace.x) + 1e-4;
    float inside = vPlace.x + fray * (0.7 * wear + 0.5 * flake - 0.9);
    float solid = clamp(inside / (w + 0.5 * fray) + 0.5, 0.0, 1.0);
    return solid * (1.0 - 0.55 * smoothstep(0.55, 0.95, 0.6 * wear + 0.4 * flake));
}
#endif

#ifdef ROTOR
uniform vec4 uRotor; // radius, chord, m; blades; 1 where it turns about its own X, not Z
// Share of the time for which blades cover this place. Smeared over the eye's moment, each shows as
// a soft lobe; towards the tip they thin out and end softly.
float blades() {
    vec2 p = uRotor.w > 0.5 ? vOwn.yz : vOwn.xy;
    float r = length(p), R = uRotor.x;
    float mean = uRotor.y * uRotor.z / (2.0 * PI * max(r, 0.2 * R));
    float lobe = 1.0 + 0.7 * smoothstep(0.05 * R, 0.4 * R, r) * cos(uRotor.z * atan(p.y, p.x));
    return mean * lobe * smoothstep(R, 0.9 * R, r);
}
#endif

void main() {
    float range = length(vPosition);
    vec3 toEye = -vPosition / range;
    vec3 normal = normalize(vNormal);
    if (!gl_FrontFacing) normal = -normal;
    vec3 albedo = uColor.rgb;
    float opacity = uColor.a, rough = uSurface.x, metal = uSurface.y;
    float soaked = uCover.x;
#ifdef GLASS
    opacity = max(opacity, 0.25 * uCover.z); // what is wet scatters; glass.frag shows drops nearby
#endif
#ifdef TEXTURED
    albedo *= texture(uTexture, place()).rgb;
#endif
    // What shines by itself looks nearly the same to an eye used to the dark and to one that isn't.
    vec3 glow = uColor.rgb * (uSurface.z * uTime.w);
#ifdef MAPPED
    vec2 p = place();
    float seen = 1.0; // of the sky
#ifdef COLORED
    albedo *= vColor.rgb;
    opacity *= vColor.a;
#endif
#ifdef BASE_MAP
    vec4 base = texture(uTexture, p);
    albedo *= base.rgb;
    opacity *= base.a;
#endif
#ifdef NORMAL_MAP
    normal = bend(normal, NORMAL_PLACE);
#endif
#ifdef METALLIC_ROUGHNESS_MAP
    vec3 finish = texture(uMetallicRoughness, METALLIC_ROUGHNESS_PLACE).rgb;
    rough *= finish.g;
    metal *= finish.b;
#endif
#ifdef SHARED
    seen = mix(1.0, finish.r, uFinish.y);
#elif defined(OCCLUSION_MAP)
    seen = mix(1.0, texture(uOcclusion, OCCLUSION_PLACE).r, uFinish.y);
#endif
#ifdef EMISSIVE_MAP
    glow += uGlow * uTime.w * texture(uEmissive, EMISSIVE_PLACE).rgb;
#elif defined(GLOWING)
    glow += uGlow * uTime.w;
#endif
#ifdef MASKED
    if (opacity < uFinish.z) discard;
#endif
#endif
#if defined(PAVED) || defined(SOAKED)
    float puddle;
    albedo *= paving(vOwn.xy, puddle);
    soaked *= 0.45 + 0.55 * puddle;
#endif
#ifdef DECAL
    vec4 texel = texture(uTexture, vPlace);
    albedo *= texel.rgb;
    opacity *= texel.a;
#endif
#ifdef ROTOR
    opacity = min(opacity * blades(), 0.7);
#endif
#ifdef PAINTED
    float tone;
    opacity *= coverage(tone);
    albedo *= tone;
#endif
    float wet = soaked * smoothstep(0.2, 0.9, normal.z), ice = uCover.y * smoothstep(0.0, 0.7, normal.z);
    albedo = mix(albedo * (1.0 - 0.5 * wet), vec3(0.62, 0.70, 0.76), ice * 0.8);
    rough = mix(mix(rough, 0.12, wet), 0.22, ice * 0.8);

    vec3 light = uLight.rgb * vSun * lightReaching(vPosition + normal * 0.03);
    light *= 1.0 - hillShade(vHillTop - vPosition.z) * uLightDirection.w;
    vec3 toLight = uLightDirection.xyz;
    float facing = max(dot(normal, toLight), 0.0);
    // The sky lights what looks up, the ground's reflection what looks down.
    vec3 ambient = uAmbient.rgb * mix(vec3(0.30, 0.34, 0.36), vec3(1.0), normal.z * 0.5 + 0.5);
#ifdef MAPPED
    ambient *= seen;
#endif

    vec3 diffuse = albedo * (1.0 - metal) * (ambient + light * facing / PI);
#ifdef LIGHTS
    vec3 shine = vec3(0.0);
#ifdef MATTE
    diffuse += albedo * lampLight(vPosition, normal);
#else
    diffuse += albedo * (1.0 - metal) * lampLight(vPosition, normal, toEye, max(rough * rough * rough * rough, 4e-4), shine);
#endif
#endif
    float clear = exp(-vDim * range);
#ifdef MATTE
    vec3 specular = vec3(0.0);
#else
    // Trowbridge-Reitz highlight with Schlick's Fresnel term.
    vec3 f0 = mix(vec3(0.04), albedo, metal);
    float view = max(dot(toEye, normal), 0.0), away = 1.0 - view, away2 = away * away;
    vec3 fresnel = f0 + (max(vec3(1.0 - rough), f0) - f0) * (away2 * away2 * away);
    vec3 half_way = normalize(toEye + toLight);
    float alpha = max(rough * rough, 0.02), a2 = alpha * alpha;
    float nh = max(dot(normal, half_way), 0.0);
    float q = nh * nh * (a2 - 1.0) + 1.0;
    float lobe = min(a2 / (PI * q * q), 60.0);
    vec3 mirrored = reflect(-toEye, normal);
    vec3 environment = skyAt(mirrored, mix(1.0, 5.5, rough)) * (mirrored.z < 0.0 ? 0.22 : 1.0);
#ifdef MAPPED
    environment *= seen;
#endif
    vec3 specular = light * facing * lobe * fresnel * 0.25 + environment * fresnel * mix(1.0, 0.3, rough);
#ifdef LIGHTS
    specular += shine * fresnel;
#endif
#endif
#if defined(GLASS) // premultiplied: a pane keeps its reflections however clear it is
    float a = clamp(opacity + fresnel.g * 0.8, 0.0, 1.0);
    vec3 color = diffuse * opacity + specular + glow * opacity;
    oColor = vec4(mix(vHaze * a, color, clear), a);
#elif defined(PAINTED) || defined(DECAL) || defined(ROTOR) || defined(BLENDED)
    oColor = vec4(mix(vHaze, diffuse + specular + glow, clear) * opacity, opacity);
#else
    oColor = vec4(mix(vHaze, diffuse + specular + glow, clear), 1.0);
#endif
}
