#pragma once

#include "kxspatialgraph/operations/OperationSet.h"

// Turns the first selected edge point into a vertex and joins it by a
// straight edge to the first selected vertex u. With
// setRemoveIntermediateVertices(true), u then becomes an edge point of the
// joined edges, provided it has exactly two different edges by then.
class ConnectPointToVertexOperationSet : public OperationSet {
public:
    using OperationSet::OperationSet;

protected:
    void build() override;
};
