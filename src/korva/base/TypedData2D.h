#pragma once

#include <cstddef>
#include <vector>

#include "korva/base/PrimType.h"

// A block of attribute values: rows x components of one primitive type, stored
// row after row as raw bytes.
class TypedData2D {
public:
    TypedData2D() = default;
    TypedData2D(PrimType type, int numRows, int numComponents) { reset(type, numRows, numComponents); }

    // Sets the shape; every value becomes zero.
    void reset(PrimType type, int numRows, int numComponents);

    PrimType getPrimType() const { return type_; }
    int getNumRows() const { return numRows_; }
    int getNumComponents() const { return numComponents_; }
    size_t getRowBytes() const { return static_cast<size_t>(numComponents_) * type_.getSize(); }

    void* getRow(int row) { return bytes_.data() + static_cast<size_t>(row) * getRowBytes(); }
    const void* getRow(int row) const { return bytes_.data() + static_cast<size_t>(row) * getRowBytes(); }
    void* getData() { return bytes_.data(); }
    const void* getData() const { return bytes_.data(); }

    double getDouble(int row, int component) const;
    void setDouble(int row, int component, double value);
    int getInt(int row, int component) const { return static_cast<int>(getDouble(row, component)); }
    float getFloat(int row, int component) const { return static_cast<float>(getDouble(row, component)); }

    bool operator==(const TypedData2D& other) const {
        return type_.getType() == other.type_.getType() && numRows_ == other.numRows_ &&
               numComponents_ == other.numComponents_ && bytes_ == other.bytes_;
    }

private:
    PrimType type_;
    int numRows_ = 0;
    int numComponents_ = 0;
    std::vector<unsigned char> bytes_;
};
