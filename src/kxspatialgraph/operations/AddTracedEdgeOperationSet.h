#pragma once

#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Adds a traced edge along points (source vertex position first), storing
// radii in the float point attribute "thickness" of the new edge. The ends
// come from the highlighted selection: selected edge points are first turned
// into vertices; with one element selected a new vertex is added at the start
// position; then the edge joins the first two selected vertices, the selected
// vertex and the last vertex, or the last two vertices. The vertex added at
// the start position is highlighted afterwards.
class AddTracedEdgeOperationSet : public OperationSet {
public:
    // The start position is the last traced point (the origin without points):
    // the added vertex is the newest, so it becomes the edge's target.
    AddTracedEdgeOperationSet(KxSpatialGraph* graph, const DArray<Vec3f>& points, const DArray<float>& radii,
                              const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible);
    AddTracedEdgeOperationSet(KxSpatialGraph* graph, const Vec3f& start, const DArray<Vec3f>& points,
                              const DArray<float>& radii, const SpatialGraphSelection& highlighted,
                              const SpatialGraphSelection& visible);

    // Runs the sub-operations, then stores the radii.
    void exec() override;
    // Also deletes the "thickness" attribute when this set created it.
    void undo() override;

protected:
    void build() override;

private:
    void storeRadii();

    DArray<Vec3f> points_;
    DArray<float> radii_;
    Vec3f start_;
    int createdThicknessId_ = -1;
};
