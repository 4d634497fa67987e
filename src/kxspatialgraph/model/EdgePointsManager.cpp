#include "kxspatialgraph/model/EdgePointsManager.h"

#include <cstring>

#include "korva/base/HugePages.h"
#include "kxspatialgraph/model/EdgeBlockLayout.h"

static_assert(sizeof(Vec3f) == 3 * sizeof(float), "points are stored as packed float triples");

EdgePointsManager::EdgePointsManager() : offsets_{0} {}

const Vec3f* EdgePointsManager::getEdgePoints(int e, int& n) const {
    n = getNumEdgePoints(e);
    return points_.dataPtr() + offsets_[e];
}

Vec3f* EdgePointsManager::getEdgePoints(int e, int& n) {
    n = getNumEdgePoints(e);
    return points_.dataPtr() + offsets_[e];
}

DArray<Vec3f> EdgePointsManager::getEdgePoints(int e) const {
    int n = 0;
    const Vec3f* p = getEdgePoints(e, n);
    DArray<Vec3f> result;
    result.append(n, p);
    return result;
}

void EdgePointsManager::growTo(int count) {
    EdgeBlockLayout::reserveForGrowth(points_.std(), static_cast<size_t>(count));
    points_.resize(count);
}

void EdgePointsManager::setEdgePoints(int e, const Vec3f* pts, int n) {
    int total = points_.size();
    int begin = offsets_[e];
    int d = n - getNumEdgePoints(e);
    int behind = offsets_[e + 1];
    if (d > 0) {
        growTo(total + d);
        EdgeBlockLayout::openGap(bytes(), sizeof(Vec3f), total, behind, d);
    } else if (d < 0) {
        EdgeBlockLayout::closeGap(bytes(), sizeof(Vec3f), total, behind + d, -d);
        points_.resize(total + d);
    }
    if (n > 0) {
        std::memmove(points_.dataPtr() + begin, pts, sizeof(Vec3f) * static_cast<size_t>(n));
    }
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, d);
}

void EdgePointsManager::insertEdgePoints(int e, int i, const DArray<Vec3f>& pts) {
    int n = pts.size();
    if (n == 0) {
        return;
    }
    int total = points_.size();
    int at = offsets_[e] + i;
    growTo(total + n);
    EdgeBlockLayout::openGap(bytes(), sizeof(Vec3f), total, at, n);
    std::memcpy(points_.dataPtr() + at, pts.dataPtr(), sizeof(Vec3f) * static_cast<size_t>(n));
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, n);
}

void EdgePointsManager::insertMultipleEdgePoints(const DArray<SpatialGraphPoint>& at,
                                                 const DArray<int>& counts, const DArray<Vec3f>& pts) {
    if (pts.isEmpty()) {
        return;
    }
    growTo(points_.size() + pts.size());
    DArray<int> gaps = EdgeBlockLayout::openGapsInEdges(bytes(), sizeof(Vec3f), offsets_, at, counts);
    const Vec3f* next = pts.dataPtr();
    for (int k = 0; k < gaps.size(); ++k) {
        std::memcpy(points_.dataPtr() + gaps[k], next, sizeof(Vec3f) * static_cast<size_t>(counts[k]));
        next += counts[k];
    }
}

void EdgePointsManager::removeEdgePoints(int e, int i, int n) {
    if (n == 0) {
        return;
    }
    int total = points_.size();
    EdgeBlockLayout::closeGap(bytes(), sizeof(Vec3f), total, offsets_[e] + i, n);
    points_.resize(total - n);
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, -n);
}

void EdgePointsManager::addEdge(const Vec3f* pts, int n) {
    int total = points_.size();
    growTo(total + n);
    if (n > 0) {
        std::memcpy(points_.dataPtr() + total, pts, sizeof(Vec3f) * static_cast<size_t>(n));
    }
    offsets_.append(total + n);
}

void EdgePointsManager::appendEdges(const Vec3f* pts, const int* counts, int n) {
    EdgeBlockLayout::reserveForGrowth(offsets_.std(),
                                      static_cast<size_t>(offsets_.size()) + static_cast<size_t>(n));
    const int total = points_.size();
    for (int k = 0; k < n; ++k) {
        offsets_.append(offsets_.last() + counts[k]);
    }
    const int added = offsets_.last() - total;
    EdgeBlockLayout::reserveForGrowth(points_.std(), static_cast<size_t>(total) + static_cast<size_t>(added));
    points_.append(added, pts);
}

void EdgePointsManager::insertEdgeBefore(int e, const DArray<Vec3f>& pts) {
    int n = pts.size();
    int at = offsets_[e];
    offsets_.insert(e, at);
    EdgeBlockLayout::shiftOffsets(offsets_, e + 1, n);
    int total = points_.size();
    growTo(total + n);
    EdgeBlockLayout::openGap(bytes(), sizeof(Vec3f), total, at, n);
    if (n > 0) {
        std::memcpy(points_.dataPtr() + at, pts.dataPtr(), sizeof(Vec3f) * static_cast<size_t>(n));
    }
}

void EdgePointsManager::removeEdge(int e) {
    int n = getNumEdgePoints(e);
    int total = points_.size();
    EdgeBlockLayout::closeGap(bytes(), sizeof(Vec3f), total, offsets_[e], n);
    points_.resize(total - n);
    offsets_.remove(e);
    EdgeBlockLayout::shiftOffsets(offsets_, e, -n);
}

void EdgePointsManager::insertMultipleEdges(const DArray<int>& indices, const DArray<DArray<Vec3f>>& pts) {
    if (indices.isEmpty()) {
        return;
    }
    DArray<int> sizes(indices.size());
    DArray<const void*> blocks(indices.size());
    for (int k = 0; k < indices.size(); ++k) {
        sizes[k] = pts[k].size();
        blocks[k] = pts[k].dataPtr();
    }
    DArray<int> newOffsets = EdgeBlockLayout::offsetsAfterInsert(offsets_, indices, sizes);
    growTo(newOffsets.last());
    EdgeBlockLayout::insertBlocks(bytes(), sizeof(Vec3f), offsets_, newOffsets, indices, blocks);
    offsets_ = std::move(newOffsets);
}

void EdgePointsManager::removeMultipleEdges(const DArray<int>& indices) {
    if (indices.isEmpty()) {
        return;
    }
    int total = EdgeBlockLayout::removeBlocks(bytes(), sizeof(Vec3f), offsets_, indices);
    points_.resize(total);
}

void EdgePointsManager::setSizeHint(int numPoints, int numEdges) {
    if (numPoints > points_.size()) {
        HugePages::reserve(points_.std(), static_cast<size_t>(numPoints));
    }
    if (numEdges + 1 > offsets_.size()) {
        HugePages::reserve(offsets_.std(), static_cast<size_t>(numEdges) + 1);
    }
}

void EdgePointsManager::clear() {
    points_.clearAndFree();
    offsets_.clear();
    offsets_.append(0);
}

size_t EdgePointsManager::getMemoryUsage() const {
    return sizeof(Vec3f) * static_cast<size_t>(points_.capacity()) +
           sizeof(int) * static_cast<size_t>(offsets_.capacity());
}
