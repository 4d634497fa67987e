#version 120
// Tubes of a spatial graph: colour from glColor (CONST_COLOR) or from the
// 256-entry colormap texture, shaded by the scene's first light.

uniform sampler1D colormap;

varying vec3 normalEye;
varying vec3 positionEye;
varying vec4 fixedColor;
varying float colormapCoord;

void main() {
#ifdef CONST_COLOR
    vec3 color = fixedColor.rgb;
#else
    // Texel centres: coordinate 0 hits the first entry, 1 the last.
    vec3 color = texture1D(colormap, (colormapCoord * 255.0 + 0.5) / 256.0).rgb;
#endif
    vec3 n = normalize(normalEye);
    vec4 lightPosition = gl_LightSource[0].position;
    vec3 toLight = lightPosition.w == 0.0 ? normalize(lightPosition.xyz)
                                          : normalize(lightPosition.xyz - positionEye);
    // Light both sides: caps and tube ends can be seen from inside.
    float diffuse = abs(dot(n, toLight));
    vec3 toEye = normalize(-positionEye);
    float specular = pow(max(dot(n, normalize(toLight + toEye)), 0.0), 40.0);
    vec3 lit = color * (0.2 + 0.8 * diffuse * gl_LightSource[0].diffuse.rgb) + 0.15 * specular;
    gl_FragColor = vec4(clamp(lit, 0.0, 1.0), 1.0);
}
