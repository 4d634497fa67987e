#pragma once

#include "kxspatialgraph/operations/Operation.h"

// Smooths the polylines of the highlighted edges with one moving-average
// pass (smoothEdge); undo puts the saved polylines back. Point counts, end
// points and point attribute values stay.
class SmoothOperation : public Operation {
public:
    SmoothOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                    const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // The construction-time selections, unchanged.
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override { return highlighted_; }
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override { return visible_; }

    // Number of points averaged (default 3). A value below 1 is refused with
    // an error line and the previous value stays.
    void setNumPointsToAverage(int n);
    // Which coordinates are smoothed (default all three).
    void setDirection(bool x, bool y, bool z);

    // One pass over p with h = (n - 1) / 2: each point i in h .. m - 1 - h
    // becomes the sum of p[i - h .. i + h] divided by n, in the enabled
    // coordinates only; the first and last h points keep theirs. Deliberate:
    // for an even n the 2h + 1 = n - 1 points are still divided by n, which
    // scales the result by (n - 1) / n towards the origin.
    DArray<Vec3f> smoothEdge(const DArray<Vec3f>& p, int n) const;

private:
    int numPointsToAverage_ = 3;
    bool direction_[3] = {true, true, true};
    DArray<DArray<Vec3f>> saved_;
};
