#include "kxspatialgraph/view/KxSpatialGraphView.h"

#include <cmath>
#include <cstring>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoSeparator.h>
#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/data/KxColormap.h"
#include "korva/gl/KxGLCapabilities.h"
#include "korva/inventor/KxInventor.h"
#include "korva/viewer/KxPickDispatch.h"
#include "korva/viewer/KxViewer.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/view/SpatialGraphDefaultScene.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"

namespace {

const SbColor kDefaultColor(0.8f, 0.8f, 0.8f);

}  // namespace

KxSpatialGraphView::KxSpatialGraphView()
    : KxModule({"KxSpatialGraphInterface"}),
      portItemsToShow(this, "itemsToShow", "Items to show", 2),
      portNodeSeparator(this, "Separator"),
      portNodeScale(this, "nodeScale", "Node Scale", 1),
      portNodeScaleFactor(this, "nodeScaleFactor", "Node Scale Factor", 0.0f, 10.0f),
      portNodeColoring(this, "nodeColoring", "Node Coloring", 1),
      portNodeLabelColoringOptions(this, "nodeLabelColoringOptions", "Label Coloring:", 2),
      portNodeColormap(this, "nodeColormap", "Node Colormap:"),
      portNodeColor(this, "nodeColor", "Node Color", 1),
      portSegmentSeparator(this, "Separator"),
      portSegmentStyle(this, "segmentStyle", "Segment Style", 3),
      portTubeScale(this, "tubeScale", "Tube Scale", 1),
      portTubeScaleFactor(this, "tubeScaleFactor", "Tube Scale Factor", 0.0f, 10.0f),
      portSegmentWidth(this, "segmentWidth", "Segment Width", 0.0f, 10.0f),
      portSegmentColoring(this, "segmentColoring", "Segment Coloring", 1),
      portSegmentLabelColoringOptions(this, "segmentLabelColoringOptions", "Label Coloring:", 2),
      portSegmentColormap(this, "segmentColormap", "Segment Colormap:"),
      portSegmentColor(this, "segmentColor", "Segment Color", 1),
      portPointSize(this, "pointSize", "Point Size", 0.0f, 15.0f),
      portStatistics(this, "Statistics", "Statistics", {"KxSpreadSheet"}) {
    KxInventor::init();
    scene_ = new SoSeparator;
    portItemsToShow.setItemLabel(NODES, "Nodes");
    portItemsToShow.setItemLabel(SEGMENTS, "Segments");
    portItemsToShow.setValue(NODES, 1);
    portItemsToShow.setValue(SEGMENTS, 1);
    for (KxPortMenu* menu : {&portNodeScale, &portNodeColoring, &portTubeScale, &portSegmentColoring}) {
        menu->setItemLabel(0, "Constant");
    }
    portNodeScaleFactor.setValue(0.005f);
    for (KxPortRadioBox* radio : {&portNodeLabelColoringOptions, &portSegmentLabelColoringOptions}) {
        radio->setItemLabel(LABELS, "Labels");
        radio->setItemLabel(COLORMAP, "Colormap");
    }
    portNodeColor.setColor(0, kDefaultColor);
    portSegmentStyle.setItemLabel(LINES, "Lines");
    portSegmentStyle.setItemLabel(POINTS, "Points");
    portSegmentStyle.setItemLabel(TUBES, "Tubes");
    portSegmentStyle.setValue(LINES, 1);
    portTubeScaleFactor.setValue(0.2f);
    portSegmentWidth.setValue(1.0f);
    portSegmentColor.setColor(0, kDefaultColor);
    portPointSize.setValue(4.0f);

    gpuTubes_ = KxGLCapabilities::hasShadersAndBuffers();
    // Legacy tubes forced on purpose (KORVA_LEGACY_TUBES) are no missing feature.
    if (!gpuTubes_ && !KxGLCapabilities::legacyForced()) {
        theMsg->printf(
            "SpatialGraphView: Crucial OpenGL features are missing! Falling back to legacy tube rendering "
            "...");
    }
    pickCallbackId_ = thePickDispatch->addCallback([this](KxPickEvent& event) { onPick(event); });
    theViewer->addScene(scene_);
}

