#include "kxspatialgraph/operations/Operation.h"

#include <cstdint>
#include <utility>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

int lowestBit(uint32_t word) {
    return __builtin_ctz(word);
}

}  // namespace

Operation::Operation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                     const SpatialGraphSelection& visible)
    : graph_(graph), highlighted_(highlighted), visible_(visible) {
    startCursors();
}

Operation::~Operation() = default;

SpatialGraphSelection Operation::getHighlightSelectionAfterOperation() const {
    return SpatialGraphSelection(graph_);
}

SpatialGraphSelection Operation::getHighlightSelectionAfterUndo() const {
    return highlighted_;
}

SpatialGraphSelection Operation::getVisibleSelectionAfterOperation() const {
    SpatialGraphSelection all(graph_);
    all.selectAllVerticesAndEdges();
    all.selectAllPoints();
    return all;
}

SpatialGraphSelection Operation::getVisibleSelectionAfterUndo() const {
    return visible_;
}

Vec3f Operation::getVertex(int v) const {
    return graph_->getVertexCoords(v);
}

bool Operation::checkVertex(const char* operation, int v) const {
    if (v >= 0 && v < graph_->getNumVertices()) {
        return true;
    }
    theMsg->printf("Error: %s: vertex %d does not exist (%d vertices).", operation, v,
                   graph_->getNumVertices());
    return false;
}

bool Operation::checkEdge(const char* operation, int e) const {
    if (e >= 0 && e < graph_->getNumEdges()) {
        return true;
    }
    theMsg->printf("Error: %s: edge %d does not exist (%d edges).", operation, e, graph_->getNumEdges());
    return false;
}

void Operation::startCursors() {
    vertexCursor_ = Cursor(highlighted_.getVertexSelection());
    edgeCursor_ = Cursor(highlighted_.getEdgeSelection());
    // The selection hands out no copy of its all-points bits; rebuild them.
    BitField allPoints(highlighted_.getNumEdges());
    if (highlighted_.getNumEdgesWithAllPointsSelected() > 0) {
        for (int e = 0; e < allPoints.size(); ++e) {
            if (highlighted_.allPointsOnEdgeSelected(e)) {
                allPoints.set(e);
            }
        }
    }
    allPointsCursor_ = Cursor(std::move(allPoints));
}

int Operation::Cursor::next() {
    if (current_ >= bits_.size() - 1) {
        current_ = bits_.size();
        return -1;
    }
    int from = current_ + 1;
    const uint32_t* words = bits_.getWords();
    int w = from >> 5;
    // Bits below `from` in its word are masked off; bits past the size are clear.
    uint32_t word = words[w] & (~0u << (from & 31));
    while (word == 0) {
        if (++w >= bits_.getNumWords()) {
            current_ = bits_.size();
            return -1;
        }
        word = words[w];
    }
    current_ = w * 32 + lowestBit(word);
    return current_;
}

DArray<int> Operation::Cursor::remaining() {
    DArray<int> indices;
    for (int i = next(); i >= 0; i = next()) {
        indices.append(i);
    }
    return indices;
}
