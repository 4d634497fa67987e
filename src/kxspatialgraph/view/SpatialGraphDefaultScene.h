#pragma once

class KxSpatialGraph;
class SoSeparator;

// The picture of a graph that `korva render` draws: every edge as a tube of
// constant colour, radius from the point attribute "thickness" when the graph
// has one as float, else 1% of the graph's largest extent. GPU tubes when the
// driver has shaders and buffer objects (and KORVA_LEGACY_TUBES is not set),
// legacy tubes of faces otherwise, after the view's fallback message.
class SpatialGraphDefaultScene {
public:
    // A new scene (reference count 0), or null without a graph. The tubes
    // borrow the graph's points: the graph must outlive the scene.
    static SoSeparator* build(const KxSpatialGraph* graph);
    // Registers build() as the default scene of the class "KxSpatialGraph".
    static void registerBuilder();
};
