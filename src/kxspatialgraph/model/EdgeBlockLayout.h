#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "korva/base/DArray.h"
#include "korva/base/HugePages.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"

// Block moves shared by EdgePointsManager and PointAttribute. Both keep the
// values of edge 0, then edge 1, ... in one flat buffer without gaps, plus an
// offsets array of edge count + 1 entries: offsets[e] is the position of edge
// e's first value and the last entry is the total. Buffers are addressed as
// raw bytes with an element size. Nothing here checks an index.
class EdgeBlockLayout {
public:
    // Reserves room for `needed` elements, growing to max(floor(n * 1.5), needed)
    // where n is the current count, so that repeated inserts stay amortised O(1).
    // A new large buffer gets huge pages (HugePages::reserve).
    template <class T>
    static void reserveForGrowth(std::vector<T>& v, size_t needed);

    // Moves elements [at, count) up by n; the buffer must hold count + n elements.
    static void openGap(unsigned char* data, size_t elementSize, size_t count, size_t at, size_t n);
    // Moves elements [at + n, count) down by n, closing the n elements at `at`.
    static void closeGap(unsigned char* data, size_t elementSize, size_t count, size_t at, size_t n);
    // Adds delta to offsets[from] .. offsets[last].
    static void shiftOffsets(DArray<int>& offsets, int from, int delta);

    // Removes the blocks of the listed edges (ascending, no duplicates) in one
    // compaction pass over the buffer and rebuilds the offsets. Returns the new
    // total element count; the caller shrinks its buffer to it.
    static int removeBlocks(unsigned char* data, size_t elementSize, DArray<int>& offsets,
                            const DArray<int>& edges);

    // Offsets after inserting new edges of sizes[k] elements at the final
    // positions indices[k] (ascending); the old edges keep their order.
    static DArray<int> offsetsAfterInsert(const DArray<int>& offsets, const DArray<int>& indices,
                                          const DArray<int>& sizes);
    // Places the old blocks and the new ones at their final positions in one
    // back-to-front pass. The buffer must already hold newOffsets.last()
    // elements with the old content at its start; blocks[k] points to the
    // elements of the k-th new edge (null for zero-filled ones).
    static void insertBlocks(unsigned char* data, size_t elementSize, const DArray<int>& oldOffsets,
                             const DArray<int>& newOffsets, const DArray<int>& indices,
                             const DArray<const void*>& blocks);

    // Opens counts[k] elements before element at[k].pointNum of edge
    // at[k].edgeNum for every k (at ascending, no duplicates; an edge's element
    // count appends to it) in one back-to-front pass, and shifts the offsets.
    // The buffer must already hold the new total with the old content at its
    // start; the gaps keep stale bytes. Returns each gap's new flat position.
    static DArray<int> openGapsInEdges(unsigned char* data, size_t elementSize, DArray<int>& offsets,
                                       const DArray<SpatialGraphPoint>& at, const DArray<int>& counts);
};

template <class T>
void EdgeBlockLayout::reserveForGrowth(std::vector<T>& v, size_t needed) {
    if (needed <= v.capacity()) {
        return;
    }
    HugePages::reserve(v, std::max(v.size() * 3 / 2, needed));
}
