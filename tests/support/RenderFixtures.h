#pragma once

#include <string>
#include <vector>

#include <Inventor/SbColor.h>

class SoNode;
class SoSeparator;
class KxOffscreenRenderer;

// Scenes for pixel tests: an orthographic camera looking down -z from z = 50
// at the square x, y in [-5, 5], which fills a 100 × 100 picture (one pixel per
// 0.1 units, pixel (50, 50) at the origin, y up), lit by a light along the
// view direction. Add content to the returned separator (ref'd once).
SoSeparator* makePixelScene();

// Pixel column and row of world point (x, y) in a makePixelScene picture.
int pixelColumn(float x);
int pixelRow(float y);

// True when pixel (x, y) is within tolerance (0..255 units) of the colour;
// otherwise false with a description in why.
bool pixelNear(const KxOffscreenRenderer& renderer, int x, int y, const SbColor& colour, int tolerance,
               std::string& why);

// Dominant channel test for lit surfaces whose brightness varies: the
// channels that are 1 in colour are at least 100, the others at most 60.
bool pixelHue(const KxOffscreenRenderer& renderer, int x, int y, const SbColor& colour, std::string& why);

// Whether the picture is covered (not black) at world points (x, y) for each y of ys.
std::vector<bool> coverage(const KxOffscreenRenderer& renderer, float x, const std::vector<float>& ys);

// A file path under the test build's temporary folder.
std::string testOutputPath(const char* name);
