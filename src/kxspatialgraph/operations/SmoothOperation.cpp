#include "kxspatialgraph/operations/SmoothOperation.h"

#include <algorithm>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

SmoothOperation::SmoothOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                                 const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible) {}

void SmoothOperation::setNumPointsToAverage(int n) {
    if (n < 1) {
        theMsg->printf("Error: SmoothOperation: cannot average %d points.", n);
        return;
    }
    numPointsToAverage_ = n;
}

void SmoothOperation::setDirection(bool x, bool y, bool z) {
    direction_[0] = x;
    direction_[1] = y;
    direction_[2] = z;
}

void SmoothOperation::exec() {
    startCursors();
    DArray<int> edges = edgeCursor_.remaining();
    saved_.resize(edges.size());
    for (int k = 0; k < edges.size(); ++k) {
        if (!checkEdge("SmoothOperation", edges[k])) {
            continue;
        }
        saved_[k] = graph_->getEdgePoints(edges[k]);
        graph_->setEdgePoints(edges[k], smoothEdge(saved_[k], numPointsToAverage_));
    }
}

void SmoothOperation::undo() {
    startCursors();
    DArray<int> edges = edgeCursor_.remaining();
    for (int k = 0; k < edges.size() && k < saved_.size(); ++k) {
        if (edges[k] < graph_->getNumEdges()) {
            graph_->setEdgePoints(edges[k], saved_[k]);
        }
    }
}

DArray<Vec3f> SmoothOperation::smoothEdge(const DArray<Vec3f>& p, int n) const {
    DArray<Vec3f> result = p;
    if (n < 1) {
        return result;
    }
    int m = p.size();
    int h = (n - 1) / 2;
    // The ends stay at their vertices even when h is 0 (n = 2 would
    // otherwise halve them and detach the edge from its vertices).
    int first = std::max(h, 1);
    for (int i = first; i <= m - 1 - first; ++i) {
        for (int c = 0; c < 3; ++c) {
            if (!direction_[c]) {
                continue;
            }
            float& sum = result[i][c];
            for (int j = i - h; j <= i + h; ++j) {
                if (j != i) {
                    sum += p[j][c];
                }
            }
            sum /= static_cast<float>(n);
        }
    }
    return result;
}
