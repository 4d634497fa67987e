#pragma once

#include "korva/base/DArray.h"
#include "korva/base/TypedData2D.h"
#include "korva/base/Vec3f.h"

class KxSpatialGraph;

// Everything needed to put removed vertices back exactly: their indices
// (ascending), coordinates and the values of every vertex attribute with the
// attributes' ids (in the graph's attribute order; reinsertion matches by id).
class SavedVertices {
public:
    // Saves the listed vertices (ascending, no duplicates, all in the graph).
    void save(const KxSpatialGraph& graph, const DArray<int>& vertices);
    // Inserts the saved vertices at their former indices.
    void reinsert(KxSpatialGraph& graph) const;

    int size() const { return indices_.size(); }
    const DArray<int>& indices() const { return indices_; }

private:
    DArray<int> indices_;
    DArray<Vec3f> coords_;
    DArray<TypedData2D> values_;
    DArray<int> attributeIds_;
};
