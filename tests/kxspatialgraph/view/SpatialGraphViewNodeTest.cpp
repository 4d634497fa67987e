#include <gtest/gtest.h>

#include <memory>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoPointSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include "korva/data/KxColormap.h"
#include "korva/inventor/SoSphereSet.h"
#include "korva/modules/KxPortColormap.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SoTubeSet.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"
#include "support/GraphFixtures.h"
#include "support/RenderFixtures.h"

namespace {

// makeChain(5): vertices 0..4 on the x axis, edge i from i to i + 1 with
// 2, 3, 4, 2 points.
struct ChainView {
    std::unique_ptr<KxSpatialGraph> graph = GraphFixtures::makeChain(5);
    SpatialGraphSelection visible{5, 4};
    SpatialGraphSelection highlighted{5, 4};
    SpatialGraphViewNode node{graph->getSpatialGraphInterface()};
};

SoVertexProperty* propertyOf(SoVertexShape* shape) {
    return static_cast<SoVertexProperty*>(shape->vertexProperty.getValue());
}

// Picks through the pixel scene's orthographic camera at world point (x, y).
struct Pick {
    SoSeparator* root;
    explicit Pick(SoNode* scene) : root(makePixelScene()) { root->addChild(scene); }
    ~Pick() { root->unref(); }

    bool at(const SpatialGraphViewNode& node, const SpatialGraphSelection& visible,
            const SpatialGraphSelection& highlighted, float x, float y, int& vertex, int& edge,
            SpatialGraphPoint& point) {
        SoRayPickAction pick(SbViewportRegion(100, 100));
        pick.setPoint(SbVec2s(static_cast<short>(pixelColumn(x)), static_cast<short>(99 - pixelRow(y))));
        pick.setRadius(3);
        pick.apply(root);
        return node.getPickedElement(&visible, &highlighted, pick.getPickedPoint(), vertex, edge, point);
    }
};

}  // namespace

