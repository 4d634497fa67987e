#include "korva/base/PrimType.h"

#include <cstring>

namespace {
struct TypeInfo {
    const char* name;
    int size;
};
const TypeInfo kTypes[PrimType::NUM_TYPES] = {
    {"int8", 1},   {"uint8", 1}, {"int16", 2},  {"uint16", 2}, {"int32", 4},
    {"uint32", 4}, {"int64", 8}, {"uint64", 8}, {"float", 4},  {"double", 8},
};
}  // namespace

int PrimType::getSize() const {
    return kTypes[type_].size;
}

const char* PrimType::getName() const {
    return kTypes[type_].name;
}

bool PrimType::fromName(const char* name, PrimType& type) {
    for (int t = 0; t < NUM_TYPES; ++t) {
        if (name && std::strcmp(name, kTypes[t].name) == 0) {
            type = PrimType(static_cast<Type>(t));
            return true;
        }
    }
    return false;
}
