#include "korva/korvamesh/KorvaMeshReader.h"

#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstring>
#include <new>

#include "korva/base/DecimalParser.h"
#include "korva/base/HugePages.h"
#include "korva/core/KxFileContents.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxParamBundle.h"
#include "korva/core/KxTextScanner.h"
#include "korva/core/KxWorkArea.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "korva/korvamesh/KorvaMeshFormat.h"

namespace {

// Text from the file as it may appear in a message: short, one line.
std::string printable(const std::string& text) {
    std::string out;
    for (char c : text.substr(0, 60)) {
        out += (static_cast<unsigned char>(c) < 32 || c == 127) ? '?' : c;
    }
    return text.size() > 60 ? out + "..." : out;
}

template <class T>
bool parseWhole(const std::string& word, T& value) {
    const char* last = word.data() + word.size();
    std::from_chars_result r = std::from_chars(word.data(), last, value);
    return r.ec == std::errc() && r.ptr == last;
}

// Scans a parameter block from just after its '{' to the matching '}'.
// Answers the position of that '}' or null, with the reason in error.
const char* matchingBrace(KxTextScanner& scanner, std::string& error) {
    std::string token;
    for (int depth = 1;;) {
        KxTextScanner::Token t = scanner.next(token);
        if (t == KxTextScanner::END || t == KxTextScanner::BAD) {
            error = "the parameter block has no closing '}'";
            return nullptr;
        }
        if (t == KxTextScanner::OPEN && ++depth > KxParamBundle::kMaxDepth) {
            error = "parameter bundles nested deeper than " + std::to_string(KxParamBundle::kMaxDepth);
            return nullptr;
        }
        if (t == KxTextScanner::CLOSE && --depth == 0) {
            return scanner.position() - 1;
        }
    }
}

template <class T>
std::from_chars_result parseNumber(const char* first, const char* last, T& value) {
    return std::from_chars(first, last, value);
}

std::from_chars_result parseNumber(const char* first, const char* last, float& value) {
    return DecimalParser::parse(first, last, value);
}

}  // namespace

// ---------------------------------------------------------------------------
// Entry points

bool KorvaMeshReader::hasSignature(const char* bytes, size_t size) {
    size_t n = std::strlen(KorvaMeshFormat::kSignature);
    return size > n && std::memcmp(bytes, KorvaMeshFormat::kSignature, n) == 0 &&
           KxTextScanner::isBlank(bytes[n]);
}

std::unique_ptr<KorvaMesh> KorvaMeshReader::readMemory(const char* bytes, size_t size, const char* name) {
    std::unique_ptr<KorvaMesh> mesh(new KorvaMesh);
    KorvaMeshReader reader(bytes, size, name, *mesh, false);
    if (!reader.parse()) {
        return nullptr;
    }
    return mesh;
}

std::unique_ptr<KorvaMesh> KorvaMeshReader::readFile(const char* filename) {
    KxFileContents contents;
    std::string error;
    if (!contents.load(filename, error)) {
        theMsg->printf("Error: cannot read KorvaMesh file \"%s\": %s.", filename, error.c_str());
        return nullptr;
    }
    std::unique_ptr<KorvaMesh> mesh(new KorvaMesh);
    KorvaMeshReader reader(contents.data(), contents.size(), filename, *mesh, true);
    mesh->fileContents_ = contents.share();
    if (!reader.parse()) {
        return nullptr;
    }
    return mesh;
}

bool KorvaMeshReader::probeContentType(const char* bytes, size_t size, std::string& contentType) {
    if (!hasSignature(bytes, size)) {
        return false;
    }
    KorvaMesh unused;
    KorvaMeshReader reader(bytes, size, "", unused, false);
    reader.p_ += std::strlen(KorvaMeshFormat::kSignature);
    return reader.findContentType(contentType);
}

