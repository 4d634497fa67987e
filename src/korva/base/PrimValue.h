#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "korva/base/PrimType.h"

// Reads and writes one value of a primitive type at an untyped address,
// converting through double. Shared by the typed containers.
namespace PrimValue {

template <class T>
inline double load(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof(T));
    return static_cast<double>(v);
}

// Integers saturate at their range and take 0 for NaN: converting an
// out-of-range double to an integer type is undefined, and values come from files.
template <class T>
inline void store(void* p, double value) {
    T v;
    if constexpr (std::is_integral<T>::value) {
        if (std::isnan(value)) {
            v = 0;
        } else if (value <= static_cast<double>(std::numeric_limits<T>::min())) {
            v = std::numeric_limits<T>::min();
        } else if (value >= static_cast<double>(std::numeric_limits<T>::max())) {
            v = std::numeric_limits<T>::max();
        } else {
            v = static_cast<T>(value);
        }
    } else {
        v = static_cast<T>(value);
    }
    std::memcpy(p, &v, sizeof(T));
}

inline double read(PrimType type, const void* p) {
    switch (type.getType()) {
        case PrimType::INT8:
            return load<int8_t>(p);
        case PrimType::UINT8:
            return load<uint8_t>(p);
        case PrimType::INT16:
            return load<int16_t>(p);
        case PrimType::UINT16:
            return load<uint16_t>(p);
        case PrimType::INT32:
            return load<int32_t>(p);
        case PrimType::UINT32:
            return load<uint32_t>(p);
        case PrimType::INT64:
            return load<int64_t>(p);
        case PrimType::UINT64:
            return load<uint64_t>(p);
        case PrimType::FLOAT32:
            return load<float>(p);
        case PrimType::FLOAT64:
            return load<double>(p);
        default:
            return 0.0;
    }
}

inline void write(PrimType type, void* p, double value) {
    switch (type.getType()) {
        case PrimType::INT8:
            store<int8_t>(p, value);
            break;
        case PrimType::UINT8:
            store<uint8_t>(p, value);
            break;
        case PrimType::INT16:
            store<int16_t>(p, value);
            break;
        case PrimType::UINT16:
            store<uint16_t>(p, value);
            break;
        case PrimType::INT32:
            store<int32_t>(p, value);
            break;
        case PrimType::UINT32:
            store<uint32_t>(p, value);
            break;
        case PrimType::INT64:
            store<int64_t>(p, value);
            break;
        case PrimType::UINT64:
            store<uint64_t>(p, value);
            break;
        case PrimType::FLOAT32:
            store<float>(p, value);
            break;
        case PrimType::FLOAT64:
            store<double>(p, value);
            break;
        default:
            break;
    }
}

}  // namespace PrimValue
