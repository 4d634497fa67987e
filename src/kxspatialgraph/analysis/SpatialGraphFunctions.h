#pragma once

#include <Inventor/SbMatrix.h>

#include "korva/base/BitField.h"
#include "korva/base/Box3f.h"
#include "korva/base/DArray.h"
#include "korva/base/String.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/analysis/NodeType.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

class HierarchicalLabels;
class KxSpatialGraph;
class KxSpatialGraphInterface;

// Common questions about a spatial graph (vertex kinds, contours, lengths,
// transformed geometry, labelled elements) and two whole-graph edits. Vertex
// and edge indices outside the graph get an "Error: " line and an empty answer.
class SpatialGraphFunctions {
public:
    static NodeType::Enum getNodeType(const KxSpatialGraph* graph, int v);
    static bool isEndingNode(const KxSpatialGraph* graph, int v);
    static bool isBranchingNode(const KxSpatialGraph* graph, int v);
    // Ascending.
    static DArray<int> getEndingNodes(const KxSpatialGraph* graph);
    static DArray<int> getBranchingNodes(const KxSpatialGraph* graph);
    static int getNumberOfNodesOfTypeInSelection(const KxSpatialGraph* graph,
                                                 const SpatialGraphSelection& selection, NodeType::Enum type);

    // A closed contour: an edge from a vertex to itself, or between two
    // vertices less than 0.0001 apart.
    static bool isContour(const KxSpatialGraph* graph, int e);
    // A vertex whose only edge is a contour (a self-loop gives two entries).
    static bool isContourVertex(const KxSpatialGraph* graph, int v);

    // Sum of the distances between consecutive points; 0 below two points.
    static float getEdgeLength(const KxSpatialGraph* graph, int e);
    // The sum of all edge lengths.
    static double getTotalEdgeLength(const KxSpatialGraph* graph);
    // (x, y, z, 1) times m, each coordinate divided by the resulting w.
    static Vec3f getTransformedPoint(const SbMatrix& m, const Vec3f& p);
    static Vec3f getTransformedPoint(const KxSpatialGraph* graph, const Vec3f& p);
    static DArray<Vec3f> getTransformedEdgePoints(const KxSpatialGraphInterface* graph, int e);
    // Deliberate: an edge without points answers the box (0, -1e10, 0, -1e10,
    // 0, -1e10), empty because its minima exceed its maxima.
    static Box3f getTransformedEdgeBoundingBox(const KxSpatialGraphInterface* graph, int e);
    static float getTransformedEdgeLength(const KxSpatialGraph* graph, int e);

    // Inserts evenly spaced points wherever consecutive points of an edge lie
    // farther apart than maxDistance; point attributes get zeros there. The
    // whole graph is rebuilt in one pass. False after an "Error: " line (the
    // graph unchanged) for a distance that is not positive or would create
    // more points than a graph can hold.
    static bool resampleWithMaximumPointDistance(KxSpatialGraph* graph, float maxDistance);
    // Deletes every contour edge with its end vertices, not undoably; an end
    // vertex that has other edges stays. Returns the number of contours. Like
    // resampling, it leaves touching and firing the graph to the caller.
    static int removeContours(KxSpatialGraph* graph);

    // Selections sized to the graph holding the elements whose value of the
    // named int attribute equals labelId exactly (child labels not included);
    // empty when there is no such attribute at that location.
    static SpatialGraphSelection getEdgesWithLabelId(const KxSpatialGraph* graph, const char* attributeName,
                                                     int labelId);
    static SpatialGraphSelection getVerticesWithLabelId(const KxSpatialGraph* graph,
                                                        const char* attributeName, int labelId);
    static SpatialGraphSelection getEdgesAndVerticesWithLabelId(const KxSpatialGraph* graph,
                                                                const char* attributeName, int labelId);
    // Bits 0 .. max label id, set for the ids getChildIds gives for the label
    // called name; all clear when there is no such label.
    static BitField getLabelIdsInSubTree(const HierarchicalLabels* labels, const String& name);
};