KorvaMeshReader::KorvaMeshReader(const char* bytes, size_t size, const char* name, KorvaMesh& mesh,
                                 bool inPlace)
    : begin_(bytes),
      end_(bytes + size),
      p_(bytes),
      scanner_(bytes, size),
      name_(name),
      mesh_(mesh),
      inPlace_(inPlace) {}

bool KorvaMeshReader::fail(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    String problem = String::vformat(fmt, args);
    va_end(args);
    theMsg->printf("Error: cannot read KorvaMesh file \"%s\": %s", name_, problem.getString());
    return false;
}

int KorvaMeshReader::lineAt(const char* p) const {
    return scanner_.lineAt(p);
}

bool KorvaMeshReader::parse() {
    if (!hasSignature(begin_, static_cast<size_t>(end_ - begin_))) {
        return fail("not a KorvaMesh file (it does not start with \"%s\").", KorvaMeshFormat::kSignature);
    }
    p_ += std::strlen(KorvaMeshFormat::kSignature);
    if (!parseHeader()) {
        return false;
    }
    theWorkArea->startWorking(String::format("Reading %s", name_), static_cast<int>(arrays_.size()));
    bool ok = ascii_ ? readAsciiData() : readBinaryData();
    theWorkArea->stopWorking();
    return ok;
}

// ---------------------------------------------------------------------------
// Header

void KorvaMeshReader::skipBlanks() {
    tokenStart();
}

const char* KorvaMeshReader::tokenStart() {
    scanner_.setPosition(p_);
    return p_ = scanner_.skipBlanks();
}

KxTextScanner::Token KorvaMeshReader::next(std::string& value) {
    scanner_.setPosition(p_);
    KxTextScanner::Token t = scanner_.next(value);
    p_ = scanner_.position();
    return t;
}

bool KorvaMeshReader::expectWord(const char* what, std::string& word) {
    const char* at = tokenStart();
    if (next(word) != KxTextScanner::WORD) {
        return fail("header line %d: expected %s.", lineAt(at), what);
    }
    return true;
}

bool KorvaMeshReader::expectQuoted(const char* what, std::string& value) {
    const char* at = tokenStart();
    KxTextScanner::Token t = next(value);
    if (t != KxTextScanner::QUOTED) {
        return fail("header line %d: expected %s as a quoted string%s.", lineAt(at), what,
                    t == KxTextScanner::BAD ? " (the closing quote is missing)" : "");
    }
    return true;
}

bool KorvaMeshReader::parseHeader() {
    std::string word;
    int version = 0;
    if (!expectWord("the format version", word)) {
        return false;
    }
    if (!parseWhole(word, version) || version != KorvaMeshFormat::kVersion) {
        return fail("unsupported format version \"%s\" (this reader reads version %d).",
                    printable(word).c_str(), KorvaMeshFormat::kVersion);
    }
    if (!expectWord("the encoding", word)) {
        return false;
    }
    if (word != "ascii" && word != "binary-le") {
        return fail("unknown encoding \"%s\" (expected \"ascii\" or \"binary-le\").",
                    printable(word).c_str());
    }
    ascii_ = word == "ascii";
    while (true) {
        const char* at = tokenStart();
        KxTextScanner::Token t = next(word);
        if (t == KxTextScanner::END) {
            return fail("the header has no \"end\" line; the file is truncated.");
        }
        if (t != KxTextScanner::WORD) {
            return fail("header line %d: expected a keyword (parameters, location, array or end).",
                        lineAt(at));
        }
        if (word == "end") {
            break;
        }
        bool ok = word == "parameters" ? parseParameters()
                  : word == "location" ? parseLocation()
                  : word == "array"
                      ? parseArray()
                      : fail("header line %d: unknown keyword \"%s\".", lineAt(at), printable(word).c_str());
        if (!ok) {
            return false;
        }
    }
    // The data starts on the line after "end".
    if (p_ < end_ && *p_ == '\r') {
        ++p_;
    }
    if (p_ >= end_ && !arrays_.empty()) {
        return fail("the file ends after the header; the data of %zu arrays is missing.", arrays_.size());
    }
    if (p_ < end_ && *p_++ != '\n') {
        return fail("header line %d: \"end\" must stand alone on its line.", lineAt(p_ - 1));
    }
    return true;
}