KxSpatialGraphView::~KxSpatialGraphView() {
    thePickDispatch->removeCallback(pickCallbackId_);
    theViewer->removeScene(scene_);
}

bool KxSpatialGraphView::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxSpatialGraphView") == 0 || KxModule::isOfType(typeName);
}

const KxSpatialGraphInterface* KxSpatialGraphView::graph() const {
    return static_cast<const KxSpatialGraphInterface*>(
        portData.getSourceInterface("KxSpatialGraphInterface"));
}

// ---------------------------------------------------------------------------
// Computing

void KxSpatialGraphView::compute() {
    const KxSpatialGraphInterface* g = graph();
    if (!g) {
        // Without a graph the scene stays empty.
        scene_->removeAllChildren();
        shownGraph_ = nullptr;
        return;
    }
    bool newGraph = adoptGraph(g);
    if (!node_) {
        createNode(g);
    } else if (scene_->getNumChildren() == 0) {
        scene_->addChild(node_->getSpatialGraphNode());
    }
    node_->setSpatialGraphInterface(g);
    if (newGraph) {
        applyNodeScaleRule(g);
    }
    updateMenus();
    highlightStatistics();
    node_->setVertexDefaultColor(portNodeColor.getColor(0));
    node_->setEdgeDefaultColor(portSegmentColor.getColor(0));
    renderHighlightedElements(true);
    rebuildSceneGraph();
    setColoring();
    notifier_.emitParamsChanged();

    bool changed = lineWidth_ != portSegmentWidth.getValue() || pointSize_ != portPointSize.getValue();
    setLineWidth(portSegmentWidth.getValue());
    setPointSize(portPointSize.getValue());
    if (changed || portNodeScale.isNew() || portNodeScaleFactor.isNew()) {
        notifier_.emitParamsChanged();
    }
}

// A graph other than the one shown, or one whose counts changed, resets the
// selections: everything visible, nothing highlighted.
bool KxSpatialGraphView::adoptGraph(const KxSpatialGraphInterface* g) {
    bool newGraph = g != shownGraph_ || portData.isNewSource();
    bool resized =
        visible_.getNumVertices() != g->doGetNumVertices() || visible_.getNumEdges() != g->doGetNumEdges();
    shownGraph_ = g;
    if (newGraph || resized) {
        visible_ = SpatialGraphSelection(g->doGetNumVertices(), g->doGetNumEdges());
        highlighted_ = visible_;
        visible_.selectAllVerticesAndEdges();
        visible_.selectAllPoints();
    }
    return newGraph;
}

void KxSpatialGraphView::createNode(const KxSpatialGraphInterface* g) {
    node_ = std::make_unique<SpatialGraphViewNode>(g);
    node_->setVertexColormapPort(&portNodeColormap);
    node_->setEdgeColormapPort(&portSegmentColormap);
    node_->setLineWidth(lineWidth_);
    node_->setPointSize(pointSize_);
    scene_->addChild(node_->getSpatialGraphNode());
}

// A tenth of the graph's largest extent bounds the node scale factor: the
// slider reaches it, and a larger value comes down to it.
void KxSpatialGraphView::applyNodeScaleRule(const KxSpatialGraphInterface* g) {
    float box[6];
    g->doGetBoundingBox(box);
    float s = 0.1f * std::fmax(box[1] - box[0], std::fmax(box[3] - box[2], box[5] - box[4]));
    if (!(s > 0.0f)) {
        return;
    }
    if (s > portNodeScaleFactor.getMaxValue()) {
        portNodeScaleFactor.setMinMax(portNodeScaleFactor.getMinValue(), std::ceil(s));
    }
    if (portNodeScaleFactor.getValue() > s) {
        portNodeScaleFactor.setValue(s);
    }
}

void KxSpatialGraphView::setHighlightedSelection(const SpatialGraphSelection& sel) {
    highlighted_ = sel;
    highlighted_.resize(visible_.getNumVertices(), visible_.getNumEdges());
    if (node_) {
        renderHighlightedElements(true);
    }
}

