#include "korva/base/TypedElement.h"

#include "korva/base/PrimValue.h"

void TypedElement::reset(PrimType type, int numComponents) {
    type_ = type;
    numComponents_ = numComponents;
    bytes_.assign(static_cast<size_t>(numComponents) * static_cast<size_t>(type.getSize()), 0);
}

double TypedElement::getDouble(int component) const {
    return PrimValue::read(type_, bytes_.data() + static_cast<size_t>(component) * type_.getSize());
}

void TypedElement::setDouble(int component, double value) {
    PrimValue::write(type_, bytes_.data() + static_cast<size_t>(component) * type_.getSize(), value);
}

int TypedElement::getInt(int component) const {
    return static_cast<int>(getDouble(component));
}
float TypedElement::getFloat(int component) const {
    return static_cast<float>(getDouble(component));
}
void TypedElement::setInt(int component, int value) {
    setDouble(component, value);
}
void TypedElement::setFloat(int component, float value) {
    setDouble(component, value);
}
