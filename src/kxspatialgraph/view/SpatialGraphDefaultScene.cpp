#include "kxspatialgraph/view/SpatialGraphDefaultScene.h"

#include <algorithm>
#include <string>

#include <Inventor/nodes/SoSeparator.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/data/KxColormap.h"
#include "korva/viewer/KxSceneBuilders.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/view/KxSpatialGraphView.h"

namespace {

float largestExtent(const KxSpatialGraph& graph) {
    Vec3f lo(1e30f, 1e30f, 1e30f), hi(-1e30f, -1e30f, -1e30f);
    auto extend = [&](const Vec3f& p) {
        for (int c = 0; c < 3; ++c) {
            lo[c] = std::min(lo[c], p[c]);
            hi[c] = std::max(hi[c], p[c]);
        }
    };
    for (int v = 0; v < graph.getNumVertices(); ++v) {
        extend(graph.getVertexCoords(v));
    }
    for (int e = 0; e < graph.getNumEdges(); ++e) {
        int n = 0;
        const Vec3f* points = graph.getEdgePoints(e, n);
        std::for_each(points, points + n, extend);
    }
    return std::max({hi[0] - lo[0], hi[1] - lo[1], hi[2] - lo[2], 0.0f});
}

// The range of the first component of attr's values; (0, 1) without values.
void valueRange(const GraphAttribute* attr, float& lo, float& hi) {
    lo = 1e30f;
    hi = -1e30f;
    bool isInt = attr->getPrimType() == PrimType::INT32;
    size_t stride = static_cast<size_t>(attr->getElementSize());
    const auto* bytes = static_cast<const unsigned char*>(attr->dataPtr());
    for (int i = 0; i < attr->size(); ++i) {
        const unsigned char* value = bytes + static_cast<size_t>(i) * stride;
        float v = isInt ? static_cast<float>(*reinterpret_cast<const int*>(value))
                        : *reinterpret_cast<const float*>(value);
        lo = std::min(lo, v);
        hi = std::max(hi, v);
    }
    if (lo > hi) {
        lo = 0.0f;
        hi = 1.0f;
    }
}

}  // namespace

const GraphAttribute* SpatialGraphDefaultScene::findColorAttribute(const KxSpatialGraph& graph,
                                                                   const char* name) {
    if (const GraphAttribute* a = graph.findEdgePointAttribute(name)) {
        return a;
    }
    if (const GraphAttribute* a = graph.findEdgeAttribute(name)) {
        return a;
    }
    const HierarchicalLabels* group = graph.getLabelGroup(name);
    for (KxSpatialGraph::Location loc : {KxSpatialGraph::POINT, KxSpatialGraph::EDGE}) {
        for (int i = 0; group && i < graph.numAttributes(loc); ++i) {
            if (graph.getLabelGroup(graph.attribute(loc, i)) == group) {
                return graph.attribute(loc, i);
            }
        }
    }
    return nullptr;
}

KxColormap SpatialGraphDefaultScene::colormapFor(const KxSpatialGraph& graph, const GraphAttribute* attr) {
    if (attr->getPrimType() == PrimType::INT32 && graph.hasLabel(attr)) {
        // One entry per id lands every id on its own texel of the tube set's
        // 256-entry table.
        int n = std::max(256, graph.getMaxLabelId(attr) + 1);
        KxColormap colormap;
        colormap.resize(n);
        colormap.setMinMax(0.0f, static_cast<float>(n - 1));
        for (int id = 0; id < n; ++id) {
            SbColor colour(0.3f, 0.3f, 0.3f);
            graph.getLabelColor(attr, id, colour);
            colormap.setEntry(id, colour);
        }
        return colormap;
    }
    static const float ramp[] = {0.0f, 0.0f, 1.0f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f, 0.0f, 1.0f,
                                 0.0f, 1.0f, 1.0f, 1.0f, 0.0f, 1.0f, 1.0f, 0.0f, 0.0f, 1.0f};
    float lo = 0.0f, hi = 1.0f;
    valueRange(attr, lo, hi);
    return KxColormap(5, ramp, lo, hi);
}

namespace {

// The largest value of radii; 1 without.
float largestRadius(const GraphAttribute* radii) {
    float lo = 1.0f, hi = 1.0f;
    if (radii) {
        valueRange(radii, lo, hi);
    }
    return hi;
}

// The float point attribute the tubes are scaled by: the one named, else
// "thickness" when there is one. False after an "Error: " line.
bool findRadiusAttribute(const KxSpatialGraph& graph, const std::string& name, const PointAttribute*& radii) {
    radii = graph.findEdgePointAttribute(name.empty() ? "thickness" : name.c_str());
    if (radii && radii->getPrimType().getType() != PrimType::FLOAT32) {
        radii = nullptr;
    }
    if (!radii && !name.empty()) {
        theMsg->printf("Error: Graph %s has no float point attribute named \"%s\" to scale the tubes by.",
                       graph.getLabel(), name.c_str());
        return false;
    }
    return true;
}

}  // namespace

SoSeparator* SpatialGraphDefaultScene::build(const KxSpatialGraph* graph, const KxSceneOptions& options) {
    if (!graph) {
        return nullptr;
    }
    const std::string& colorBy = options.colorBy;
    const GraphAttribute* colorAttr = colorBy.empty() ? nullptr : findColorAttribute(*graph, colorBy.c_str());
    if (!colorBy.empty() && !colorAttr) {
        theMsg->printf("Error: Graph %s has no point or edge attribute or label group named \"%s\".",
                       graph->getLabel(), colorBy.c_str());
        return nullptr;
    }
    const PointAttribute* radii = nullptr;
    if (!findRadiusAttribute(*graph, options.scaleBy, radii)) {
        return nullptr;
    }
    float extent = largestExtent(*graph);
    float scale = radii ? 1.0f : (extent > 0.0f ? 0.01f * extent : 1.0f);
    KxColormap colormap = colorAttr ? colormapFor(*graph, colorAttr) : KxColormap();

    // The scene outlives the view, which unrefs it when it dies.
    SoSeparator* scene = nullptr;
    {
        KxSpatialGraphView view;
        view.portSegmentColormap.setColormap(&colormap);
        // The view only reads the graph.
        scene = view.showAsTubes(const_cast<KxSpatialGraph*>(graph), colorAttr, radii, scale,
                                 options.showNodes ? 1.5f * scale * largestRadius(radii) : 0.0f);
        scene->ref();
    }
    scene->unrefNoDelete();
    return scene;
}

void SpatialGraphDefaultScene::registerBuilder() {
    theSceneBuilders->registerBuilder("KxSpatialGraph",
                                      [](KxObject* object, const KxSceneOptions& options) -> SoNode* {
                                          return build(dynamic_cast<KxSpatialGraph*>(object), options);
                                      });
}
