#pragma once

#include "korva/base/Handable.h"
#include "korva/base/PrimType.h"
#include "korva/base/String.h"

class KxSpatialGraph;

// A named attribute of a graph: one value of nDataVar components of one
// primitive type per vertex, edge or edge point. Every attribute gets a
// process-wide unique id from sId at construction; ids are never reused, so
// the graph's insert primitives can match saved values to attributes across
// remove-and-reinsert cycles. Attributes are created and owned by their graph
// (KxSpatialGraph::addAttribute).
class GraphAttribute : public Handable {
public:
    // The id the next attribute gets; counts from 0 and only grows.
    static int sId;

    GraphAttribute(KxSpatialGraph* graph, const char* name, PrimType type, int nDataVar);
    ~GraphAttribute() override;

    // Number of values.
    virtual int size() const = 0;
    // The first value's bytes; all values follow without gaps.
    virtual const void* dataPtr() const = 0;
    virtual void* dataPtr() = 0;

    KxSpatialGraph* getGraph() const { return graph_; }
    PrimType getPrimType() const { return primType_; }
    int getNumDataVar() const { return nDataVar_; }
    const char* getName() const { return name_.getString(); }
    // Renames; the graph keeps names unique per location, this does not check.
    void setName(const char* name) { name_ = name; }
    int getId() const { return id_; }
    // Bytes per value: the primitive type's size times nDataVar.
    size_t getElementSize() const { return elementSize_; }

private:
    KxSpatialGraph* graph_;
    PrimType primType_;
    int nDataVar_;
    String name_;
    int id_;
    size_t elementSize_;
};
