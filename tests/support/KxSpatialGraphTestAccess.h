#pragma once

#include "kxspatialgraph/model/KxSpatialGraph.h"

// Reaches into a graph's stored state so that tests can break invariants the
// public primitives always keep (the number of incidence lists).
class KxSpatialGraphTestAccess {
public:
    static DArray<KxSpatialGraph::IncidenceList>& incidence(KxSpatialGraph& g) { return g.incidence_; }
};
