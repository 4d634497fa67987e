#pragma once

// Marker interface type registered with the host: a selection of a spatial
// graph. It carries only its type name and destructor.
class KxSpatialGraphSelectionInterface {
public:
    virtual const char* getTypeName() const { return "KxSpatialGraphSelectionInterface"; }
    virtual ~KxSpatialGraphSelectionInterface() = default;
};
