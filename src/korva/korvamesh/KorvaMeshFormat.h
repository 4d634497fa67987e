#pragma once

#include <cstddef>
#include <string>

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
// Parameter bundles nest at most this deep, so that nothing recursive over a
// bundle can exhaust the stack on a hostile file.
constexpr int kMaxBundleDepth = 100;

inline size_t padding(size_t offset) {
    return (kAlignment - offset % kAlignment) % kAlignment;
}

// A name as a double-quoted string with \" \\ \n \r \t escapes.
inline std::string quote(const char* name) {
    std::string out = "\"";
    for (const char* c = name; *c; ++c) {
        switch (*c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                out += *c;
        }
    }
    return out + '"';
}

}  // namespace KorvaMeshFormat
