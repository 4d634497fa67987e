#include "kxspatialgraph/view/KxSpatialGraphView.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoSeparator.h>
#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/data/KxColormap.h"
#include "korva/data/KxSpreadSheet.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "korva/viewer/KxPickDispatch.h"
#include "korva/viewer/KxViewer.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"
#include "support/GraphFixtures.h"
#include "support/RenderFixtures.h"
#include "support/TclEval.h"
#include "support/ModuleSessionTest.h"

namespace {

// Two straight edges across the pixel scene; edge 0 has label "Green" of the
// edge label group "Kind", edge 1 "Blue"; the float point attribute "Value"
// runs from 0 to 1 along each edge, the float vertex attribute "Size" is 1, 2, 1.5, 1.
//   0 ----- * ----- 1    y = 2    (points at x = -4, 0, 4)
//   2 ------------- 3    y = -2
std::unique_ptr<KxSpatialGraph> makeTwoLines() {
    auto g = std::make_unique<KxSpatialGraph>();
    for (float y : {2.0f, -2.0f}) {
        g->addVertex(Vec3f(-4, y, 0));
        g->addVertex(Vec3f(4, y, 0));
    }
    g->addEdge(0, 1, GraphFixtures::straightPoints(Vec3f(-4, 2, 0), Vec3f(4, 2, 0), 3));
    g->addEdge(2, 3, GraphFixtures::straightPoints(Vec3f(-4, -2, 0), Vec3f(4, -2, 0), 2));
    g->addNewLabelGroup("Kind", true, false, false);
    int green = g->addLabel("Kind", 0, "Green", SbColor(0, 1, 0));
    int blue = g->addLabel("Kind", 0, "Blue", SbColor(0, 0, 1));
    g->findEdgeAttribute("Kind")->setIntDataAtIdx(0, green);
    g->findEdgeAttribute("Kind")->setIntDataAtIdx(1, blue);
    auto* value =
        static_cast<PointAttribute*>(g->addAttribute("Value", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < 2; ++e) {
        int n = g->getNumEdgePoints(e);
        for (int p = 0; p < n; ++p) {
            value->setFloatDataAtPoint(static_cast<float>(p) / static_cast<float>(n - 1), e, p);
        }
    }
    auto* size = static_cast<EdgeVertexAttribute*>(
        g->addAttribute("Size", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1));
    const float sizes[] = {1.0f, 2.0f, 1.5f, 1.0f};
    for (int v = 0; v < 4; ++v) {
        size->setFloatDataAtIdx(v, sizes[v]);
    }
    return g;
}

class KxSpatialGraphViewTest : public ModuleSessionTest {
protected:
    KxSpatialGraphViewTest() { KxViewer::installCommands(tcl_); }

    // A view "V" of the graph "g.kxm", computed.
    KxSpatialGraphView* show(std::unique_ptr<KxSpatialGraph> graph) {
        graph_ = graph.release();
        theObjectPool->add(graph_, "g.kxm");
        auto* view = new KxSpatialGraphView;
        theObjectPool->add(view, "V");
        EXPECT_TRUE(view->portData.connect(graph_));
        view->fire();
        return view;
    }
    void render(KxSpatialGraphView* view, KxOffscreenRenderer& renderer) {
        SoSeparator* root = makePixelScene();
        root->addChild(view->getScene());
        EXPECT_TRUE(renderer.render(root));
        root->unref();
    }
    // `V setVisibility` with the serialised vertices and edges given.
    void setVisibility(std::initializer_list<int> vertices, std::initializer_list<int> edges) {
        SpatialGraphSelection sel(4, 2);
        std::for_each(vertices.begin(), vertices.end(), [&sel](int v) { sel.selectVertex(v); });
        std::for_each(edges.begin(), edges.end(), [&sel](int e) { sel.selectEdge(e); });
        String edgeText, vertexText;
        sel.serialize(edgeText, vertexText);
        evalOk(
            tcl_,
            (std::string("V setVisibility ") + edgeText.getString() + " " + vertexText.getString()).c_str());
    }
    // Left click at world point (x, y) of the pixel scene; the lines printed.
    std::vector<std::string> click(KxSpatialGraphView* view, float x, float y) {
        SoSeparator* root = makePixelScene();
        root->addChild(view->getScene());
        SoMouseButtonEvent press;
        press.setButton(SoMouseButtonEvent::BUTTON1);
        press.setState(SoButtonEvent::DOWN);
        press.setPosition(SbVec2s(static_cast<short>(pixelColumn(x)), static_cast<short>(100 - pixelRow(y))));
        KxMessageCapture capture;
        thePickDispatch->dispatch(root, SbViewportRegion(100, 100), press);
        root->unref();
        return capture.lines();
    }

    KxSpatialGraph* graph_ = nullptr;
};

// "Picked Point = x y z" within 0.05 of the expected point.
void expectPickedNear(const std::string& line, float x, float y, float z) {
    float p[3] = {0, 0, 0};
    ASSERT_EQ(std::sscanf(line.c_str(), "Picked Point = %f %f %f", &p[0], &p[1], &p[2]), 3) << line;
    EXPECT_NEAR(p[0], x, 0.05f) << line;
    EXPECT_NEAR(p[1], y, 0.05f) << line;
    EXPECT_NEAR(p[2], z, 0.05f) << line;
}

}  // namespace

TEST_F(KxSpatialGraphViewTest, NewGraphShowsEverythingBoundsTheNodeScaleAndSetsTheRangeSets) {
    KxSpatialGraphView* view = show(makeTwoLines());  // largest extent 8: s = 0.8
    EXPECT_EQ(view->getVisibleSelection().getNumSelectedVertices(), 4);
    EXPECT_EQ(view->getVisibleSelection().getNumSelectedEdges(), 2);
    EXPECT_TRUE(view->getHighlightedSelection().isEmpty());
    EXPECT_FLOAT_EQ(view->portNodeScaleFactor.getMaxValue(), 10.0f);
    EXPECT_FLOAT_EQ(view->portNodeScaleFactor.getValue(), 0.005f);
    evalOk(tcl_, "V nodeScaleFactor setValue 5");
    EXPECT_FLOAT_EQ(view->portNodeScaleFactor.getValue(), 5.0f) << "the rule applies to new graphs only";

    auto* big = GraphFixtures::makeChain(3).release();  // and a vertex far away: s = 25
    big->addVertex(Vec3f(250, 0, 0));
    theObjectPool->add(big, "big.kxm");
    ASSERT_TRUE(view->portData.connect(big));
    view->fire();
    EXPECT_FLOAT_EQ(view->portNodeScaleFactor.getMaxValue(), 25.0f);
    EXPECT_FLOAT_EQ(view->portNodeScaleFactor.getValue(), 5.0f);
    evalOk(tcl_, "V nodeScaleFactor setValue 20");
    ASSERT_TRUE(view->portData.connect(graph_));
    view->fire();
    EXPECT_FLOAT_EQ(view->portNodeScaleFactor.getValue(), 0.8f);
    EXPECT_EQ(view->getVisibleSelection().getNumSelectedEdges(), 2);

    // The current range set of the colormap ports.
    const KxRangeSetModuleImpl& impl = view->getRangeSetModuleImpl();
    EXPECT_EQ(impl.getCurrentSet(nullptr, &view->portNodeColormap), -1);
    KxSpatialGraph other;
    EXPECT_EQ(impl.getCurrentSet(&other, &view->portNodeColormap), -1);
    EXPECT_EQ(impl.getCurrentSet(graph_, &view->portNodeColormap), -4) << "at Constant";
    evalOk(tcl_, "V nodeColoring setValue 1; V segmentColoring setValue 2");
    EXPECT_EQ(impl.getCurrentSet(graph_, &view->portNodeColormap), 4);
    EXPECT_EQ(impl.getCurrentSet(graph_, &view->portSegmentColormap), 9);
    EXPECT_EQ(impl.getCurrentSet(graph_, &view->portNodeColor), 10) << "another port counts as 2";
}

TEST_F(KxSpatialGraphViewTest, PortsMenusListAttributesAndPortsFollowTheChoices) {
    KxSpatialGraphView* view = show(makeTwoLines());
    std::string names;
    for (int i = 0; i < view->getNumPorts(); ++i) {
        names += std::string(view->getPort(i)->getName()) + " ";
    }
    EXPECT_EQ(
        names,
        "data itemsToShow Separator nodeScale nodeScaleFactor nodeColoring nodeLabelColoringOptions "
        "nodeColormap nodeColor Separator segmentStyle tubeScale tubeScaleFactor segmentWidth "
        "segmentColoring segmentLabelColoringOptions segmentColormap segmentColor pointSize Statistics ");
    EXPECT_EQ(view->portNodeColoring.getNumItems(), 2);
    ASSERT_EQ(view->portSegmentColoring.getNumItems(), 3);
    EXPECT_STREQ(view->portSegmentColoring.getItemLabel(1), "Kind");
    EXPECT_STREQ(view->portSegmentColoring.getItemLabel(2), "Value");
    EXPECT_STREQ(view->portTubeScale.getItemLabel(1), "Value");

    struct Case {
        const char* script;
        // segmentColor, segmentColormap, segmentLabelColoringOptions, tubeScale, pointSize, nodeScale
        bool visible[6];
    };
    const Case cases[] = {
        {"", {true, false, false, false, false, true}},
        {"V segmentColoring setValue 1", {false, false, true, false, false, true}},
        {"V segmentLabelColoringOptions setValue 1", {false, true, true, false, false, true}},
        {"V segmentColoring setValue 2; V segmentStyle setValue 2 1",
         {false, true, false, true, false, true}},
        {"V segmentStyle setValue 1 1; V itemsToShow setValue 0 0", {false, true, false, true, true, false}},
        {"V itemsToShow setValue 1 0", {false, false, false, false, false, false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.script);
        evalOk(tcl_, c.script);
        const KxPort* ports[] = {
            &view->portSegmentColor, &view->portSegmentColormap, &view->portSegmentLabelColoringOptions,
            &view->portTubeScale,    &view->portPointSize,       &view->portNodeScale};
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(ports[i]->isVisible(), c.visible[i]) << ports[i]->getName();
        }
    }
    graph_->deleteAttribute(graph_->findEdgeAttribute("Kind"));
    graph_->touch();
    graph_->fire();
    EXPECT_STREQ(view->portSegmentColoring.getItemLabel(view->portSegmentColoring.getValue()), "Value")
        << "the choice is kept by its label";
}

TEST_F(KxSpatialGraphViewTest, VisibilityCommandsRoundTripAndAreSaved) {
    KxSpatialGraphView* view = show(makeTwoLines());
    std::string all = evalOk(tcl_, "V getVisibility");
    setVisibility({2}, {1});
    EXPECT_EQ(view->getVisibleSelection().getNumSelectedEdges(), 1);
    EXPECT_TRUE(view->getVisibleSelection().isSelectedVertex(2));
    std::string saved = evalOk(tcl_, "V getVisibility");
    evalOk(tcl_, ("V setVisibility " + all).c_str());
    EXPECT_EQ(view->getVisibleSelection().getNumSelectedEdges(), 2);
    evalOk(tcl_, "V setVisibility [V getVisibility]");
    evalOk(tcl_, ("V setVisibility {" + saved + "}").c_str());
    EXPECT_EQ(evalOk(tcl_, "V getVisibility"), saved);
    evalOk(tcl_, "V nodeScaleFactor setValue 0.4; V segmentStyle setValue 2 1; V segmentColoring setValue 2");
    KxOffscreenRenderer renderer(100, 100);
    render(view, renderer);
    EXPECT_EQ(coverage(renderer, 0.0f, {2.0f, -2.0f}), std::vector<bool>({false, true})) << "edge 0 hidden";

    std::string state;
    view->savePorts(state);
    EXPECT_NE(state.find("{V} setVisibility " + saved + "\n"), std::string::npos) << state;
    KxSpatialGraphView unconnected;
    state.clear();
    unconnected.savePorts(state);
    EXPECT_EQ(state.find("setVisibility"), std::string::npos);
    evalError(tcl_, "V setVisibility onlyOne");
}

TEST_F(KxSpatialGraphViewTest, SetLineWidthAndStatisticsRowsSetTheView) {
    KxSpatialGraphView* view = show(makeTwoLines());
    for (const char* wrong : {"V setLineWidth", "V setLineWidth wide", "V setLineWidth 1 2"}) {
        SCOPED_TRACE(wrong);
        KxMessageCapture capture;
        evalError(tcl_, wrong);
        EXPECT_TRUE(capture.contains("USAGE: setLineWidth <w>"));
        EXPECT_FLOAT_EQ(view->portSegmentWidth.getValue(), 1.0f);
    }
    evalOk(tcl_, "V setLineWidth 3");
    EXPECT_FLOAT_EQ(view->portSegmentWidth.getValue(), 3.0f);
    EXPECT_FLOAT_EQ(view->getNode()->getLineWidth(), 3.0f);

    // Selected rows of a statistics sheet are highlighted once.
    auto* sheet = new KxSpreadSheet;
    KxSpreadSheet::Table* segments = sheet->addTable("Segment Statistics");
    int id = segments->addColumn("Segment ID", KxSpreadSheet::INT);
    segments->setNumRows(2);
    segments->setInt(id, 0, 1);
    segments->setInt(id, 1, 0);
    KxSpreadSheet::Table* kinds = sheet->addTable("Kind");
    int name = kinds->addColumn("Label Name", KxSpreadSheet::STRING);
    kinds->setNumRows(2);
    kinds->setString(name, 0, "Green");
    kinds->setString(name, 1, "Blue");
    theObjectPool->add(sheet, "g.statistics");
    evalOk(tcl_, "g.statistics selectRows {Segment Statistics} 0");
    evalOk(tcl_, "V Statistics connect g.statistics");
    EXPECT_TRUE(view->getHighlightedSelection().isSelectedEdge(1));
    EXPECT_FALSE(view->getHighlightedSelection().isSelectedEdge(0));
    EXPECT_EQ(view->portStatistics.getSource(), nullptr) << "dropped after use";
    evalOk(tcl_, "g.statistics selectRows {Segment Statistics}; g.statistics selectRows Kind 0");
    evalOk(tcl_, "V Statistics connect g.statistics");
    EXPECT_EQ(view->getHighlightedSelection().getNumSelectedEdges(), 2);
    evalError(tcl_, "g.statistics selectRows Kind 2");
}

// ---------------------------------------------------------------------------
// Picking

TEST_F(KxSpatialGraphViewTest, ClicksReportNodesSegmentsAndPoints) {
    KxSpatialGraphView* view = show(makeTwoLines());
    evalOk(tcl_, "V nodeScaleFactor setValue 0.8");
    std::vector<std::string> lines = click(view, -4, 2);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "Node = 0 (-4 2 0)");
    expectPickedNear(lines[1], -4, 2, 0.16f);  // radius 0.8 x the sphere set's scale 0.2

