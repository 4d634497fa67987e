#include "kxspatialgraph/operations/ConnectPointToVertexOperationSet.h"

#include "kxspatialgraph/operations/VertexToPointOperation.h"

void ConnectPointToVertexOperationSet::build() {
    int u = highlighted_.getSelectedVertex(0);
    int newVertex = convertPointToVertex(selectedPoint(0));
    if (u < 0 || newVertex < 0) {
        return;
    }
    connect(u, newVertex);
    // Deliberate: u is converted only when that is possible (otherwise the
    // message says why), since the conversion needs two different edges.
    if (removeIntermediateVertices_ && canConvertToPoint(u)) {
        run(new VertexToPointOperation(graph_, selectionOfVertices(u), working()));
    }
}
