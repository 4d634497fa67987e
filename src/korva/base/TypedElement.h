#pragma once

#include <cstddef>
#include <vector>

#include "korva/base/PrimType.h"

// One attribute value: a primitive type, a component count and the components
// as raw bytes. Reading a component as int or float converts from the stored
// type.
class TypedElement {
public:
    TypedElement() = default;
    TypedElement(PrimType type, int numComponents) { reset(type, numComponents); }

    // Sets type and component count; the components become zero.
    void reset(PrimType type, int numComponents);

    PrimType getPrimType() const { return type_; }
    int getNumComponents() const { return numComponents_; }
    size_t getNumBytes() const { return bytes_.size(); }

    int getInt(int component) const;
    float getFloat(int component) const;
    double getDouble(int component) const;
    void setInt(int component, int value);
    void setFloat(int component, float value);
    void setDouble(int component, double value);

    void* getData() { return bytes_.data(); }
    const void* getData() const { return bytes_.data(); }

    bool operator==(const TypedElement& other) const {
        return type_.getType() == other.type_.getType() && numComponents_ == other.numComponents_ &&
               bytes_ == other.bytes_;
    }

private:
    PrimType type_;
    int numComponents_ = 0;
    std::vector<unsigned char> bytes_;
};
