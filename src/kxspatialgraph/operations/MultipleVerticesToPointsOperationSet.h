#pragma once

#include "kxspatialgraph/operations/OperationSet.h"

// Turns every selected vertex of two different incident edges into an edge
// point joining those edges (a VertexToPointOperation each, highest index
// first, so no vertex still to be handled is renumbered). Other vertices are
// skipped with a message; the number converted is reported at the end.
class MultipleVerticesToPointsOperationSet : public OperationSet {
public:
    using OperationSet::OperationSet;

protected:
    void build() override;
};