// ---------------------------------------------------------------------------
// Building the scene

void KxSpatialGraphView::setColoring() {
    if (!node_) {
        return;
    }
    node_->setVertexColor(&visible_, nodeColorAttribute(), nodeNoLabelColors());
    node_->setLineColor(&visible_, segmentColorAttribute(), segmentNoLabelColors());
    node_->setPointsColor(&visible_, segmentColorAttribute(), segmentNoLabelColors());
}

void KxSpatialGraphView::showVertices(bool on) {
    if (!node_) {
        return;
    }
    if (!on) {
        node_->removeVertices();
        node_->removeHighlightedVertices();
        return;
    }
    node_->makeVertices(&visible_);
    node_->setVertexColor(&visible_, nodeColorAttribute(), nodeNoLabelColors());
    node_->setVertexScale(&visible_, nodeScaleAttribute(), portNodeScaleFactor.getValue());
    node_->makeHighlightedVertices(&highlighted_, &visible_);
}

void KxSpatialGraphView::showLines(bool on) {
    if (!node_) {
        return;
    }
    if (!on) {
        node_->removeLines();
        node_->removeHighlightedLines();
        return;
    }
    node_->makeLines(&visible_);
    node_->setLineColor(&visible_, segmentColorAttribute(), segmentNoLabelColors());
    node_->makeHighlightedLines(&highlighted_, &visible_);
}

void KxSpatialGraphView::showPoints(bool on) {
    if (!node_) {
        return;
    }
    if (!on) {
        node_->removePoints();
        node_->removeHighlightedPoints();
        return;
    }
    node_->makePoints(&visible_);
    node_->setPointsColor(&visible_, segmentColorAttribute(), segmentNoLabelColors());
    node_->makeHighlightedPoints(&highlighted_);
}

void KxSpatialGraphView::showTubes(bool on) {
    if (!node_) {
        return;
    }
    if (!on) {
        node_->removeGpuTubes();
        node_->removeLegacyTubes();
        return;
    }
    const GraphAttribute* colorAttr = segmentColorAttribute();
    if (!gpuTubes_) {
        // The legacy profile has radius 0.5: twice the factor draws the tubes the GPU path would.
        node_->makeLegacyTubes(&visible_, colorAttr, tubeScaleAttribute(),
                               2.0f * portTubeScaleFactor.getValue(), segmentNoLabelColors());
        return;
    }
    node_->makeGpuTubes(&visible_);
    node_->setTubeScaleAttribute(tubeScaleAttribute());
    node_->setTubeScaleFactor(portTubeScaleFactor.getValue());
    node_->setTubeConstantColor(portSegmentColor.getColor(0));
    prepareTubeColors();
    node_->makeHighlightedTubes(&highlighted_, &visible_);
}

// Label colours for a label attribute (a table over the label ids), else the
// segment colormap over the port's range; the constant colour without either.
void KxSpatialGraphView::prepareTubeColors() {
    const GraphAttribute* attr = segmentColorAttribute();
    const auto* g = portData.getSource<KxSpatialGraph>();
    bool labels = attr && g && !segmentNoLabelColors() && attr->getPrimType().getType() == PrimType::INT32 &&
                  g->hasLabel(attr);
    const KxColormap* colormap = portSegmentColormap.getColormap();
    if (!attr || (!labels && !colormap)) {
        node_->setTubeColorAttribute(nullptr);
        node_->setTubeConstantColor(attr ? portSegmentColormap.getDefaultColor()
                                         : portSegmentColor.getColor(0));
        return;
    }
    node_->setTubeColorAttribute(attr);
    if (labels) {
        KxColormap table = SpatialGraphDefaultScene::colormapFor(*g, attr);
        node_->setTubeColormap(&table);
        return;
    }
    node_->setTubeColormap(colormap);
    node_->setTubeColormapDataWindow(portSegmentColormap.getMinValue(), portSegmentColormap.getMaxValue());
}

void KxSpatialGraphView::showEdges(bool on) {
    showLines(on && portSegmentStyle.getValue(LINES) != 0);
    showPoints(on && portSegmentStyle.getValue(POINTS) != 0);
    showTubes(on && portSegmentStyle.getValue(TUBES) != 0);
}

