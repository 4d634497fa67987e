#version 120
// Tubes of a spatial graph. Each vertex of the unit-radius tube surface is
// pushed out from its centre point by radius x scale. Macros:
//   CONST_RADIUS  every radius is 1 (only "scale" sizes the tubes)
//   CONST_COLOR   the colour is the fixed-function colour (glColor)
//   RENDER_CAPS   drawing the end caps, one instance of a fan per cap:
//                 gl_Vertex.xy is the fan point in the plane of capAxisX and
//                 capAxisY, centerCoord.w the cap's radius, capNormal its normal
// Without CONST_COLOR the value "colorValue" is mapped through the window
// [min, min + range] onto the colormap (read in the fragment stage).

attribute vec4 centerCoord;
attribute float radius;
attribute float colorValue;
#ifdef RENDER_CAPS
attribute vec3 capNormal;
attribute vec3 capAxisX;
attribute vec3 capAxisY;
#endif

uniform float scale;
uniform float min;
uniform float range;

// Lighting is computed per vertex (the tubes are smooth and finely
// tessellated) and as few values as possible are interpolated, which keeps
// the fragment stage cheap on software renderers.
#ifdef CONST_COLOR
varying vec4 shadedColor;
#else
varying vec3 shading;  // diffuse factor per channel
varying float colormapCoord;
#endif

void main() {
#ifdef CONST_RADIUS
    float r = 1.0;
#elif defined(RENDER_CAPS)
    float r = centerCoord.w;
#else
    float r = radius;
#endif
    r = max(r, 0.0);
#ifdef RENDER_CAPS
    // Placed as the tube's end ring is (centre plus each axis in turn, then
    // minus the centre), so that the rims meet without cracks.
    vec3 rim = centerCoord.xyz + gl_Vertex.x * capAxisX + gl_Vertex.y * capAxisY;
    vec3 offset = rim - centerCoord.xyz;
#else
    vec3 offset = gl_Vertex.xyz - centerCoord.xyz;
#endif
    vec4 position = vec4(centerCoord.xyz + offset * (r * scale), 1.0);
#ifdef RENDER_CAPS
    vec3 normal = capNormal;
#else
    vec3 normal = offset;
#endif
    vec4 eye = gl_ModelViewMatrix * position;
    gl_Position = gl_ProjectionMatrix * eye;
    vec3 n = normalize(gl_NormalMatrix * normal);
    vec4 lightPosition = gl_LightSource[0].position;
    vec3 toLight = lightPosition.w == 0.0 ? normalize(lightPosition.xyz) : normalize(lightPosition.xyz - eye.xyz);
    // Light both sides: caps and tube ends can be seen from inside.
    float diffuse = abs(dot(n, toLight));
    // Ambient and diffuse only, like Coin's default material (no specular).
    vec3 diffuseFactor = 0.2 + 0.8 * diffuse * gl_LightSource[0].diffuse.rgb;
#ifdef KORVA_CLIP_PLANES
    gl_ClipVertex = eye;
#endif
#ifdef CONST_COLOR
    shadedColor = vec4(clamp(gl_Color.rgb * diffuseFactor, 0.0, 1.0), 1.0);
#else
    shading = diffuseFactor;
    // A range of 0 maps every value to the first entry. (The uniform "min"
    // hides the built-in min(), hence clamp.)
    colormapCoord = range > 0.0 ? clamp((colorValue - min) / range, 0.0, 1.0) : 0.0;
#endif
}
