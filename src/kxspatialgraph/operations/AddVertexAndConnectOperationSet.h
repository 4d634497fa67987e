#pragma once

#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Adds a vertex at a position and joins it by a traced edge to the first
// selected vertex or, when no vertex is selected, to the first selected edge
// point (which becomes a vertex). The new vertex is highlighted afterwards.
class AddVertexAndConnectOperationSet : public OperationSet {
public:
    // Null points or radii count as empty.
    AddVertexAndConnectOperationSet(KxSpatialGraph* graph, const Vec3f& position, const DArray<Vec3f>* points,
                                    const DArray<float>* radii, const SpatialGraphSelection& highlighted,
                                    const SpatialGraphSelection& visible);

protected:
    void build() override;

private:
    Vec3f position_;
    DArray<Vec3f> points_;
    DArray<float> radii_;
};