void KxSpatialGraphView::renderHighlightedElements(bool on) {
    if (!node_) {
        return;
    }
    if (!on) {
        node_->removeHighlightedVertices();
        node_->removeHighlightedLines();
        node_->removeHighlightedPoints();
        SpatialGraphSelection none(visible_.getNumVertices(), visible_.getNumEdges());
        node_->makeHighlightedTubes(&none, &visible_);
        return;
    }
    bool segments = portItemsToShow.getValue(SEGMENTS) != 0;
    node_->makeHighlightedVertices(&highlighted_, &visible_);
    if (segments && portSegmentStyle.getValue(LINES)) {
        node_->makeHighlightedLines(&highlighted_, &visible_);
    }
    if (segments && portSegmentStyle.getValue(POINTS)) {
        node_->makeHighlightedPoints(&highlighted_);
    }
    node_->makeHighlightedTubes(&highlighted_, &visible_);
}

void KxSpatialGraphView::rebuildSceneGraph() {
    showVertices(portItemsToShow.getValue(NODES) != 0);
    showEdges(portItemsToShow.getValue(SEGMENTS) != 0);
}

void KxSpatialGraphView::setLineWidth(float w) {
    lineWidth_ = w;
    if (node_) {
        node_->setLineWidth(w);
    }
}

void KxSpatialGraphView::setPointSize(float s) {
    pointSize_ = s;
    if (node_) {
        node_->setPointSize(s);
    }
}

void KxSpatialGraphView::setTransparency(float t) {
    transparency_ = t;
    if (node_) {
        node_->setTransparency(t);
    }
}

// ---------------------------------------------------------------------------
// Attributes chosen in the menus

namespace {

const GraphAttribute* chosen(const KxPortMenu& menu, const std::vector<const GraphAttribute*>& items) {
    int i = menu.getValue() - 1;
    return i >= 0 && i < static_cast<int>(items.size()) ? items[static_cast<size_t>(i)] : nullptr;
}

}  // namespace

const GraphAttribute* KxSpatialGraphView::nodeScaleAttribute() const {
    return chosen(portNodeScale, nodeScaleItems_);
}

const GraphAttribute* KxSpatialGraphView::nodeColorAttribute() const {
    return chosen(portNodeColoring, nodeColorItems_);
}

const GraphAttribute* KxSpatialGraphView::tubeScaleAttribute() const {
    return chosen(portTubeScale, tubeScaleItems_);
}

const GraphAttribute* KxSpatialGraphView::segmentColorAttribute() const {
    return chosen(portSegmentColoring, segmentColorItems_);
}

bool KxSpatialGraphView::nodeNoLabelColors() const {
    return portNodeLabelColoringOptions.getValue() == COLORMAP;
}

bool KxSpatialGraphView::segmentNoLabelColors() const {
    return portSegmentLabelColoringOptions.getValue() == COLORMAP;
}

// ---------------------------------------------------------------------------
// Console and picks

void KxSpatialGraphView::getVisibility(String& text) const {
    String edges, vertices;
    visible_.serialize(edges, vertices);
    text = String::format("%s %s", edges.getString(), vertices.getString());
}

void KxSpatialGraphView::setPickQueryInfo(const SoPickedPoint* pickedPoint) {
    const KxSpatialGraphInterface* g = graph();
    int vertex = -1, edge = -1;
    SpatialGraphPoint point;
    if (!node_ || !g ||
        !node_->getPickedElement(&visible_, &highlighted_, pickedPoint, vertex, edge, point)) {
        return;
    }
    String text;
    if (vertex >= 0 && vertex < g->doGetNumVertices()) {
        Vec3f c = g->doGetVertexCoords(vertex);
        text = String::format("Node = %d (%g %g %g)\n", vertex, c.x, c.y, c.z);
    } else if (edge >= 0) {
        text = String::format("Segment = %d\n", edge);
    } else if (point.edgeNum >= 0 && point.edgeNum < g->doGetNumEdges() && point.pointNum >= 0 &&
               point.pointNum < g->doGetNumEdgePoints(point.edgeNum)) {
        Vec3f c = g->doGetEdgePoint(point.edgeNum, point.pointNum);
        text = String::format("Point = %d (%g %g %g)\n", point.pointNum, c.x, c.y, c.z);
    }
    SbVec3f p = pickedPoint->getPoint();
    text += String::format("Picked Point = %g %g %g\n", p[0], p[1], p[2]);
    theMsg->print(text.std());
}

