#include "kxspatialgraph/operations/MoveVertexOperationSet.h"

#include "kxspatialgraph/operations/MoveOperation.h"
#include "kxspatialgraph/operations/ReplaceOperation.h"

MoveVertexOperationSet::MoveVertexOperationSet(KxSpatialGraph* graph, int vertex, const Vec3f& position,
                                               const SmallArray<int, 2>& edges,
                                               const DArray<DArray<Vec3f>>& polylines,
                                               const SpatialGraphSelection& highlighted,
                                               const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible),
      vertex_(vertex),
      position_(position),
      edges_(edges),
      polylines_(polylines) {}

void MoveVertexOperationSet::build() {
    run(new MoveOperation(graph_, vertex_, position_, selectionOfVertices(vertex_), working()));
    for (int i = 0; i < edges_.size() && i < polylines_.size(); ++i) {
        SpatialGraphSelection edge(graph_);
        edge.selectEdge(edges_[i]);
        run(new ReplaceOperation(graph_, edges_[i], polylines_[i], edge, working()));
    }
}