// Walks the top level of the parameter block, which comes first in the
// header, for `"ContentType" string "..."`, skipping other parameters and
// sub-bundles token by token, so that a header cut short still answers.
bool KorvaMeshReader::findContentType(std::string& contentType) {
    std::string word, name;
    if (next(word) != KxTextScanner::WORD || next(word) != KxTextScanner::WORD ||
        next(word) != KxTextScanner::WORD || word != "parameters" || next(word) != KxTextScanner::OPEN) {
        return false;
    }
    int depth = 1;
    while (true) {
        KxTextScanner::Token t = next(name);
        if (t == KxTextScanner::OPEN || t == KxTextScanner::CLOSE) {
            depth += t == KxTextScanner::OPEN ? 1 : -1;
            if (depth == 0) {
                return false;
            }
            continue;
        }
        if (t == KxTextScanner::END || t == KxTextScanner::BAD) {
            return false;
        }
        if (t != KxTextScanner::QUOTED || depth != 1) {
            continue;
        }
        // A parameter: its kind, then one quoted string or numbers.
        const char* afterName = p_;
        if (next(word) != KxTextScanner::WORD) {
            p_ = afterName;
            continue;
        }
        if (word == "string" && next(word) == KxTextScanner::QUOTED && name == "ContentType") {
            contentType = word;
            return true;
        }
    }
}

bool KorvaMeshReader::parseParameters() {
    const char* at = tokenStart();
    std::string word;
    if (haveParameters_) {
        return fail("header line %d: a second parameter block.", lineAt(at));
    }
    haveParameters_ = true;
    if (next(word) != KxTextScanner::OPEN) {
        return fail("header line %d: expected '{' after \"parameters\".", lineAt(at));
    }
    std::string error;
    scanner_.setPosition(p_);
    const char* close = matchingBrace(scanner_, error);
    if (!close) {
        return fail("parameter block at header line %d: %s.", lineAt(at), error.c_str());
    }
    if (!mesh_.getParameters().fromText(p_, static_cast<size_t>(close - p_), error)) {
        return fail("parameter block at header line %d: %s.", lineAt(at), printable(error).c_str());
    }
    p_ = close + 1;
    return true;
}

bool KorvaMeshReader::parseLocation() {
    const char* at = tokenStart();
    std::string name, word;
    int64_t size = -1;
    if (!expectQuoted("a location name", name) || !expectWord("the location size", word)) {
        return false;
    }
    if (!parseWhole(word, size) || size < 0 || size > KorvaMesh::kMaxLocationSize) {
        return fail("header line %d: bad size \"%s\" of location \"%s\" (allowed: 0 to %lld).", lineAt(at),
                    printable(word).c_str(), printable(name).c_str(),
                    static_cast<long long>(KorvaMesh::kMaxLocationSize));
    }
    if (mesh_.findLocation(name.c_str())) {
        return fail("header line %d: location \"%s\" is defined twice.", lineAt(at), printable(name).c_str());
    }
    mesh_.createLocation(name.c_str(), size);
    return true;
}

