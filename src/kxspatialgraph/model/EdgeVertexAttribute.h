#pragma once

#include <vector>

#include "korva/base/DArray.h"
#include "korva/base/TypedData2D.h"
#include "korva/base/TypedElement.h"
#include "kxspatialgraph/model/GraphAttribute.h"

// An attribute with one value per vertex or per edge, kept in one raw byte
// buffer: value i occupies bytes [i * elementSize, (i + 1) * elementSize).
// The graph calls the size-changing operations from its editing primitives;
// each has a guard and does nothing when the guard fails. Indices of the
// value accessors are not checked.
class EdgeVertexAttribute : public GraphAttribute {
public:
    EdgeVertexAttribute(KxSpatialGraph* graph, const char* name, PrimType type, int nDataVar);

    int size() const override { return count_; }
    const void* dataPtr() const override { return bytes_.data(); }
    void* dataPtr() override { return bytes_.data(); }
    // Values the buffer holds without reallocating.
    int capacity() const;

    // If n > 0: n values copied from values, or n zero values if it is null.
    void init(int n, const void* values = nullptr);
    // If n is not -1 and exceeds the count: reallocates to exactly n values
    // (no growth factor) and zeroes those past the count.
    void remax(int n);
    // If n > 0: appends n zero values.
    void append(int n);
    // Opens n zero values at i when n > 0 and 0 <= i < count.
    // Deliberate: inserting at the end (i == count) is a no-op; the graph's
    // insert primitives rely on that for unsupplied attributes.
    void insertBefore(int i, int n);
    // Closes the n values at i when count >= 1, n >= 1, i >= 0, i + n <= count.
    void remove(int i, int n);
    // remove(count - n, n) when count - n >= 0 and n >= 1.
    void removeLast(int n);
    void copy(int dst, int src);
    // Zeroes n values from i; n = -1 zeroes up to the end.
    void clearMemory(int i, int n);

    TypedElement getValue(int i) const;
    // Copies v's bytes over value i. Types are not compared; at most one
    // value's bytes are copied.
    void setValue(int i, const TypedElement& v);
    // The listed values as rows.
    TypedData2D getValues(const DArray<int>& idx) const;
    // Row (or element) k goes to value idx[k].
    void setMultipleValues(const DArray<int>& idx, const TypedData2D& v);
    void setMultipleValues(const DArray<int>& idx, const DArray<TypedElement>& v);
    // idx (ascending) are the final positions of the new values; row k lands
    // at idx[k]; rows missing from v (or a null v) are zero. One pass.
    void insertMultipleValues(const DArray<int>& idx, const TypedData2D& v);
    // Removes the listed values (ascending, no duplicates) in one pass.
    void removeMultipleValues(const DArray<int>& idx);

    unsigned char* genericDataAtIdx(int i) { return bytes_.data() + offset(i); }
    const unsigned char* genericDataAtIdx(int i) const { return bytes_.data() + offset(i); }
    int* intDataAtIdx(int i) { return reinterpret_cast<int*>(genericDataAtIdx(i)); }
    float* floatDataAtIdx(int i) { return reinterpret_cast<float*>(genericDataAtIdx(i)); }
    int getIntDataAtIdx(int i) const { return *reinterpret_cast<const int*>(genericDataAtIdx(i)); }
    float getFloatDataAtIdx(int i) const { return *reinterpret_cast<const float*>(genericDataAtIdx(i)); }
    void setIntDataAtIdx(int i, int v) { *intDataAtIdx(i) = v; }
    void setFloatDataAtIdx(int i, float v) { *floatDataAtIdx(i) = v; }

private:
    size_t offset(int i) const { return static_cast<size_t>(i) * getElementSize(); }
    void reserveValues(int n);

    // Sized to the capacity; values past the count are zero.
    std::vector<unsigned char> bytes_;
    int count_ = 0;
};
