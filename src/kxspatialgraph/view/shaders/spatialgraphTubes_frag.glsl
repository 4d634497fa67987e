#version 120
// Tubes of a spatial graph: colour from glColor (CONST_COLOR) or from the
// 256-entry colormap texture, shaded by the scene's first light (per vertex).

uniform sampler1D colormap;

#ifdef CONST_COLOR
varying vec4 shadedColor;
#else
varying vec3 shading;  // diffuse factor per channel
varying float colormapCoord;
#endif

void main() {
#ifdef CONST_COLOR
    gl_FragColor = shadedColor;
#else
    // Texel centres: coordinate 0 hits the first entry, 1 the last.
    vec3 color = texture1D(colormap, (colormapCoord * 255.0 + 0.5) / 256.0).rgb;
    gl_FragColor = vec4(clamp(color * shading, 0.0, 1.0), 1.0);
#endif
}
