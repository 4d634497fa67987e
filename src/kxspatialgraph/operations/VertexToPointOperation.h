#pragma once

#include "kxspatialgraph/operations/Operation.h"
#include "kxspatialgraph/operations/SavedEdges.h"
#include "kxspatialgraph/operations/SavedVertices.h"

// Turns the first highlighted vertex, which must have exactly two distinct
// edges, into an ordinary edge point: the two edges are joined into one new
// last edge running from the first edge's far end through the vertex's
// position to the second edge's far end, keeping the first edge's edge values
// and both edges' point values. Undo reinserts the vertex and both edges at
// their former indices and removes the joined edge. A vertex without exactly
// two distinct edges is refused with an error line; nothing changes then.
class VertexToPointOperation : public Operation {
public:
    VertexToPointOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                           const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // The visible selection shrunk by one vertex and one edge, surviving
    // elements' states added at their new indices, the joined edge selected
    // with all its points. The visible selection as given when refused.
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override;

private:
    bool canConvert(int v) const;
    bool startsAtVertex(int e) const;
    DArray<Vec3f> joinedPolyline() const;
    void setJoinedPointValues(int joined) const;

    int vertex_ = -1;
    // Edge e1 and e2 in the vertex's incidence-list order.
    int first_ = -1;
    int second_ = -1;
    SavedVertices savedVertex_;
    // Both edges, ascending.
    SavedEdges savedEdges_;
    int joinedEdge_ = -1;
    bool done_ = false;
};
