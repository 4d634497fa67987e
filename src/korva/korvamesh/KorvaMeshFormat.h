#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "korva/base/PrimType.h"

// Constants and small helpers shared by the KorvaMesh reader and writer; the
// format itself is described in docs/korvamesh.md.
namespace KorvaMeshFormat {

constexpr const char* kSignature = "KorvaMesh";
constexpr int kVersion = 1;
// Binary data blocks start at file offsets that are multiples of this, so a
// file read into an aligned buffer can be used in place.
constexpr size_t kAlignment = 8;
// Fast compression: float data gains little from higher levels.
constexpr int kCompressionLevel = 1;

// The binary encoding is little-endian; other hosts swap bytes.
inline bool hostIsLittleEndian() {
    const uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

inline size_t padding(size_t offset) {
    return (kAlignment - offset % kAlignment) % kAlignment;
}

// Calls f with a null pointer of the C++ type of a primitive type, for code
// that handles every value type alike: f(static_cast<float*>(nullptr)).
template <class F>
void visitType(PrimType type, F&& f) {
    switch (type.getType()) {
        case PrimType::INT8:
            f(static_cast<int8_t*>(nullptr));
            break;
        case PrimType::UINT8:
            f(static_cast<uint8_t*>(nullptr));
            break;
        case PrimType::INT16:
            f(static_cast<int16_t*>(nullptr));
            break;
        case PrimType::UINT16:
            f(static_cast<uint16_t*>(nullptr));
            break;
        case PrimType::INT32:
            f(static_cast<int32_t*>(nullptr));
            break;
        case PrimType::UINT32:
            f(static_cast<uint32_t*>(nullptr));
            break;
        case PrimType::INT64:
            f(static_cast<int64_t*>(nullptr));
            break;
        case PrimType::UINT64:
            f(static_cast<uint64_t*>(nullptr));
            break;
        case PrimType::FLOAT32:
            f(static_cast<float*>(nullptr));
            break;
        case PrimType::FLOAT64:
            f(static_cast<double*>(nullptr));
            break;
        default:
            break;
    }
}

}  // namespace KorvaMeshFormat
