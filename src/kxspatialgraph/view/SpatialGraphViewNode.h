#pragma once

#include <algorithm>

#include <Inventor/SbColor.h>

#include "korva/base/HashTable.h"
#include "korva/base/Vec3f.h"
#include "korva/inventor/SoRefPtr.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/PolylineFrames.h"

class GraphAttribute;
class KxColormap;
class KxPortColormap;
class SoDrawStyle;
class SoLineSet;
class SoNode;
class SoPickedPoint;
class SoPointSet;
class SoSeparator;
class SoSphereSet;
class SoTransform;
class SoTubeSet;
class SoVertexProperty;

// Turns one spatial graph, read through its interface at every call, into an
// Open Inventor scene: polylines for edges, markers for edge points, spheres
// for vertices and tubes for edges, each for a "visible" selection and, over
// it, a "highlighted" one. Maps picks back to vertices, edges and points.
// Owns no graph data.
//
// Scene (children of the root, in order): transform, vertices (sphere set),
// lines, highlighted lines, points, highlighted points, legacy tubes (its
// first child a draw style of line width 1), tubes (SoTubeSet).
//
// Point-set layout (renderPoints, getPointIndex, getPickedElement): first the
// points of every edge whose points are all selected, ascending by edge, then
// the individually selected points in list order.
//
// Calls with a null selection or attribute, or before the shape they change
// exists, do nothing.
class SpatialGraphViewNode {
public:
    SpatialGraphViewNode();
    explicit SpatialGraphViewNode(const KxSpatialGraphInterface* graph);
    ~SpatialGraphViewNode();
    SpatialGraphViewNode(const SpatialGraphViewNode&) = delete;
    SpatialGraphViewNode& operator=(const SpatialGraphViewNode&) = delete;

    void setSpatialGraphInterface(const KxSpatialGraphInterface* graph) { graph_ = graph; }
    SoSeparator* getSpatialGraphNode() const { return root_; }
    SoTransform* getTransform() const { return transform_; }
    // The node's transform becomes t (a new one when null), replacing the old one in the root.
    void setTransform(SoTransform* t);

    void setEdgeColormapPort(const KxPortColormap* port) { edgeColormapPort_ = port; }
    void setVertexColormapPort(const KxPortColormap* port) { vertexColormapPort_ = port; }
    void setEdgeDefaultColor(const SbColor& c) { edgeDefaultColor_ = c; }
    void setVertexDefaultColor(const SbColor& c) { vertexDefaultColor_ = c; }
    void setHighlightColor(const SbColor& c) { highlightColor_ = c; }
    void setTransparency(float t) { transparency_ = t; }
    float getLineWidth() const { return lineWidth_; }
    void setLineWidth(float w);
    void setPointSize(float s);

    void makeLines(const SpatialGraphSelection* visible);
    void renderLines(const SpatialGraphSelection* sel, SoLineSet* lineSet);
    void makeHighlightedLines(const SpatialGraphSelection* highlighted, const SpatialGraphSelection* visible);
    void makePoints(const SpatialGraphSelection* visible);
    void renderPoints(const SpatialGraphSelection* sel, SoPointSet* pointSet);
    void makeHighlightedPoints(const SpatialGraphSelection* sel);
    void makeVertices(const SpatialGraphSelection* visible);
    void makeHighlightedVertices(const SpatialGraphSelection* highlighted,
                                 const SpatialGraphSelection* visible);
    // Tubes drawn on the GPU by one SoTubeSet: every edge is a line, the
    // visible edges' bits are set.
    void makeGpuTubes(const SpatialGraphSelection* visible);
    void makeHighlightedTubes(const SpatialGraphSelection* highlighted, const SpatialGraphSelection* visible);
    // Legacy tubes of faces, for drivers without shaders. Radius at each
    // point: the float point attribute radiusAttr (1 without) × scale.
    // noLabelColors as in setLineColor.
    void makeLegacyTubes(const SpatialGraphSelection* visible, const GraphAttribute* colorAttr,
                         const GraphAttribute* radiusAttr, float scale, bool noLabelColors);

    void setTubeColorAttribute(const GraphAttribute* attr);
    void setTubeScaleAttribute(const GraphAttribute* attr);
    void setTubeScaleFactor(float f);
    void setTubeConstantColor(const SbColor& c);
    void setTubeColormapDataWindow(float minValue, float maxValue);
    void setTubeColormap(const KxColormap* colormap);

    // Colours from an attribute: a label group's colours (unless
    // noLabelColors) or the colormap port; the default colour otherwise.
    void setLineColor(const SpatialGraphSelection* sel, const GraphAttribute* attr, bool noLabelColors);
    void setPointsColor(const SpatialGraphSelection* sel, const GraphAttribute* attr, bool noLabelColors);
    void setVertexColor(const SpatialGraphSelection* sel, const GraphAttribute* attr, bool noLabelColors);
    // Sphere radius = factor, or max(0, vertex value) × factor with an attribute.
    void setVertexScale(const SpatialGraphSelection* sel, const GraphAttribute* attr, float factor);
    // Label id -> colour for every id up to the group's largest; ids without
    // a colour get the undefined-label colour.
    void createColorTable(const GraphAttribute* attr, HashTable<int, SbColor>& table) const;
    const SbColor& getUndefinedLabelColor() const { return undefinedColor_; }

