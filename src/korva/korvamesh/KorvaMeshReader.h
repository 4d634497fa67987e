#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "korva/base/PrimType.h"
#include "korva/core/KxTextScanner.h"

class KorvaMesh;

// Parses KorvaMesh files (docs/korvamesh.md) from memory. Every count, size
// and offset is checked against the bytes actually present before anything is
// allocated or copied, so a truncated, corrupt or hostile file yields one
// "Error: " line naming the file and the fault and a null result. Binary
// arrays are copied at most once (not at all when read from a file: they stay
// in the file buffer that the mesh keeps); ASCII numbers are parsed with
// std::from_chars, independent of the locale.
class KorvaMeshReader {
public:
    // Reads the whole file with one read and parses it in place.
    static std::unique_ptr<KorvaMesh> readFile(const char* filename);
    // Parses bytes that the caller keeps; name appears in messages.
    static std::unique_ptr<KorvaMesh> readMemory(const char* bytes, size_t size, const char* name);
    static bool hasSignature(const char* bytes, size_t size);
    // See KorvaMesh::probeContentType.
    static bool probeContentType(const char* bytes, size_t size, std::string& contentType);

private:
    // One "array" line of the header, waiting for its data.
    struct ArrayEntry {
        std::string name;
        std::string location;
        PrimType type;
        int components = 0;
        bool compressed = false;
        uint64_t storedBytes = 0;
        uint64_t numValues = 0;
    };

    // With inPlace, uncompressed binary arrays point into bytes, which the
    // caller has handed to the mesh.
    KorvaMeshReader(const char* bytes, size_t size, const char* name, KorvaMesh& mesh, bool inPlace);
    bool parse();
    bool findContentType(std::string& contentType);

    bool parseHeader();
    bool parseParameters();
    bool parseLocation();
    bool parseArray();
    bool readBinaryData();
    bool readCompressed(const ArrayEntry& entry, const char* src, std::unique_ptr<char[]>& out);
    bool readAsciiData();
    template <class T>
    bool parseAsciiValues(const ArrayEntry& entry, T* out);
    bool addArray(const ArrayEntry& entry, const void* values, std::shared_ptr<char> owned);

    KxTextScanner::Token next(std::string& value);
    void skipBlanks();
    // Skips blanks and comments; the position of the next token.
    const char* tokenStart();
    bool expectWord(const char* what, std::string& word);
    bool expectQuoted(const char* what, std::string& value);
    int lineAt(const char* p) const;
    bool fail(const char* fmt, ...) __attribute__((format(printf, 2, 3)));

    const char* begin_;
    const char* end_;
    const char* p_;
    KxTextScanner scanner_;
    const char* name_;
    KorvaMesh& mesh_;
    bool inPlace_;
    bool ascii_ = false;
    bool haveParameters_ = false;
    std::vector<ArrayEntry> arrays_;
};