bool KorvaMeshReader::parseArray() {
    const char* at = tokenStart();
    ArrayEntry e;
    std::string word;
    if (!expectQuoted("an array name", e.name) || !expectQuoted("the array's location", e.location) ||
        !expectWord("a value type", word)) {
        return false;
    }
    const int line = lineAt(at);
    const char* name = e.name.c_str();
    const KorvaMesh::Location* location = mesh_.findLocation(e.location.c_str());
    if (!location) {
        return fail("header line %d: array \"%s\" refers to location \"%s\", which is not defined before it.",
                    line, printable(name).c_str(), printable(e.location).c_str());
    }
    if (!PrimType::fromName(word.c_str(), e.type)) {
        return fail("header line %d: unknown value type \"%s\" of array \"%s\".", line,
                    printable(word).c_str(), printable(name).c_str());
    }
    if (!expectWord("a component count", word)) {
        return false;
    }
    if (!parseWhole(word, e.components) || e.components < 1 || e.components > KorvaMesh::kMaxComponents) {
        return fail("header line %d: bad component count \"%s\" of array \"%s\" (allowed: 1 to %d).", line,
                    printable(word).c_str(), printable(name).c_str(), KorvaMesh::kMaxComponents);
    }
    for (const ArrayEntry& other : arrays_) {
        if (other.name == e.name && other.location == e.location) {
            return fail("header line %d: location \"%s\" holds two arrays \"%s\".", line,
                        printable(e.location).c_str(), printable(name).c_str());
        }
    }
    e.numValues = static_cast<uint64_t>(location->getSize()) * static_cast<uint64_t>(e.components);
    const uint64_t rawBytes = e.numValues * static_cast<uint64_t>(e.type.getSize());
    e.storedBytes = rawBytes;
    if (!ascii_) {
        if (!expectWord("\"raw\" or \"zlib\"", word)) {
            return false;
        }
        if (word != "raw" && word != "zlib") {
            return fail("header line %d: unknown storage \"%s\" of array \"%s\" (expected raw or zlib).",
                        line, printable(word).c_str(), printable(name).c_str());
        }
        e.compressed = word == "zlib";
        if (!expectWord("the stored byte count", word)) {
            return false;
        }
        if (!parseWhole(word, e.storedBytes)) {
            return fail("header line %d: bad byte count \"%s\" of array \"%s\".", line,
                        printable(word).c_str(), printable(name).c_str());
        }
        if (!e.compressed && e.storedBytes != rawBytes) {
            return fail(
                "header line %d: array \"%s\" stores %llu bytes, but %lld elements of %d %s components take "
                "%llu "
                "bytes.",
                line, printable(name).c_str(), static_cast<unsigned long long>(e.storedBytes),
                static_cast<long long>(location->getSize()), e.components, e.type.getName(),
                static_cast<unsigned long long>(rawBytes));
        }
    }
    arrays_.push_back(std::move(e));
    return true;
}

bool KorvaMeshReader::addArray(const ArrayEntry& entry, const void* values, std::shared_ptr<char> owned) {
    const KorvaMesh::Location* location = mesh_.findLocation(entry.location.c_str());
    KorvaMesh::Data* data =
        owned ? mesh_.createOwnedData(entry.name.c_str(), location, entry.type, entry.components,
                                      std::move(owned))
              : mesh_.createData(entry.name.c_str(), location, entry.type, entry.components, values);
    if (data) {
        data->setCompressed(entry.compressed);
    }
    return data != nullptr;
}

// ---------------------------------------------------------------------------
// Binary data

