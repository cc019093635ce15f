// SPDX-License-Identifier: MIT
in vec3 vPosition;
in vec3 vNormal;
in vec2 vPlace;
in vec3 vHaze;
in vec3 vOwn;
uniform vec4 uColor;      // w: opacity
uniform vec4 uSurface;    // roughness, metalness, emission, whether opaque
uniform vec4 uCover;      // wetness, ice, rain on glass, wiper
out vec4 oColor;

// Drops that run down a pane: tilts the normal and scatters light.
vec3 rainOnGlass(vec3 normal, inout float opacity) {
    vec2 cell = vOwn.xz * 34.0 + vec2(0.0, uTime.x * (0.6 + 0.8 * uCover.w));
    vec2 id = floor(cell), within = fract(cell) - 0.5;
    float there = step(1.0 - 0.75 * uCover.z * (1.0 - 0.7 * uCover.w), hash(id));
    float drop = there * smoothstep(0.42, 0.1, length(within));
    opacity = mix(opacity, max(opacity, 0.45), drop * 0.8);
    opacity = max(opacity, 0.25 * uCover.z * (1.0 - uCover.w));
    return normalize(normal + drop * vec3(within.x, within.y, 0.0) * 2.0);
}

void main() {
    float range = length(vPosition);
    vec3 toEye = -vPosition / range;
    vec3 normal = normalize(vNormal);
    if (!gl_FrontFacing) normal = -normal;
    vec3 albedo = uColor.rgb;
    float opacity = uColor.a, rough = uSurface.x, metal = uSurface.y;
    if (uCover.z > 0.0 && opacity < 0.999) normal = rainOnGlass(normal, opacity);
    float wet = uCover.x * smoothstep(0.2, 0.9, normal.z), ice = uCover.y * smoothstep(0.0, 0.7, normal.z);
    albedo = mix(albedo * (1.0 - 0.5 * wet), vec3(0.62, 0.70, 0.76), ice * 0.8);
    rough = mix(mix(rough, 0.12, wet), 0.22, ice * 0.8);

    vec3 light = uLight.rgb * lightReaching(vPosition + normal * 0.03);
    vec3 toLight = uLightDirection.xyz;
    float facing = max(dot(normal, toLight), 0.0);
    // The sky lights what looks up, the ground's reflection what looks down.
    vec3 ambient = uAmbient.rgb * mix(vec3(0.30, 0.34, 0.36), vec3(1.0), normal.z * 0.5 + 0.5);

    // Trowbridge-Reitz highlight with Schlick's Fresnel term.
    vec3 f0 = mix(vec3(0.04), albedo, metal);
    float view = max(dot(toEye, normal), 0.0);
    vec3 fresnel = f0 + (max(vec3(1.0 - rough), f0) - f0) * pow(1.0 - view, 5.0);
    vec3 half_way = normalize(toEye + toLight);
    float alpha = max(rough * rough, 0.02), a2 = alpha * alpha;
    float nh = max(dot(normal, half_way), 0.0);
    float q = nh * nh * (a2 - 1.0) + 1.0;
    float lobe = min(a2 / (PI * q * q), 60.0);
    vec3 mirrored = reflect(-toEye, normal);
    vec3 environment = skyAt(mirrored, mix(1.0, 5.5, rough)) * (mirrored.z < 0.0 ? 0.22 : 1.0);

    vec3 diffuse = albedo * (1.0 - metal) * (ambient + light * facing / PI);
    vec3 specular = light * facing * lobe * fresnel * 0.25 + environment * fresnel * mix(1.0, 0.3, rough);
    vec3 glow = uColor.rgb * uSurface.z;
    float clear = clearness(vPosition);
    if (uSurface.w > 0.5) {
        oColor = vec4(mix(vHaze, diffuse + specular + glow, clear), 1.0);
    } else { // premultiplied: a pane keeps its reflections however clear it is
        float a = clamp(opacity + fresnel.g * 0.8, 0.0, 1.0);
        vec3 color = diffuse * opacity + specular + glow * opacity;
        oColor = vec4(mix(vHaze * a, color, clear), a);
    }
}
