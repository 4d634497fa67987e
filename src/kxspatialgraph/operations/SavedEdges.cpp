#include "kxspatialgraph/operations/SavedEdges.h"

#include <cstring>

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

void SavedEdges::save(const KxSpatialGraph& graph, const DArray<int>& edges) {
    indices_ = edges;
    ends_.clear();
    polylines_.resize(edges.size());
    for (int k = 0; k < edges.size(); ++k) {
        ends_.append(graph.getEdge(edges[k]));
        polylines_[k] = graph.getEdgePoints(edges[k]);
    }
    edgeValues_.clear();
    edgeAttributeIds_.clear();
    for (int a = 0; a < graph.getNumEdgeAttributes(); ++a) {
        const EdgeVertexAttribute* attribute = graph.getEdgeAttribute(a);
        edgeValues_.append(attribute->getValues(edges));
        edgeAttributeIds_.append(attribute->getId());
    }
    pointValues_.resize(graph.getNumEdgePointAttributes());
    pointAttributeIds_.clear();
    for (int a = 0; a < graph.getNumEdgePointAttributes(); ++a) {
        const PointAttribute* attribute = graph.getEdgePointAttribute(a);
        DArray<TypedData2D>& blocks = pointValues_[a];
        blocks.resize(edges.size());
        for (int k = 0; k < edges.size(); ++k) {
            blocks[k] = attribute->getValues(edges[k]);
        }
        pointAttributeIds_.append(attribute->getId());
    }
}

void SavedEdges::reinsert(KxSpatialGraph& graph) const {
    graph.insertMultipleEdges(indices_, ends_, polylines_, edgeValues_, edgeAttributeIds_, pointValues_,
                              pointAttributeIds_);
}

void SavedEdges::copyRows(const TypedData2D& src, int srcRow, int count, bool reversed, TypedData2D& dst,
                          int dstRow) {
    size_t rowBytes = static_cast<size_t>(src.getRowBytes());
    for (int i = 0; i < count; ++i) {
        int from = reversed ? srcRow + count - 1 - i : srcRow + i;
        std::memcpy(dst.getRow(dstRow + i), src.getRow(from), rowBytes);
    }
}
