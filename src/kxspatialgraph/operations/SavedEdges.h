#pragma once

#include "korva/base/DArray.h"
#include "korva/base/TypedData2D.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/model/SpatialGraphEdge.h"

class KxSpatialGraph;

// Everything needed to put removed edges back exactly: their indices
// (ascending), ends, polylines, and the values of every edge and point
// attribute with the attributes' ids. Attribute values are kept in the
// graph's attribute order; reinsertion matches them to attributes by id.
class SavedEdges {
public:
    // Saves the listed edges (ascending, no duplicates, all in the graph).
    void save(const KxSpatialGraph& graph, const DArray<int>& edges);
    // Inserts the saved edges at their former indices (their end vertices
    // must exist again).
    void reinsert(KxSpatialGraph& graph) const;

    int size() const { return indices_.size(); }
    const DArray<int>& indices() const { return indices_; }
    const SpatialGraphEdge& ends(int k) const { return ends_[k]; }
    const DArray<Vec3f>& polyline(int k) const { return polylines_[k]; }
    // Per edge attribute one block, row k for the k-th saved edge.
    const DArray<TypedData2D>& edgeValues() const { return edgeValues_; }
    const DArray<int>& edgeAttributeIds() const { return edgeAttributeIds_; }
    // Per point attribute, per saved edge: the values of that edge's points.
    const DArray<DArray<TypedData2D>>& pointValues() const { return pointValues_; }
    const DArray<int>& pointAttributeIds() const { return pointAttributeIds_; }

    // Copies count rows of src from srcRow on into dst from dstRow on; with
    // reversed the rows are taken from srcRow + count - 1 down to srcRow.
    static void copyRows(const TypedData2D& src, int srcRow, int count, bool reversed, TypedData2D& dst,
                         int dstRow);

private:
    DArray<int> indices_;
    DArray<SpatialGraphEdge> ends_;
    DArray<DArray<Vec3f>> polylines_;
    DArray<TypedData2D> edgeValues_;
    DArray<int> edgeAttributeIds_;
    DArray<DArray<TypedData2D>> pointValues_;
    DArray<int> pointAttributeIds_;
};
