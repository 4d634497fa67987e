#pragma once

class SpatialGraphSelection;

// Interface type registered with the host: a selection of a spatial graph,
// offered by objects that hold one (see KxObject::getInterface).
class KxSpatialGraphSelectionInterface {
public:
    virtual const char* getTypeName() const { return "KxSpatialGraphSelectionInterface"; }
    virtual ~KxSpatialGraphSelectionInterface() = default;
    // The selection the object holds, or null.
    virtual const SpatialGraphSelection* getSelection() const { return nullptr; }
};
