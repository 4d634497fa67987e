#pragma once

#include "kxspatialgraph/operations/Operation.h"
#include "kxspatialgraph/operations/SavedEdges.h"
#include "kxspatialgraph/operations/SavedVertices.h"

// Deletes the highlighted edges, and the highlighted vertices whose edges are
// all highlighted too (a vertex goes only together with all its edges; an
// edge may go without its ends). Selected edge points are not deleted. Undo
// reinserts everything at its former index with all attribute values.
// Selected indices outside the graph are ignored.
class DeleteOperation : public Operation {
public:
    DeleteOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                    const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // The visible selection compacted over the deleted elements: surviving
    // visible vertices and edges (and edges with all points selected) at
    // their new indices. Individually selected points are dropped.
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override;
    // Inherited: the highlighted selection, without the vertices that exec()
    // kept because some of their edges were not highlighted.

protected:
    SavedEdges removedEdges_;
    SavedVertices removedVertices_;
};