bool KorvaMeshReader::readBinaryData() {
    const bool swap = !KorvaMeshFormat::hostIsLittleEndian();
    size_t offset = static_cast<size_t>(p_ - begin_);
    const size_t size = static_cast<size_t>(end_ - begin_);
    for (size_t i = 0; i < arrays_.size(); ++i, theWorkArea->step()) {
        const ArrayEntry& e = arrays_[i];
        offset += KorvaMeshFormat::padding(offset);
        if (offset > size || e.storedBytes > size - offset) {
            return fail(
                "the data of array \"%s\" (%llu bytes from byte %zu on) extends past the end of the file "
                "(%zu bytes); the file is truncated or the header is wrong.",
                printable(e.name).c_str(), static_cast<unsigned long long>(e.storedBytes), offset, size);
        }
        const char* src = begin_ + offset;
        offset += static_cast<size_t>(e.storedBytes);
        const size_t typeSize = static_cast<size_t>(e.type.getSize());
        const size_t bytes = static_cast<size_t>(e.numValues) * typeSize;
        std::shared_ptr<char> owned;
        if (e.compressed) {
            std::unique_ptr<char[]> inflated;
            if (!readCompressed(e, src, inflated)) {
                return false;
            }
            owned.reset(inflated.release(), std::default_delete<char[]>());
        } else {
            bool aligned = reinterpret_cast<uintptr_t>(src) % typeSize == 0;
            if (inPlace_ && aligned && !swap) {
                if (!addArray(e, src, nullptr)) {
                    return false;
                }
                continue;
            }
            owned = HugePages::allocate(bytes + 1);
            if (!owned) {
                return fail("not enough memory for the %zu bytes of array \"%s\".", bytes,
                            printable(e.name).c_str());
            }
            std::memcpy(owned.get(), src, bytes);
        }
        if (swap && typeSize > 1) {
            for (size_t k = 0; k < bytes; k += typeSize) {
                std::reverse(owned.get() + k, owned.get() + k + typeSize);
            }
        }
        if (!addArray(e, nullptr, std::move(owned))) {
            return false;
        }
    }
    if (offset != size) {
        return fail("%zu unexpected bytes after the data of the last array.", size - offset);
    }
    return true;
}

bool KorvaMeshReader::readCompressed(const ArrayEntry& e, const char* src, std::unique_ptr<char[]>& out) {
    const size_t expected = static_cast<size_t>(e.numValues) * static_cast<size_t>(e.type.getSize());
    // Deliberate: the buffer grows with the data that actually comes out, so a
    // forged element count cannot make us allocate more than the stream holds.
    size_t capacity = std::min(expected, std::max<size_t>(static_cast<size_t>(e.storedBytes) * 4, 1 << 16));
    out.reset(new (std::nothrow) char[capacity + 1]);
    z_stream zs{};
    if (!out || inflateInit(&zs) != Z_OK) {
        return fail("not enough memory to decompress array \"%s\".", printable(e.name).c_str());
    }
    const size_t chunk = 1u << 30;
    size_t consumed = 0, produced = 0;
    int rc = Z_OK;
    const char* problem = nullptr;
    while (!problem) {
        if (zs.avail_in == 0 && consumed < e.storedBytes) {
            size_t n = std::min<size_t>(chunk, static_cast<size_t>(e.storedBytes) - consumed);
            zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(src + consumed));
            zs.avail_in = static_cast<uInt>(n);
            consumed += n;
        }
        if (zs.avail_out == 0) {
            if (produced == capacity + 1) {
                problem = "it decompresses to more bytes than its elements take";
                break;
            }
            if (produced == capacity && capacity < expected) {
                size_t grown = std::min(expected, capacity * 2);
                std::unique_ptr<char[]> bigger(new (std::nothrow) char[grown + 1]);
                if (!bigger) {
                    problem = "not enough memory to decompress it";
                    break;
                }
                std::memcpy(bigger.get(), out.get(), produced);
                out = std::move(bigger);
                capacity = grown;
            }
            zs.next_out = reinterpret_cast<Bytef*>(out.get() + produced);
            zs.avail_out = static_cast<uInt>(std::min(chunk, capacity + 1 - produced));
        }
        uInt before = zs.avail_out;
        rc = inflate(&zs, Z_NO_FLUSH);
        produced += before - zs.avail_out;
        if (rc == Z_STREAM_END) {
            break;
        }
        if (rc == Z_BUF_ERROR && zs.avail_out == 0) {
            continue;
        }
        if (rc == Z_BUF_ERROR) {
            problem = "its compressed data ends early";
        } else if (rc != Z_OK) {
            problem = zs.msg ? zs.msg : "its compressed data is corrupt";
        }
    }
    size_t inputLeft = zs.avail_in + (static_cast<size_t>(e.storedBytes) - consumed);
    inflateEnd(&zs);
    if (!problem && produced != expected) {
        problem = produced > expected ? "it decompresses to more bytes than its elements take"
                                      : "it decompresses to fewer bytes than its elements take";
    }
    if (!problem && inputLeft != 0) {
        problem = "its stored size is larger than its compressed data";
    }
    if (problem) {
        out.reset();
        return fail("compressed array \"%s\" is damaged: %s.", printable(e.name).c_str(), problem);
    }
    return true;
}