TEST(SpatialGraphViewNodeTest, LinesFollowTheVisibleAndHighlightedEdgesInAttributeColours) {
    ChainView view;
    view.visible.selectEdge(1);
    view.visible.selectEdge(3);
    view.node.makeLines(&view.visible);
    SoLineSet* lines = view.node.getLineSet();
    ASSERT_NE(lines, nullptr);
    ASSERT_EQ(lines->numVertices.getNum(), 2);
    EXPECT_EQ(lines->numVertices[0], 3);
    EXPECT_EQ(lines->numVertices[1], 2);
    ASSERT_EQ(propertyOf(lines)->vertex.getNum(), 5);
    EXPECT_EQ(propertyOf(lines)->vertex[3], SbVec3f(3, 0, 0));  // first point of edge 3
    SoVertexProperty* property = propertyOf(lines);
    view.node.setLineColor(&view.visible, nullptr, false);
    EXPECT_EQ(property->materialBinding.getValue(), SoVertexProperty::OVERALL);

    // Point attribute through the edge colormap port: black at 0, white at 10.
    auto* depth = static_cast<PointAttribute*>(
        view.graph->addAttribute("Depth", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < 4; ++e) {
        for (int p = 0; p < view.graph->getNumEdgePoints(e); ++p) {
            depth->setFloatDataAtPoint(e == 3 ? 10.0f : 0.0f, e, p);
        }
    }
    const float rgba[] = {0, 0, 0, 1, 1, 1, 1, 1};
    KxColormap colormap(2, rgba, 0.0f, 10.0f);
    KxPortColormap port;
    port.setColormap(&colormap);
    view.node.setEdgeColormapPort(&port);
    view.node.setLineColor(&view.visible, depth, false);
    EXPECT_EQ(property->materialBinding.getValue(), SoVertexProperty::PER_VERTEX);
    ASSERT_EQ(property->orderedRGBA.getNum(), 5);
    EXPECT_EQ(property->orderedRGBA[0], SbColor(0, 0, 0).getPackedValue(0.0f));
    EXPECT_EQ(property->orderedRGBA[4], SbColor(1, 1, 1).getPackedValue(0.0f));

    // Edge label attribute: label colours per line; a value without a label is black.
    view.graph->addNewLabelGroup("Region", true, false, false);
    int red = view.graph->addLabel("Region", 0, "Red", SbColor(1, 0, 0));
    auto* region = view.graph->findEdgeAttribute("Region");
    ASSERT_NE(region, nullptr);
    const int values[] = {red, 77, 0, red};
    for (int e = 0; e < 4; ++e) {
        region->setIntDataAtIdx(e, values[e]);
    }
    view.node.setLineColor(&view.visible, region, false);
    EXPECT_EQ(property->materialBinding.getValue(), SoVertexProperty::PER_FACE);
    ASSERT_EQ(property->orderedRGBA.getNum(), 2);
    EXPECT_EQ(property->orderedRGBA[0], SbColor(0, 0, 0).getPackedValue(0.0f));  // undefined label
    EXPECT_EQ(property->orderedRGBA[1], SbColor(1, 0, 0).getPackedValue(0.0f));
    // noLabelColors: the same values through the colormap instead.
    view.node.setLineColor(&view.visible, region, true);
    EXPECT_EQ(property->orderedRGBA[0], SbColor(1, 1, 1).getPackedValue(0.0f));

    // Highlighted lines: highlighted ∩ visible, one pixel wider, in the highlight colour.
    view.highlighted.selectEdge(0);
    view.highlighted.selectEdge(3);
    view.node.setLineWidth(2.0f);
    view.node.makeHighlightedLines(&view.highlighted, &view.visible);
    SoLineSet* lit = view.node.getHighlightedLineSet();
    ASSERT_EQ(lit->numVertices.getNum(), 1);
    EXPECT_EQ(lit->numVertices[0], 2);
    EXPECT_EQ(propertyOf(lit)->orderedRGBA[0], SbColor(1, 0, 0).getPackedValue(0.0f));

    // No visible edge: no line set.
    view.visible.deselectAllEdges();
    view.node.makeLines(&view.visible);
    EXPECT_EQ(view.node.getLineSet(), nullptr);
}

TEST(SpatialGraphViewNodeTest, PointLayoutAndPicksMapBackToEdgesPointsAndVertices) {
    ChainView view;
    view.visible.selectEdge(0);
    view.visible.selectEdge(2);
    view.highlighted.selectEdge(2);
    view.node.makeLines(&view.visible);
    view.node.makeHighlightedLines(&view.highlighted, &view.visible);
    int vertex, edge;
    SpatialGraphPoint point;
    {
        Pick pick(view.node.getSpatialGraphNode());
        // Edge 2 runs from x = 2 to 3; the highlighted line lies over it, so
        // whichever is hit, the answer is edge 2.
        ASSERT_TRUE(pick.at(view.node, view.visible, view.highlighted, 2.5f, 0.0f, vertex, edge, point));
        EXPECT_EQ(edge, 2);
        ASSERT_TRUE(pick.at(view.node, view.visible, view.highlighted, 0.5f, 0.0f, vertex, edge, point));
        EXPECT_EQ(edge, 0);
        EXPECT_EQ(vertex, -1);
        EXPECT_FALSE(pick.at(view.node, view.visible, view.highlighted, 1.5f, 0.0f, vertex, edge, point));
    }
    view.node.removeLines();
    view.node.removeHighlightedLines();

    // Points of whole edges first (0 and 2), then the single point (3, 1) at x = 4.
    SpatialGraphSelection points(5, 4);
    points.selectPoint(SpatialGraphPoint(3, 1));
    points.selectAllPointsOnEdge(2);
    points.selectAllPointsOnEdge(0);
    EXPECT_EQ(view.node.getPointIndex(0, 0, &points), -1);  // no point set yet
    view.node.makePoints(&points);
    SoPointSet* set = view.node.getPointSet();
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(propertyOf(set)->vertex.getNum(), 2 + 4 + 1);
    EXPECT_EQ(propertyOf(set)->vertex[2], SbVec3f(2, 0, 0));  // edge 2, point 0
    EXPECT_EQ(propertyOf(set)->vertex[6], SbVec3f(4, 0, 0));  // edge 3, point 1
    EXPECT_EQ(view.node.getPointIndex(0, 1, &points), 1);
    EXPECT_EQ(view.node.getPointIndex(2, 3, &points), 5);
    EXPECT_EQ(view.node.getPointIndex(3, 1, &points), 6);
    EXPECT_EQ(view.node.getPointIndex(3, 0, &points), -1);  // edge 3 is not wholly selected
    EXPECT_EQ(view.node.getPointIndex(1, 0, &points), -1);
    {
        Pick pick(view.node.getSpatialGraphNode());
        ASSERT_TRUE(pick.at(view.node, points, view.highlighted, 2.0f, 0.0f, vertex, edge, point));
        EXPECT_EQ(point, SpatialGraphPoint(2, 0));
        ASSERT_TRUE(pick.at(view.node, points, view.highlighted, 4.0f, 0.0f, vertex, edge, point));
        EXPECT_EQ(point, SpatialGraphPoint(3, 1));
    }
    view.node.removePoints();

    // Spheres are indexed by vertex; unselected vertices have no sphere to hit.
    view.visible.selectAllVertices();
    view.visible.deselectVertex(1);
    view.node.makeVertices(&view.visible);
    view.node.setVertexScale(&view.visible, nullptr, 1.0f);  // radius 1 × 0.2
    {
        Pick pick(view.node.getSpatialGraphNode());
        ASSERT_TRUE(pick.at(view.node, view.visible, view.highlighted, 3.1f, 0.1f, vertex, edge, point));
        EXPECT_EQ(vertex, 3);
        EXPECT_EQ(edge, -1);
        EXPECT_FALSE(pick.at(view.node, view.visible, view.highlighted, 1.0f, 0.0f, vertex, edge, point));
    }
    EXPECT_FALSE(view.node.getPickedElement(&view.visible, &view.highlighted, nullptr, vertex, edge, point));
}

TEST(SpatialGraphViewNodeTest, SphereRadiiAndHighlightsFollowVertices) {
    ChainView view;
    auto* size = static_cast<EdgeVertexAttribute*>(
        view.graph->addAttribute("Size", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1));
    for (int v = 0; v < 5; ++v) {
        size->setFloatDataAtIdx(v, v == 2 ? -3.0f : static_cast<float>(v));
    }
    view.node.makeHighlightedVertices(&view.highlighted, &view.visible);  // no sphere set: nothing
    view.visible.selectAllVertices();
    view.node.makeVertices(&view.visible);
    SoSphereSet* spheres = view.node.getSphereSet();
    ASSERT_EQ(spheres->getNumSpheres(), 5);
    EXPECT_EQ(spheres->scale.getValue(), 0.2f);
    view.node.setVertexScale(&view.visible, size, 2.0f);
    EXPECT_EQ(spheres->radii[2], 0.0f);  // negative values give radius 0
    EXPECT_EQ(spheres->radii[4], 8.0f);
    view.highlighted.selectVertex(1);
    view.highlighted.selectVertex(3);
    view.visible.deselectVertex(3);
    view.node.makeHighlightedVertices(&view.highlighted, &view.visible);
    EXPECT_TRUE(spheres->highlighted.test(1));
    EXPECT_FALSE(spheres->highlighted.test(3));
    view.node.removeHighlightedVertices();
    EXPECT_EQ(spheres->highlighted.countSet(), 0);
}

TEST(SpatialGraphViewNodeTest, TubeSetGetsEveryEdgeAndTheVisibleBitsLegacyTubesTheVisibleEdges) {
    ChainView view;
    view.visible.selectEdge(1);
    view.highlighted.selectEdge(1);
    view.highlighted.selectEdge(2);
    view.node.makeGpuTubes(&view.visible);
    view.node.makeHighlightedTubes(&view.highlighted, &view.visible);
    SoTubeSet* tubes = view.node.getTubeSet();
    ASSERT_EQ(tubes->getNumLines(), 4u);
    EXPECT_EQ(tubes->visible.countSet(), 1);
    EXPECT_TRUE(tubes->visible.test(1));
    EXPECT_EQ(tubes->highlighted.countSet(), 1);
    EXPECT_TRUE(tubes->highlighted.test(1));

    auto* thickness = view.graph->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    view.node.setTubeScaleAttribute(thickness);
    EXPECT_FALSE(tubes->isConstantRadius());
    view.node.setTubeScaleAttribute(nullptr);
    EXPECT_TRUE(tubes->isConstantRadius());
    auto* level = view.graph->addAttribute("Level", KxSpatialGraph::EDGE, PrimType::INT32, 1);
    view.node.setTubeColorAttribute(level);
    EXPECT_TRUE(tubes->isColorPerLine());
    EXPECT_FALSE(tubes->isConstantColor());
    view.node.setTubeColorAttribute(thickness);
    EXPECT_FALSE(tubes->isColorPerLine());
    view.node.setTubeColorAttribute(nullptr);
    EXPECT_TRUE(tubes->isConstantColor());

    // The tube set stays when the tubes are removed, ready for the next makeGpuTubes.
    view.node.removeGpuTubes();
    EXPECT_EQ(view.node.getTubeSet(), tubes);

    // Legacy tubes ring the visible edges 0, 1 and 2.
    view.visible.selectEdge(0);
    view.visible.selectEdge(2);
    view.node.makeLegacyTubes(&view.visible, nullptr, nullptr, 2.0f, false);
    SoSeparator* legacy = view.node.getLegacyTubeSeparator();
    ASSERT_EQ(legacy->getNumChildren(), 8);
    auto* faces = static_cast<SoIndexedFaceSet*>(legacy->getChild(7));
    // Edges 0, 1, 2 have 2, 3, 4 points: (1 + 2 + 3) ring gaps × 12 quads of 5 indices.
    EXPECT_EQ(faces->coordIndex.getNum(), (1 + 2 + 3) * 12 * 5);
    // Remaking replaces, never adds.
    view.node.makeLegacyTubes(&view.visible, nullptr, nullptr, 2.0f, false);
    EXPECT_EQ(legacy->getNumChildren(), 8);
    view.node.removeLegacyTubes();
    EXPECT_EQ(legacy->getNumChildren(), 1);
}
