#pragma once

#include <Inventor/SbMatrix.h>

#include "korva/base/Box3f.h"
#include "korva/core/KxData.h"

// A data object placed in 3-D space: adds a 4x4 transformation (identity by
// default) applied to the object's own coordinates when it is displayed.
class KxSpatialData : public KxData {
public:
    KxSpatialData();

    const char* getTypeName() const override { return "KxSpatialData"; }
    bool isOfType(const char* typeName) const override;

    const SbMatrix& getTransform() const { return transform_; }
    void getTransform(SbMatrix& matrix) const { matrix = transform_; }
    void setTransform(const SbMatrix& matrix) { transform_ = matrix; }
    bool isTransformIdentity() const { return transform_ == SbMatrix::identity(); }

    // The box of the object's own (untransformed) coordinates; empty by default.
    virtual void getBoundingBox(Box3f& box) const { box.makeEmpty(); }

    // Adds "setTransform m00 ... m33" and "getTransform" (16 numbers, row by row)
    // to the base commands.
    int parse(Tcl_Interp* interp, int argc, char** argv) override;

private:
    SbMatrix transform_;
};
