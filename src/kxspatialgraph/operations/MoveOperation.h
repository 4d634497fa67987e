#pragma once

#include "kxspatialgraph/operations/Operation.h"

// Sets a vertex's coordinates; undo puts back the coordinates it had when the
// operation was constructed. A vertex outside the graph is refused with an
// error line at construction; exec and undo then do nothing. The edges' end points are not moved (a composite
// edit replaces the polylines of the vertex's edges).
class MoveOperation : public Operation {
public:
    MoveOperation(KxSpatialGraph* graph, int vertex, const Vec3f& coords,
                  const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;

private:
    int vertex_;
    Vec3f newCoords_;
    Vec3f oldCoords_;
    bool valid_;
};
