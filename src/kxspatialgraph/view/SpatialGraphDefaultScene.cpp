#include "kxspatialgraph/view/SpatialGraphDefaultScene.h"

#include <algorithm>

#include <Inventor/nodes/SoSeparator.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/gl/KxGLCapabilities.h"
#include "korva/viewer/KxSceneBuilders.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"

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

}  // namespace

SoSeparator* SpatialGraphDefaultScene::build(const KxSpatialGraph* graph) {
    if (!graph) {
        return nullptr;
    }
    SpatialGraphSelection visible(graph->getNumVertices(), graph->getNumEdges());
    visible.selectAllVerticesAndEdges();
    const PointAttribute* thickness = graph->findEdgePointAttribute("thickness");
    if (thickness && thickness->getPrimType().getType() != PrimType::FLOAT32) {
        thickness = nullptr;
    }
    float extent = largestExtent(*graph);
    float scale = thickness ? 1.0f : (extent > 0.0f ? 0.01f * extent : 1.0f);

    // The scene outlives the node, which unrefs it when it dies.
    SoSeparator* root = nullptr;
    {
        SpatialGraphViewNode node(graph->getSpatialGraphInterface());
        root = node.getSpatialGraphNode();
        root->ref();
        if (KxGLCapabilities::hasShadersAndBuffers()) {
            node.makeGpuTubes(&visible);
            node.setTubeScaleAttribute(thickness);
            node.setTubeScaleFactor(scale);
            node.setTubeConstantColor(SbColor(0.8f, 0.8f, 0.8f));
            node.setTubeColorAttribute(nullptr);
        } else {
            if (!KxGLCapabilities::legacyForced()) {
                theMsg->printf(
                    "SpatialGraphView: Crucial OpenGL features are missing! Falling back to legacy tube "
                    "rendering ...");
            }
            // The legacy profile has radius 0.5: twice the scale gives the same tubes.
            node.makeLegacyTubes(&visible, nullptr, thickness, 2.0f * scale, false);
        }
    }
    root->unrefNoDelete();
    return root;
}

void SpatialGraphDefaultScene::registerBuilder() {
    theSceneBuilders->registerBuilder("KxSpatialGraph", [](KxObject* object) -> SoNode* {
        return build(dynamic_cast<KxSpatialGraph*>(object));
    });
}