// Left-button presses that hit this view's scene are answered with the pick text.
void KxSpatialGraphView::onPick(KxPickEvent& event) {
    if (!node_ || !event.mouse || !event.picked ||
        !SoMouseButtonEvent::isButtonPressEvent(event.mouse, SoMouseButtonEvent::BUTTON1)) {
        return;
    }
    const SoPath* path = event.picked->getPath();
    if (!path || !path->containsNode(node_->getSpatialGraphNode())) {
        return;
    }
    setPickQueryInfo(event.picked);
    event.handled = true;
}

int KxSpatialGraphView::parseSetLineWidth(Tcl_Interp* interp, int argc, char** argv) {
    double w = 0.0;
    if (argc != 3 || Tcl_GetDouble(interp, argv[2], &w) != TCL_OK) {
        return KxCommandReply::usage(interp, "setLineWidth <w>");
    }
    setLineWidth(static_cast<float>(w));
    portSegmentWidth.setValue(static_cast<float>(w));
    return TCL_OK;
}

// Two words, or one list of two words (the answer of getVisibility).
int KxSpatialGraphView::parseSetVisibility(Tcl_Interp* interp, int argc, char** argv) {
    int count = 0;
    const char** words = nullptr;
    if (argc == 3 && Tcl_SplitList(interp, argv[2], &count, &words) != TCL_OK) {
        return KxCommandReply::failWithTclMessage(interp);
    }
    bool list = argc == 3 && count == 2;
    const char* edges = list ? words[0] : argc == 4 ? argv[2] : nullptr;
    const char* vertices = list ? words[1] : argc == 4 ? argv[3] : nullptr;
    int result = TCL_OK;
    if (!edges) {
        result = KxCommandReply::usage(interp, "setVisibility <edges> <vertices>");
    } else if (!graph() || !node_) {
        result = KxCommandReply::failf(interp, "Error: %s shows no graph.", getLabel());
    } else {
        visible_.deserialize(edges, vertices);
        visible_.deselectAllPoints();
        visible_.selectAllPointsOnEdgesFromSelection(visible_);
        rebuildSceneGraph();
    }
    if (words) {
        Tcl_Free(reinterpret_cast<char*>(words));
    }
    return result;
}

int KxSpatialGraphView::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "setLineWidth") == 0) {
        return parseSetLineWidth(interp, argc, argv);
    }
    if (std::strcmp(cmd, "getVisibility") == 0 && argc == 2) {
        if (!graph() || !node_) {
            return KxCommandReply::failf(interp, "Error: %s shows no graph.", getLabel());
        }
        String text;
        getVisibility(text);
        Tcl_SetObjResult(interp, Tcl_NewStringObj(text.getString(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "setVisibility") == 0) {
        return parseSetVisibility(interp, argc, argv);
    }
    return KxModule::parse(interp, argc, argv);
}

void KxSpatialGraphView::savePorts(std::string& out) const {
    KxModule::savePorts(out);
    if (graph() && node_) {
        String text;
        getVisibility(text);
        out += String::format("{%s} setVisibility %s\n", getLabel(), text.getString()).std();
    }
}

void KxSpatialGraphView::registerClass() {
    theClassRegistry->registerClass("KxSpatialGraphView", "kxspatialgraph",
                                    []() -> KxObject* { return new KxSpatialGraphView; });
    theClassRegistry->registerCommand("KxSpatialGraphView", "setLineWidth", "setLineWidth <w>");
    theClassRegistry->registerCommand("KxSpatialGraphView", "getVisibility", "getVisibility");
    theClassRegistry->registerCommand("KxSpatialGraphView", "setVisibility",
                                      "setVisibility <edges> <vertices>");
}
