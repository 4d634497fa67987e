#pragma once

#include "kxspatialgraph/model/KxSpatialGraphSelectionInterface.h"

// The registered implementation of the selection interface: answers a
// selection borrowed from its owner (null when made without one).
class KxSpatialGraphSelectionInterfaceImpl : public KxSpatialGraphSelectionInterface {
public:
    KxSpatialGraphSelectionInterfaceImpl() = default;
    explicit KxSpatialGraphSelectionInterfaceImpl(const SpatialGraphSelection* selection)
        : selection_(selection) {}
    const char* getTypeName() const override { return "KxSpatialGraphSelectionInterfaceImpl"; }
    const SpatialGraphSelection* getSelection() const override { return selection_; }

private:
    const SpatialGraphSelection* selection_ = nullptr;
};
