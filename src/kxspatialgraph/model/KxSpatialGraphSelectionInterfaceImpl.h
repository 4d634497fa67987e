#pragma once

#include "kxspatialgraph/model/KxSpatialGraphSelectionInterface.h"

// The registered implementation of the selection marker interface.
class KxSpatialGraphSelectionInterfaceImpl : public KxSpatialGraphSelectionInterface {
public:
    const char* getTypeName() const override { return "KxSpatialGraphSelectionInterfaceImpl"; }
};
