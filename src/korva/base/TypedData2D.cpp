#include "korva/base/TypedData2D.h"

#include "korva/base/PrimValue.h"

void TypedData2D::reset(PrimType type, int numRows, int numComponents) {
    type_ = type;
    numRows_ = numRows;
    numComponents_ = numComponents;
    bytes_.assign(static_cast<size_t>(numRows) * getRowBytes(), 0);
}

double TypedData2D::getDouble(int row, int component) const {
    return PrimValue::read(type_, static_cast<const unsigned char*>(getRow(row)) +
                                      static_cast<size_t>(component) * type_.getSize());
}

void TypedData2D::setDouble(int row, int component, double value) {
    PrimValue::write(
        type_, static_cast<unsigned char*>(getRow(row)) + static_cast<size_t>(component) * type_.getSize(),
        value);
}
