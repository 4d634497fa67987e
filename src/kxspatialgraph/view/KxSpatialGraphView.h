#pragma once

#include <memory>
#include <string>
#include <vector>

#include "korva/base/String.h"
#include "korva/inventor/SoRefPtr.h"
#include "korva/modules/KxModule.h"
#include "korva/modules/KxPortColorList.h"
#include "korva/modules/KxPortColormap.h"
#include "korva/modules/KxPortFloatSlider.h"
#include "korva/modules/KxPortMenu.h"
#include "korva/modules/KxPortRadioBox.h"
#include "korva/modules/KxPortSeparator.h"
#include "korva/modules/KxPortToggleList.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/KxRangeSetModuleImpl.h"
#include "kxspatialgraph/view/QkSpatialGraphNotifier.h"

class GraphAttribute;
class KxSpatialGraph;
class KxSpatialGraphInterface;
class SoPickedPoint;
class SoSeparator;
class SpatialGraphViewNode;
struct KxPickEvent;

// The display module of a spatial graph: draws the graph connected to "data"
// (through its read-only interface) as spheres for nodes and lines, points
// or tubes for segments, scaled and coloured by the ports, over the
// "visible" selection with the "highlighted" one in the highlight colour.
// Its scene (getScene) is shown by the host viewer, which hands it left-button
// picks: the view then prints what was hit ("Node = ...", "Segment = ...",
// "Point = ...", "Picked Point = ..."). Console, besides the ports':
// setLineWidth W, getVisibility, setVisibility EDGES VERTICES.
class KxSpatialGraphView : public KxModule {
public:
    KxSpatialGraphView();
    ~KxSpatialGraphView() override;

    const char* getTypeName() const override { return "KxSpatialGraphView"; }
    bool isOfType(const char* typeName) const override;

    // The module's scene: the node's scene once a graph has been computed.
    SoSeparator* getScene() const { return scene_; }
    // Null before the first compute with a graph.
    SpatialGraphViewNode* getNode() const { return node_.get(); }
    const SpatialGraphSelection& getVisibleSelection() const { return visible_; }
    const SpatialGraphSelection& getHighlightedSelection() const { return highlighted_; }
    // Shows the selected elements in the highlight colour (sized like the graph).
    void setHighlightedSelection(const SpatialGraphSelection& sel);
    bool usesGpuTubes() const { return gpuTubes_; }

    void setColoring();
    void showVertices(bool on);
    void showLines(bool on);
    void showPoints(bool on);
    void showTubes(bool on);
    void showEdges(bool on);
    void renderHighlightedElements(bool on);
    // The show-operations for the current port values.
    void rebuildSceneGraph();
    void setLineWidth(float w);
    void setPointSize(float s);
    void setTransparency(float t);
    // The visible selection's serialised edge and vertex strings, separated by a space.
    void getVisibility(String& text) const;
    // Prints what the pick hit, then where; nothing when it missed the graph.
    void setPickQueryInfo(const SoPickedPoint* pickedPoint);

    // Shows graph as tubes only (no lines or points), coloured by colorAttr
    // (null: the constant colour) and scaled by the float point attribute
    // radii × scale (null: radius scale), and its nodes as spheres of
    // nodeRadius (none when it is 0); answers the view's scene, which keeps
    // its picture when the view is gone.
    SoSeparator* showAsTubes(KxSpatialGraph* graph, const GraphAttribute* colorAttr,
                             const GraphAttribute* radii, float scale, float nodeRadius);

    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    void savePorts(std::string& out) const override;
    QkSpatialGraphNotifier* getNotifier() { return &notifier_; }
    const KxRangeSetModuleImpl& getRangeSetModuleImpl() const { return rangeSet_; }
    static void registerClass();

    KxPortToggleList portItemsToShow;
    KxPortSeparator portNodeSeparator;
    KxPortMenu portNodeScale;
    KxPortFloatSlider portNodeScaleFactor;
    KxPortMenu portNodeColoring;
    KxPortRadioBox portNodeLabelColoringOptions;
    KxPortColormap portNodeColormap;
    KxPortColorList portNodeColor;
    KxPortSeparator portSegmentSeparator;
    KxPortToggleList portSegmentStyle;
    KxPortMenu portTubeScale;
    KxPortFloatSlider portTubeScaleFactor;
    KxPortFloatSlider portSegmentWidth;
    KxPortMenu portSegmentColoring;
    KxPortRadioBox portSegmentLabelColoringOptions;
    KxPortColormap portSegmentColormap;
    KxPortColorList portSegmentColor;
    KxPortFloatSlider portPointSize;
    // Optional: a spreadsheet whose selected rows are highlighted once.
    KxConnection portStatistics;

    enum Items { NODES = 0, SEGMENTS = 1 };
    enum SegmentStyle { LINES = 0, POINTS = 1, TUBES = 2 };
    enum LabelColoring { LABELS = 0, COLORMAP = 1 };

protected:
    void update() override;
    void compute() override;

private:
    const KxSpatialGraphInterface* graph() const;
    bool adoptGraph(const KxSpatialGraphInterface* g);
    void createNode(const KxSpatialGraphInterface* g);
    void applyNodeScaleRule(const KxSpatialGraphInterface* g);
    void updateMenus();
    void updatePortVisibility();
    void highlightStatistics();
    void prepareTubeColors();
    // The attribute chosen in a menu (null at "Constant").
    const GraphAttribute* nodeScaleAttribute() const;
    const GraphAttribute* nodeColorAttribute() const;
    const GraphAttribute* tubeScaleAttribute() const;
    const GraphAttribute* segmentColorAttribute() const;
    bool segmentNoLabelColors() const;
    bool nodeNoLabelColors() const;
    void onPick(KxPickEvent& event);
    int parseSetLineWidth(Tcl_Interp* interp, int argc, char** argv);
    int parseSetVisibility(Tcl_Interp* interp, int argc, char** argv);

    std::unique_ptr<SpatialGraphViewNode> node_;
    SoRefPtr<SoSeparator> scene_;
    SpatialGraphSelection visible_;
    SpatialGraphSelection highlighted_;
    const KxSpatialGraphInterface* shownGraph_ = nullptr;
    float lineWidth_ = 1.0f;
    float pointSize_ = 4.0f;
    float transparency_ = 0.0f;
    bool gpuTubes_ = true;
    // Attributes behind the menu items after "Constant", in menu order.
    std::vector<const GraphAttribute*> nodeScaleItems_;
    std::vector<const GraphAttribute*> nodeColorItems_;
    std::vector<const GraphAttribute*> tubeScaleItems_;
    std::vector<const GraphAttribute*> segmentColorItems_;
    QkSpatialGraphNotifier notifier_;
    KxRangeSetModuleImpl rangeSet_{this};
    int pickCallbackId_ = -1;
};
