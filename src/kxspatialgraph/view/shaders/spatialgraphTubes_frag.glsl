#version 120
// Tubes of a spatial graph: colour from glColor (CONST_COLOR) or from the
// 256-entry colormap texture, shaded by the scene's first light (per vertex).

uniform sampler1D colormap;

varying vec3 diffuseFactor;
varying float specular;
varying vec4 fixedColor;
varying float colormapCoord;

void main() {
#ifdef CONST_COLOR
    vec3 color = fixedColor.rgb;
#else
    // Texel centres: coordinate 0 hits the first entry, 1 the last.
    vec3 color = texture1D(colormap, (colormapCoord * 255.0 + 0.5) / 256.0).rgb;
#endif
    gl_FragColor = vec4(clamp(color * diffuseFactor + specular, 0.0, 1.0), 1.0);
}
