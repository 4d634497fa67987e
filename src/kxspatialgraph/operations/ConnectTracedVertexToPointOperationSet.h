#pragma once

#include "kxspatialgraph/operations/ConnectTracedPointToVertexOperationSet.h"

// The same edit traced the other way: the points run from the first selected
// vertex to the selected edge point. The traced edge takes the lower vertex
// index as its source either way, so both directions make the same steps.
class ConnectTracedVertexToPointOperationSet : public ConnectTracedPointToVertexOperationSet {
public:
    using ConnectTracedPointToVertexOperationSet::ConnectTracedPointToVertexOperationSet;
};
