#pragma once

#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"
#include "kxspatialgraph/operations/Operation.h"

// An edit made of other operations, undone in one step. The first exec()
// lets the subclass's build() create the sub-operations and run them one
// after another, each on the graph as the previous one left it and with the
// previous one's visible selection; undo() reverts them newest first.
//
// Deliberate: undo keeps the sub-operations and the next exec() runs the same
// ones again instead of building a fresh list. An undo may leave a vertex's
// edges in another incidence order, and a rebuilt conversion of that vertex
// would join its edges the other way round; the kept sub-operations repeat
// the first exec exactly. They are deleted with the set.
class OperationSet : public Operation {
public:
    OperationSet(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                 const SpatialGraphSelection& visible);
    ~OperationSet() override;

    // build() the first time, afterwards the kept sub-operations again.
    void exec() override;
    void undo() override;
    // The last sub-operation's; a copy of the given visible selection when none ran.
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override;
    // The vertex that the set reports as new (see newVertex_), else nothing.
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override;

    // Whether ConnectPointToVertexOperationSet turns the vertex it connects
    // from into an edge point afterwards. Default false.
    void setRemoveIntermediateVertices(bool remove) { removeIntermediateVertices_ = remove; }
    int getNumOperations() const { return operations_.size(); }

protected:
    // Creates and runs the sub-operations with run(); called by the first exec().
    virtual void build() = 0;

    // Appends op, runs it and takes its visible selection after the edit as
    // the working visible selection. Answers op.
    template <class Op>
    Op* run(Op* op);
    // What the next sub-operation gets as its visible selection.
    const SpatialGraphSelection& working() const { return operations_.isEmpty() ? visible_ : working_; }

    // Selections sized to the graph as it is now, holding exactly the given
    // elements (a negative vertex index is left out).
    SpatialGraphSelection selectionOfVertices(int a, int b = -1) const;
    SpatialGraphSelection selectionOfPoint(const SpatialGraphPoint& p) const;

    // The i-th selected edge point of the highlighted selection; (-1, -1)
    // when it has fewer.
    SpatialGraphPoint selectedPoint(int i) const;
    // Splits p's edge at p by a PointToVertexOperation; answers the new vertex,
    // or -1 when the operation refused the point (an end point, or one that
    // an earlier sub-operation renumbered away).
    int convertPointToVertex(const SpatialGraphPoint& p);
    // Joins a and b by an AddTracedEdgeOperationSet along points with radii.
    void addTracedEdge(int a, int b, const DArray<Vec3f>& points, const DArray<float>& radii);
    // Joins vertex by a traced edge to the highlighted selection's first
    // selected vertex or, when it has none, to its first selected edge point
    // (a ConnectTracedPointToVertexOperationSet). Nothing when it has neither.
    void traceFromSelectionTo(int vertex, const DArray<Vec3f>& points, const DArray<float>& radii);
    // Joins a and b by a ConnectOperation.
    void connect(int a, int b);
    // True when v has exactly two incident edges that are different edges,
    // the condition of a VertexToPointOperation; otherwise prints why not.
    bool canConvertToPoint(int v) const;

    DArray<Operation*> operations_;
    bool removeIntermediateVertices_ = false;
    // The vertex to highlight after exec; -1 for none. Set by the sets that
    // create a vertex for the user.
    int newVertex_ = -1;

private:
    SpatialGraphSelection working_;
};

template <class Op>
Op* OperationSet::run(Op* op) {
    operations_.append(op);
    op->exec();
    working_ = op->getVisibleSelectionAfterOperation();
    return op;
}