    // Index of (edge, point) in the point-set layout of sel; -1 when absent or without a point set.
    int getPointIndex(int edge, int point, const SpatialGraphSelection* sel) const;
    // True when the pick hit a shape of this node; fills the matching output, the others become -1.
    bool getPickedElement(const SpatialGraphSelection* visible, const SpatialGraphSelection* highlighted,
                          const SoPickedPoint* pickedPoint, int& vertex, int& edge,
                          SpatialGraphPoint& point) const;
    // Frame along an edge, one normal and binormal per point (none without a graph).
    PolylineFrames edgeFrames(int edge, bool closed) const;

    void removeLines();
    void removeHighlightedLines();
    void removePoints();
    void removeHighlightedPoints();
    void removeVertices();
    void removeHighlightedVertices();
    void removeLegacyTubes();
    // Takes the tube set out of the scene and keeps it for the next makeGpuTubes.
    void removeGpuTubes();

    SoLineSet* getLineSet() const { return lineSet_; }
    SoLineSet* getHighlightedLineSet() const { return highlightedLineSet_; }
    SoPointSet* getPointSet() const { return pointSet_; }
    SoPointSet* getHighlightedPointSet() const { return highlightedPointSet_; }
    SoSphereSet* getSphereSet() const { return sphereSet_; }
    SoTubeSet* getTubeSet() const { return tubeSet_; }
    SoSeparator* getLegacyTubeSeparator() const { return legacyTubeSeparator_; }

    // 256 random colours over [0, 255], shared by all nodes, made once.
    static const KxColormap* getRandomColormap();

private:
    void init();
    void addShape(SoSeparator* group, SoDrawStyle* style, SoNode* shape);
    // Calls f(edge, point) for the points of sel in the point-set layout.
    template <class F>
    void forEachLayoutPoint(const SpatialGraphSelection& sel, F f) const;
    void makePointSet(const SpatialGraphSelection* sel, SoSeparator* group, SoRefPtr<SoPointSet>& pointSet,
                      const SbColor& colour);
    // Whether attr gives colours by value (its label group's table, unless
    // noLabelColors, or else the port); fills the table for labels.
    bool prepareValueColors(const GraphAttribute* attr, bool noLabelColors, const KxPortColormap* port,
                            bool& labels, HashTable<int, SbColor>& table) const;
    SbColor valueColor(const GraphAttribute* attr, int index, int point, bool labels,
                       const HashTable<int, SbColor>& table, const KxPortColormap* port) const;
    bool useLabels(const GraphAttribute* attr, bool noLabelColors) const;

    const KxSpatialGraphInterface* graph_ = nullptr;
    const KxPortColormap* edgeColormapPort_ = nullptr;
    const KxPortColormap* vertexColormapPort_ = nullptr;
    SbColor edgeDefaultColor_;
    SbColor vertexDefaultColor_;
    SbColor undefinedColor_;
    SbColor highlightColor_;
    float lineWidth_ = 1.0f;
    float transparency_ = 0.0f;

    SoRefPtr<SoSeparator> root_;
    SoRefPtr<SoTransform> transform_;
    SoRefPtr<SoSeparator> vertexSeparator_;
    SoRefPtr<SoSeparator> lineSeparator_;
    SoRefPtr<SoSeparator> highlightedLineSeparator_;
    SoRefPtr<SoSeparator> pointSeparator_;
    SoRefPtr<SoSeparator> highlightedPointSeparator_;
    SoRefPtr<SoSeparator> legacyTubeSeparator_;
    SoRefPtr<SoSeparator> tubeSeparator_;
    SoRefPtr<SoDrawStyle> tubeDrawStyle_;
    SoRefPtr<SoDrawStyle> pointDrawStyle_;
    SoRefPtr<SoLineSet> lineSet_;
    SoRefPtr<SoLineSet> highlightedLineSet_;
    SoRefPtr<SoSphereSet> sphereSet_;
    SoRefPtr<SoPointSet> pointSet_;
    SoRefPtr<SoPointSet> highlightedPointSet_;
    SoRefPtr<SoTubeSet> tubeSet_;
};

template <class F>
void SpatialGraphViewNode::forEachLayoutPoint(const SpatialGraphSelection& sel, F f) const {
    int numEdges = std::min(graph_->doGetNumEdges(), sel.getNumEdges());
    for (int e = 0; e < numEdges; ++e) {
        if (sel.allPointsOnEdgeSelected(e)) {
            for (int p = 0; p < graph_->doGetNumEdgePoints(e); ++p) {
                f(e, p);
            }
        }
    }
    for (int i = 0; i < sel.getNumSelectedPoints(); ++i) {
        SpatialGraphPoint point = sel.getSelectedPoint(i);
        f(point.edgeNum, point.pointNum);
    }
}