// ---------------------------------------------------------------------------
// ASCII data

bool KorvaMeshReader::readAsciiData() {
    for (size_t i = 0; i < arrays_.size(); ++i, theWorkArea->step()) {
        const ArrayEntry& e = arrays_[i];
        const char* at = tokenStart();
        std::string marker = "@" + std::to_string(i + 1);
        std::string word;
        if (next(word) != KxTextScanner::WORD || word != marker) {
            return fail("line %d: expected \"%s\", the start of the data of array \"%s\"%s.", lineAt(at),
                        marker.c_str(), printable(e.name).c_str(),
                        p_ >= end_ ? "; the file is truncated" : "");
        }
        // Every value takes at least two bytes (a digit and a separator), so a
        // count larger than that is a lie and is refused before allocating.
        const uint64_t left = static_cast<uint64_t>(end_ - p_);
        if (e.numValues > (left + 1) / 2) {
            return fail("array \"%s\" should hold %llu values, but only %llu bytes are left in the file.",
                        printable(e.name).c_str(), static_cast<unsigned long long>(e.numValues),
                        static_cast<unsigned long long>(left));
        }
        const size_t bytes = static_cast<size_t>(e.numValues) * static_cast<size_t>(e.type.getSize());
        std::shared_ptr<char> owned = HugePages::allocate(bytes + 1);
        if (!owned) {
            return fail("not enough memory for the %zu bytes of array \"%s\".", bytes,
                        printable(e.name).c_str());
        }
        bool ok = false;
        KorvaMeshFormat::visitType(e.type, [&](auto* type) {
            ok = parseAsciiValues(e, reinterpret_cast<decltype(type)>(owned.get()));
        });
        if (!ok || !addArray(e, nullptr, std::move(owned))) {
            return false;
        }
    }
    skipBlanks();
    if (p_ < end_) {
        return fail("line %d: unexpected text after the data of the last array.", lineAt(p_));
    }
    return true;
}

template <class T>
bool KorvaMeshReader::parseAsciiValues(const ArrayEntry& e, T* out) {
    const char* p = p_;
    for (uint64_t k = 0; k < e.numValues; ++k) {
        while (p < end_ && KxTextScanner::isBlank(*p)) {
            ++p;
        }
        if (p >= end_) {
            return fail("array \"%s\" ends after %llu of its %llu values; the file is truncated.",
                        printable(e.name).c_str(), static_cast<unsigned long long>(k),
                        static_cast<unsigned long long>(e.numValues));
        }
        std::from_chars_result r = parseNumber(p, end_, out[k]);
        if (r.ec != std::errc() || (r.ptr < end_ && !KxTextScanner::isBlank(*r.ptr))) {
            const char* stop = p;
            while (stop < end_ && !KxTextScanner::isBlank(*stop) && stop - p < 40) {
                ++stop;
            }
            return fail("line %d: bad %s value \"%s\" (value %llu of array \"%s\")%s.", lineAt(p),
                        e.type.getName(), printable(std::string(p, stop)).c_str(),
                        static_cast<unsigned long long>(k) + 1, printable(e.name).c_str(),
                        r.ec == std::errc::result_out_of_range ? ": out of range" : "");
        }
        p = r.ptr;
    }
    p_ = p;
    return true;
}
