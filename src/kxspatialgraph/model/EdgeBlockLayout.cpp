#include "kxspatialgraph/model/EdgeBlockLayout.h"

#include <cassert>
#include <cstring>

void EdgeBlockLayout::openGap(unsigned char* data, size_t elementSize, size_t count, size_t at, size_t n) {
    if (n == 0 || at >= count) {
        return;
    }
    std::memmove(data + (at + n) * elementSize, data + at * elementSize, (count - at) * elementSize);
}

void EdgeBlockLayout::closeGap(unsigned char* data, size_t elementSize, size_t count, size_t at, size_t n) {
    if (n == 0 || at + n >= count) {
        return;
    }
    std::memmove(data + at * elementSize, data + (at + n) * elementSize, (count - at - n) * elementSize);
}

void EdgeBlockLayout::shiftOffsets(DArray<int>& offsets, int from, int delta) {
    int* o = offsets.dataPtr();
    for (int i = from, n = offsets.size(); i < n; ++i) {
        o[i] += delta;
    }
}

int EdgeBlockLayout::removeBlocks(unsigned char* data, size_t elementSize, DArray<int>& offsets,
                                  const DArray<int>& edges) {
    int* o = offsets.dataPtr();
    int numEdges = offsets.size() - 1;
    int total = o[numEdges];
    int m = edges.size();
    if (m == 0) {
        return total;
    }
    // Each run of kept values between two removed edges moves down once.
    size_t write = static_cast<size_t>(o[edges[0]]);
    for (int k = 0; k < m; ++k) {
        size_t runStart = static_cast<size_t>(o[edges[k] + 1]);
        size_t runEnd = static_cast<size_t>(k + 1 < m ? o[edges[k + 1]] : total);
        if (runEnd > runStart && write != runStart) {
            std::memmove(data + write * elementSize, data + runStart * elementSize,
                         (runEnd - runStart) * elementSize);
        }
        write += runEnd - runStart;
    }
    // Rebuild the offsets in place from the sizes of the surviving edges; every
    // old entry is read before the write cursor reaches it.
    int previous = o[0];
    int next = 0;
    int kept = 0;
    for (int e = 0; e < numEdges; ++e) {
        int current = o[e + 1];
        int size = current - previous;
        previous = current;
        if (next < m && edges[next] == e) {
            ++next;
            continue;
        }
        o[kept + 1] = o[kept] + size;
        ++kept;
    }
    offsets.resize(kept + 1);
    return static_cast<int>(write);
}

DArray<int> EdgeBlockLayout::offsetsAfterInsert(const DArray<int>& offsets, const DArray<int>& indices,
                                                const DArray<int>& sizes) {
    int oldEdges = offsets.size() - 1;
    int newEdges = oldEdges + indices.size();
    DArray<int> result(newEdges + 1);
    result[0] = 0;
    int k = 0;
    int old = 0;
    for (int p = 0; p < newEdges; ++p) {
        int size;
        if (k < indices.size() && indices[k] == p) {
            size = sizes[k++];
        } else {
            size = offsets[old + 1] - offsets[old];
            ++old;
        }
        result[p + 1] = result[p] + size;
    }
    return result;
}

void EdgeBlockLayout::insertBlocks(unsigned char* data, size_t elementSize, const DArray<int>& oldOffsets,
                                   const DArray<int>& newOffsets, const DArray<int>& indices,
                                   const DArray<const void*>& blocks) {
    int oldPlaced = oldOffsets.size() - 1;  // old edges [0, oldPlaced) are not yet at their place
    int end = newOffsets.size() - 1;        // final positions [0, end) are not yet filled
    for (int k = indices.size() - 1; k >= 0; --k) {
        int index = indices[k];
        int run = end - index - 1;  // old edges that end up behind the new edge k
        assert(run >= 0 && run <= oldPlaced);
        size_t from = static_cast<size_t>(oldOffsets[oldPlaced - run]);
        size_t to = static_cast<size_t>(newOffsets[index + 1]);
        size_t count = static_cast<size_t>(oldOffsets[oldPlaced]) - from;
        if (count > 0 && from != to) {
            std::memmove(data + to * elementSize, data + from * elementSize, count * elementSize);
        }
        oldPlaced -= run;
        size_t at = static_cast<size_t>(newOffsets[index]);
        size_t blockSize = static_cast<size_t>(newOffsets[index + 1]) - at;
        if (blockSize > 0) {
            if (blocks[k]) {
                std::memcpy(data + at * elementSize, blocks[k], blockSize * elementSize);
            } else {
                std::memset(data + at * elementSize, 0, blockSize * elementSize);
            }
        }
        end = index;
    }
}

DArray<int> EdgeBlockLayout::openGapsInEdges(unsigned char* data, size_t elementSize, DArray<int>& offsets,
                                             const DArray<SpatialGraphPoint>& at, const DArray<int>& counts) {
    int m = at.size();
    DArray<int> gaps(m);
    size_t shift = 0;
    for (int k = 0; k < m; ++k) {
        gaps[k] = offsets[at[k].edgeNum] + at[k].pointNum;
        shift += static_cast<size_t>(counts[k]);
    }
    // The run from gap k up to the next gap moves up by the sizes of gaps 0 .. k.
    size_t end = static_cast<size_t>(offsets.last());
    for (int k = m - 1; k >= 0; --k) {
        size_t begin = static_cast<size_t>(gaps[k]);
        if (end > begin && shift > 0) {
            std::memmove(data + (begin + shift) * elementSize, data + begin * elementSize,
                         (end - begin) * elementSize);
        }
        shift -= static_cast<size_t>(counts[k]);
        gaps[k] += static_cast<int>(shift);
        end = begin;
    }
    int added = 0;
    for (int e = 0, k = 0; e < offsets.size(); ++e) {
        offsets[e] += added;
        for (; k < m && at[k].edgeNum == e; ++k) {
            added += counts[k];
        }
    }
    return gaps;
}