    evalOk(tcl_, "V itemsToShow setValue 0 0");
    lines = click(view, 2, -2);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "Segment = 1");
    expectPickedNear(lines[1], 2, -2, 0);

    evalOk(tcl_, "V segmentStyle setValue 0 0; V segmentStyle setValue 1 1");
    lines = click(view, 0, 2);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "Point = 1 (0 2 0)");
    expectPickedNear(lines[1], 0, 2, 0);

    EXPECT_TRUE(click(view, 0, 0).empty()) << "a miss prints nothing";
}

TEST_F(KxSpatialGraphViewTest, ViewerClicksReachTheViewAndTheDistanceModule) {
    show(makeTwoLines());
    std::string path = testOutputPath("view_snapshot.png");
    evalOk(tcl_, ("viewer snapshot " + path + " 80 60").c_str());
    // The framed graph spans the picture's width; its lower line lies below the middle.
    int row = 30;
    KxMessageCapture capture;
    while (row < 60 && evalOk(tcl_, ("viewer click 40 " + std::to_string(row)).c_str()) != "1") {
        ++row;
    }
    EXPECT_TRUE(capture.contains("Segment = 1")) << capture.text();

    evalOk(tcl_,
           "create KxComputeDistanceToPoint D; D data connect g.kxm; D pickReferencePoint setValue 0 1");
    capture.clear();
    EXPECT_EQ(evalOk(tcl_, ("viewer click 40 " + std::to_string(row) + " 3").c_str()), "1");
    EXPECT_EQ(capture.text().find("Segment ="), std::string::npos) << "the middle button is the module's";
    // The edge point nearest to the click at (0, -2, 0) on edge 1 is the middle point of edge 0.
    EXPECT_EQ(evalOk(tcl_, "D referencePoint getValue"), "Coords: 0.0 2.0 0.0 Segment: 0 Point: 1 ");
    evalError(tcl_, "viewer snapshot out.bmp");
    evalError(tcl_, "viewer click 500 1");
}

