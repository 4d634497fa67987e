#include "kxspatialgraph/model/PointAttribute.h"

#include <algorithm>
#include <cstring>

#include "korva/base/HugePages.h"
#include "kxspatialgraph/model/EdgeBlockLayout.h"

PointAttribute::PointAttribute(KxSpatialGraph* graph, const char* name, PrimType type, int nDataVar)
    : GraphAttribute(graph, name, type, nDataVar), offsets_{0} {}

void PointAttribute::resizeValues(int total) {
    size_t bytes = elementBytes(total);
    EdgeBlockLayout::reserveForGrowth(bytes_, bytes);
    bytes_.resize(bytes, 0);
}

void PointAttribute::openValues(int at, int n) {
    if (n == 0) {  // an empty attribute may have no buffer to point into
        return;
    }
    int total = size();
    resizeValues(total + n);
    EdgeBlockLayout::openGap(bytes_.data(), getElementSize(), total, at, n);
    std::memset(bytes_.data() + elementBytes(at), 0, elementBytes(n));
}

void PointAttribute::closeValues(int at, int n) {
    int total = size();
    EdgeBlockLayout::closeGap(bytes_.data(), getElementSize(), total, at, n);
    bytes_.resize(elementBytes(total - n));
}

void PointAttribute::init(const DArray<int>& offsets, const void* values) {
    offsets_ = offsets;
    const size_t bytes = elementBytes(offsets_.last());
    HugePages::reserve(bytes_, bytes);
    if (values) {
        const auto* first = static_cast<const unsigned char*>(values);
        bytes_.assign(first, first + bytes);
    } else {
        bytes_.assign(bytes, 0);
    }
}

void PointAttribute::appendEdges(const int* counts, int n) {
    EdgeBlockLayout::reserveForGrowth(offsets_.std(),
                                      static_cast<size_t>(offsets_.size()) + static_cast<size_t>(n));
    for (int k = 0; k < n; ++k) {
        offsets_.append(offsets_.last() + counts[k]);
    }
    resizeValues(offsets_.last());
}

void PointAttribute::addEdge(int n) {
    int total = size();
    resizeValues(total + n);
    offsets_.append(total + n);
}

void PointAttribute::addEdge(const TypedData2D& v) {
    int rows = v.getNumRows();
    if (rows < 1) {
        return;
    }
    int total = size();
    addEdge(rows);
    size_t n = std::min(v.getRowBytes(), elementBytes(1));
    for (int r = 0; r < rows; ++r) {
        std::memcpy(bytes_.data() + elementBytes(total + r), v.getRow(r), n);
    }
}

void PointAttribute::insertBlock(int e, int n, const void* rows, size_t rowBytes, int numRows) {
    int at = offsets_[e];
    openValues(at, n);
    offsets_.insert(e, at);
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, n);
    size_t copyBytes = std::min(rowBytes, elementBytes(1));
    const unsigned char* src = static_cast<const unsigned char*>(rows);
    for (int r = 0; r < std::min(n, numRows); ++r) {
        std::memcpy(bytes_.data() + elementBytes(at + r), src + rowBytes * static_cast<size_t>(r), copyBytes);
    }
}

void PointAttribute::insertEdgeBefore(int e, int n) {
    insertBlock(e, n, nullptr, 0, 0);
}

void PointAttribute::insertEdgeBefore(int e, const TypedData2D& v) {
    insertBlock(e, v.getNumRows(), v.getData(), v.getRowBytes(), v.getNumRows());
}

void PointAttribute::removeEdge(int e) {
    int n = getNumEdgePoints(e);
    closeValues(offsets_[e], n);
    offsets_.remove(e);
    EdgeBlockLayout::shiftOffsets(offsets_, e, -n);
}

void PointAttribute::removeMultipleEdges(const DArray<int>& edges) {
    if (edges.isEmpty()) {
        return;
    }
    int total = EdgeBlockLayout::removeBlocks(bytes_.data(), getElementSize(), offsets_, edges);
    bytes_.resize(elementBytes(total));
}

void PointAttribute::insertValuesForMultipleEdges(const DArray<int>& edges, const DArray<TypedData2D>& v) {
    if (edges.isEmpty()) {
        return;
    }
    // Rows are copied whole only when their layout matches this attribute's;
    // otherwise the new block is zero-filled and each row copied as far as it reaches.
    DArray<int> sizes(edges.size());
    DArray<const void*> blocks(edges.size());
    for (int k = 0; k < edges.size(); ++k) {
        sizes[k] = v[k].getNumRows();
        bool sameLayout = v[k].getRowBytes() == getElementSize();
        blocks[k] = sameLayout ? v[k].getData() : nullptr;
    }
    DArray<int> newOffsets = EdgeBlockLayout::offsetsAfterInsert(offsets_, edges, sizes);
    resizeValues(newOffsets.last());
    EdgeBlockLayout::insertBlocks(bytes_.data(), getElementSize(), offsets_, newOffsets, edges, blocks);
    offsets_ = std::move(newOffsets);
    for (int k = 0; k < edges.size(); ++k) {
        if (!blocks[k]) {
            setValues(edges[k], v[k]);
        }
    }
}

void PointAttribute::insertEdgePoints(int e, int p, int n) {
    if (n == 0) {
        return;
    }
    openValues(offsets_[e] + p, n);
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, n);
}

void PointAttribute::insertMultipleEdgePoints(const DArray<SpatialGraphPoint>& at,
                                              const DArray<int>& counts) {
    int added = 0;
    for (int n : counts) {
        added += n;
    }
    if (added == 0) {
        return;
    }
    resizeValues(size() + added);
    DArray<int> gaps =
        EdgeBlockLayout::openGapsInEdges(bytes_.data(), getElementSize(), offsets_, at, counts);
    for (int k = 0; k < gaps.size(); ++k) {
        std::memset(bytes_.data() + elementBytes(gaps[k]), 0, elementBytes(counts[k]));
    }
}

void PointAttribute::removeEdgePoints(int e, int p, int n) {
    if (n == 0) {
        return;
    }
    closeValues(offsets_[e] + p, n);
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, -n);
}

void PointAttribute::resizeEdgePoints(int e, int n) {
    int current = getNumEdgePoints(e);
    if (n <= 0 || n == current) {
        return;
    }
    int end = offsets_[e + 1];
    if (n > current) {
        openValues(end, n - current);
    } else {
        closeValues(end - (current - n), current - n);
    }
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, n - current);
}

TypedElement PointAttribute::getValue(int e, int p) const {
    TypedElement v(getPrimType(), getNumDataVar());
    std::memcpy(v.getData(), genericDataAtPoint(e, p), elementBytes(1));
    return v;
}

void PointAttribute::setValue(int e, int p, const TypedElement& v) {
    size_t n = std::min(v.getNumBytes(), elementBytes(1));
    std::memcpy(genericDataAtPoint(e, p), v.getData(), n);
}

TypedData2D PointAttribute::getValues(int e) const {
    int n = getNumEdgePoints(e);
    TypedData2D rows(getPrimType(), n, getNumDataVar());
    if (n > 0) {
        std::memcpy(rows.getData(), genericDataAtPoint(e, 0), elementBytes(n));
    }
    return rows;
}

void PointAttribute::setValues(int e, const TypedData2D& v) {
    int rows = std::min(getNumEdgePoints(e), v.getNumRows());
    size_t n = std::min(v.getRowBytes(), elementBytes(1));
    for (int r = 0; r < rows; ++r) {
        std::memcpy(genericDataAtPoint(e, r), v.getRow(r), n);
    }
}
