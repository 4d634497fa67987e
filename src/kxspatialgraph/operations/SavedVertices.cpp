#include "kxspatialgraph/operations/SavedVertices.h"

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

void SavedVertices::save(const KxSpatialGraph& graph, const DArray<int>& vertices) {
    indices_ = vertices;
    coords_.clear();
    for (int v : vertices) {
        coords_.append(graph.getVertexCoords(v));
    }
    values_.clear();
    attributeIds_.clear();
    for (int a = 0; a < graph.getNumVertexAttributes(); ++a) {
        const EdgeVertexAttribute* attribute = graph.getVertexAttribute(a);
        values_.append(attribute->getValues(vertices));
        attributeIds_.append(attribute->getId());
    }
}

void SavedVertices::reinsert(KxSpatialGraph& graph) const {
    graph.insertMultipleVertices(indices_, coords_, values_, attributeIds_);
}
