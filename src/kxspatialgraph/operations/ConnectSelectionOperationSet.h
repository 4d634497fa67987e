#pragma once

#include "kxspatialgraph/operations/OperationSet.h"

// Joins every graph component that the highlighted selection touches into
// one: repeatedly connects the component of the first selected vertex to the
// rest by a straight edge between the nearest pair of their end vertices
// (vertices of one edge). Components without end vertices are left out with
// a message.
class ConnectSelectionOperationSet : public OperationSet {
public:
    using OperationSet::OperationSet;

protected:
    void build() override;
};
