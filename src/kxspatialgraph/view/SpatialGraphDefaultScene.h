#pragma once

#include "korva/viewer/KxSceneBuilders.h"

class GraphAttribute;
class KxColormap;
class KxSpatialGraph;
class SoSeparator;

// The picture of a graph that `korva render` draws, made by a graph view
// (KxSpatialGraphView): every edge as a tube of constant colour, radius from
// the float point attribute named in the options or else "thickness" when the
// graph has one, else 1% of the graph's largest extent; nodes as spheres one
// and a half times as thick as the thickest tube when asked. GPU tubes when the driver has shaders and buffer
// objects (and KORVA_LEGACY_TUBES is not set), legacy tubes of faces otherwise, after the view's fallback
// message. Coloured by a point or edge attribute or a label group instead, when asked: an int attribute with
// a label group takes its label colours, any other one the colormap over its values' range.
class SpatialGraphDefaultScene {
public:
    // A new scene (reference count 0), or null without a graph or (after an
    // "Error: " line) when the options name nothing the tubes can be coloured
    // or scaled by. The tubes borrow the graph's points: the graph must outlive the scene.
    static SoSeparator* build(const KxSpatialGraph* graph, const KxSceneOptions& options = {});
    // The point attribute named so, else the edge attribute, else the point
    // or edge attribute tied to the label group of that name; null if none.
    static const GraphAttribute* findColorAttribute(const KxSpatialGraph& graph, const char* name);
    // The colours of attr for the tube set: its label colours by id (over
    // 0..255, or 0..largest id when that is larger) when it is tied to a label
    // group, else a blue-to-red ramp over the range of its first component.
    static KxColormap colormapFor(const KxSpatialGraph& graph, const GraphAttribute* attr);
    // Registers build() as the default scene of the class "KxSpatialGraph".
    static void registerBuilder();
};
