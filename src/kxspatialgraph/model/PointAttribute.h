#pragma once

#include <vector>

#include "korva/base/DArray.h"
#include "korva/base/TypedData2D.h"
#include "korva/base/TypedElement.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"

// An attribute with one value per edge point, laid out like the edge point
// storage: the values of edge 0's points, then edge 1's, ... in one raw byte
// buffer, plus offsets (edge count + 1 entries, first 0). The graph keeps the
// blocks in step with the edges' point counts; e is an edge, p a point index
// on it. Indices are not checked.
class PointAttribute : public GraphAttribute {
public:
    PointAttribute(KxSpatialGraph* graph, const char* name, PrimType type, int nDataVar);

    int size() const override { return offsets_.last(); }
    const void* dataPtr() const override { return bytes_.data(); }
    void* dataPtr() override { return bytes_.data(); }
    int getNumEdges() const { return offsets_.size() - 1; }
    int getNumEdgePoints(int e) const { return offsets_[e + 1] - offsets_[e]; }
    const DArray<int>& getOffsets() const { return offsets_; }

    // Blocks laid out by offsets (edge count + 1 entries, first 0), holding
    // the values that values points to, or zeros if it is null; replaces
    // everything.
    void init(const DArray<int>& offsets, const void* values);
    // Appends n blocks of counts[k] zero values for new last edges.
    void appendEdges(const int* counts, int n);
    // Appends a block of n zero values for a new last edge.
    void addEdge(int n);
    // Appends a block holding v's rows. Deliberate: a block without rows
    // appends nothing, not even an empty edge entry.
    void addEdge(const TypedData2D& v);
    // Inserts a block of n zero values, or of v's rows, as edge e.
    void insertEdgeBefore(int e, int n);
    void insertEdgeBefore(int e, const TypedData2D& v);
    void removeEdge(int e);
    // Removes the blocks of the listed edges (ascending) in one pass.
    void removeMultipleEdges(const DArray<int>& edges);
    // Inserts blocks at the final positions `edges` (ascending), block k from
    // v[k], in one pass.
    void insertValuesForMultipleEdges(const DArray<int>& edges, const DArray<TypedData2D>& v);
    // Opens n zero values before point p of edge e; n = 0 does nothing.
    void insertEdgePoints(int e, int p, int n);
    // Opens counts[k] zero values before point at[k] (at ascending, no
    // duplicates) in one pass.
    void insertMultipleEdgePoints(const DArray<SpatialGraphPoint>& at, const DArray<int>& counts);
    // Removes n values from point p of edge e; n = 0 does nothing.
    void removeEdgePoints(int e, int p, int n);
    // If n > 0 and differs from the edge's count: the block grows or shrinks
    // at its end, the first values stay. Added values are zero; callers set them.
    void resizeEdgePoints(int e, int n);

    TypedElement getValue(int e, int p) const;
    // At most one value's bytes are copied; types are not compared.
    void setValue(int e, int p, const TypedElement& v);
    TypedData2D getValues(int e) const;
    // Copies v's rows over edge e's block, as far as both reach.
    void setValues(int e, const TypedData2D& v);

    unsigned char* genericDataAtPoint(int e, int p) { return bytes_.data() + byteOffset(e, p); }
    const unsigned char* genericDataAtPoint(int e, int p) const { return bytes_.data() + byteOffset(e, p); }
    int* intDataAtPoint(int e, int p) { return reinterpret_cast<int*>(genericDataAtPoint(e, p)); }
    float* floatDataAtPoint(int e, int p) { return reinterpret_cast<float*>(genericDataAtPoint(e, p)); }
    int getIntDataAtPoint(int e, int p) const {
        return *reinterpret_cast<const int*>(genericDataAtPoint(e, p));
    }
    float getFloatDataAtPoint(int e, int p) const {
        return *reinterpret_cast<const float*>(genericDataAtPoint(e, p));
    }
    void setIntDataAtPoint(int e, int p, int v) { *intDataAtPoint(e, p) = v; }
    // Deliberate: the value comes first, unlike the int setter.
    void setFloatDataAtPoint(float v, int e, int p) { *floatDataAtPoint(e, p) = v; }

private:
    size_t elementBytes(int n) const { return static_cast<size_t>(n) * getElementSize(); }
    size_t byteOffset(int e, int p) const { return elementBytes(offsets_[e] + p); }
    // Resizes the buffer to total values with the growth rule of the graph's arrays.
    void resizeValues(int total);
    // Opens n zero values at flat position at.
    void openValues(int at, int n);
    void closeValues(int at, int n);
    void insertBlock(int e, int n, const void* rows, size_t rowBytes, int numRows);

    // Exactly size() values long.
    std::vector<unsigned char> bytes_;
    DArray<int> offsets_;
};