// ---------------------------------------------------------------------------
// Pictures

TEST_F(KxSpatialGraphViewTest, TubesAndLinesShowLabelColoursColormapEndsAndHighlights) {
    KxSpatialGraphView* view = show(makeTwoLines());
    static const float ramp[] = {0, 0, 1, 1, 1, 0, 0, 1};
    auto* blueToRed = new KxColormap(2, ramp, 0.0f, 1.0f);
    theObjectPool->add(blueToRed, "blueToRed");
    evalOk(tcl_,
           "V segmentColormap connect blueToRed; V itemsToShow setValue 0 0; V segmentStyle setValue 0 0;"
           "V segmentStyle setValue 2 1; V tubeScaleFactor setValue 0.5; V segmentColoring setValue 1");
    KxOffscreenRenderer renderer(100, 100);
    render(view, renderer);
    std::string why;
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(2), SbColor(0, 1, 0), why)) << why;
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(-2), SbColor(0, 0, 1), why)) << why;

    evalOk(tcl_, "V segmentColoring setValue 2");
    render(view, renderer);
    for (float y : {2.0f, -2.0f}) {
        EXPECT_TRUE(pixelHue(renderer, pixelColumn(-3.8f), pixelRow(y), SbColor(0, 0, 1), why)) << why;
        EXPECT_TRUE(pixelHue(renderer, pixelColumn(3.8f), pixelRow(y), SbColor(1, 0, 0), why)) << why;
    }

    evalOk(tcl_, "V segmentColoring setValue 0; V segmentColor setValue 0 0 1");
    SpatialGraphSelection highlighted(4, 2);
    highlighted.selectEdge(0);
    view->setHighlightedSelection(highlighted);
    render(view, renderer);
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(2), SbColor(1, 0, 0), why)) << why;
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(-2), SbColor(0, 0, 1), why)) << why;

    // Lines, by label, with edge 1 highlighted.
    evalOk(tcl_,
           "V segmentStyle setValue 2 0; V segmentStyle setValue 0 1; V segmentWidth setValue 5;"
           "V segmentColoring setValue 1");
    highlighted.deselectAllEdges();
    highlighted.selectEdge(1);
    view->setHighlightedSelection(highlighted);
    render(view, renderer);
    EXPECT_TRUE(pixelNear(renderer, pixelColumn(0), pixelRow(2), SbColor(0, 1, 0), 10, why)) << why;
    EXPECT_TRUE(pixelNear(renderer, pixelColumn(0), pixelRow(-2), SbColor(1, 0, 0), 10, why)) << why;
}
