#include "korva/korvamesh/KorvaMeshWriter.h"

#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxSafeFile.h"
#include "korva/core/KxTextScanner.h"
#include "korva/core/KxWorkArea.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "korva/korvamesh/KorvaMeshFormat.h"

namespace {

template <class T>
void appendAsciiValues(KxSafeFile& out, const T* values, int64_t rows, int components) {
    // Longest value: a double in shortest round-trip form, about 24 characters.
    const size_t rowBytes = static_cast<size_t>(components) * 32 + 1;
    for (int64_t r = 0; r < rows; ++r) {
        char* p = out.reserve(rowBytes);
        char* end = p + rowBytes;
        for (int c = 0; c < components; ++c) {
            if (c > 0) {
                *p++ = ' ';
            }
            p = std::to_chars(p, end, values[r * components + c]).ptr;
        }
        *p++ = '\n';
        out.advance(p);
    }
}

// The binary encoding is little-endian; a big-endian host swaps each value.
void appendSwapped(KxSafeFile& out, const char* values, size_t bytes, int valueSize) {
    const size_t chunk = 1 << 16;
    for (size_t done = 0; done < bytes; done += chunk) {
        size_t n = std::min(chunk, bytes - done);
        char* p = out.reserve(n);
        std::memcpy(p, values + done, n);
        for (size_t i = 0; i + static_cast<size_t>(valueSize) <= n; i += static_cast<size_t>(valueSize)) {
            std::reverse(p + i, p + i + valueSize);
        }
    }
}

// Pads with zero bytes up to the next multiple of the data alignment.
void align(KxSafeFile& out) {
    static const char zeros[KorvaMeshFormat::kAlignment] = {};
    out.write(zeros, KorvaMeshFormat::padding(out.size()));
}

}  // namespace

bool KorvaMeshWriter::checkValues() const {
    for (int i = 0; i < mesh_.getNumData(); ++i) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        if (d->getNumValues() > 0 && !d->getValues()) {
            theMsg->printf("Error: cannot write KorvaMesh file \"%s\": array \"%s\" has no values.",
                           filename_, d->getName());
            return false;
        }
    }
    return true;
}

bool KorvaMeshWriter::compressArrays(std::vector<Stored>& stored) const {
    stored.resize(static_cast<size_t>(mesh_.getNumData()));
    std::vector<char> swapped;
    for (int i = 0; i < mesh_.getNumData(); ++i) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        Stored& s = stored[static_cast<size_t>(i)];
        s.bytes = d->getNumBytes();
        if (s.bytes == 0 || !(compressAll_ || d->isCompressed())) {
            continue;
        }
        const char* raw = static_cast<const char*>(d->getValues());
        if (!KorvaMeshFormat::hostIsLittleEndian() && d->getPrimType().getSize() > 1) {
            swapped.assign(raw, raw + s.bytes);
            for (size_t k = 0; k < s.bytes; k += static_cast<size_t>(d->getPrimType().getSize())) {
                std::reverse(swapped.begin() + k, swapped.begin() + k + d->getPrimType().getSize());
            }
            raw = swapped.data();
        }
        uLongf length = compressBound(static_cast<uLong>(s.bytes));
        s.zlib.resize(length);
        int rc = compress2(s.zlib.data(), &length, reinterpret_cast<const Bytef*>(raw),
                           static_cast<uLong>(s.bytes), KorvaMeshFormat::kCompressionLevel);
        if (rc != Z_OK) {
            theMsg->printf(
                "Error: cannot write KorvaMesh file \"%s\": compression of array \"%s\" failed (%s).",
                filename_, d->getName(), zError(rc));
            return false;
        }
        // Incompressible data is stored as it is.
        if (length < s.bytes) {
            s.compressed = true;
            s.bytes = length;
            s.zlib.resize(length);
        } else {
            std::vector<unsigned char>().swap(s.zlib);
        }
    }
    return true;
}

std::string KorvaMeshWriter::header(bool ascii, const std::vector<Stored>& stored) const {
    std::string h = KorvaMeshFormat::kSignature;
    h += ' ';
    h += std::to_string(KorvaMeshFormat::kVersion);
    h += ascii ? " ascii\n" : " binary-le\n";
    h += "# Format description: docs/korvamesh.md\n";
    h += "parameters {\n";
    h += mesh_.getParameters().toText(2);
    h += "}\n";
    for (int i = 0; i < mesh_.getNumLocations(); ++i) {
        const KorvaMesh::Location* l = mesh_.getLocation(i);
        h += "location ";
        KxTextScanner::appendQuoted(h, l->getName());
        h += ' ' + std::to_string(l->getSize()) + '\n';
    }
    for (int i = 0; i < mesh_.getNumData(); ++i) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        h += "array ";
        KxTextScanner::appendQuoted(h, d->getName());
        h += ' ';
        KxTextScanner::appendQuoted(h, d->getLocationName());
        h += std::string(" ") + d->getPrimType().getName() + ' ' + std::to_string(d->getNumComponents());
        if (!ascii) {
            const Stored& s = stored[static_cast<size_t>(i)];
            h += s.compressed ? " zlib " : " raw ";
            h += std::to_string(s.bytes);
        }
        h += '\n';
    }
    h += "end\n";
    return h;
}

void KorvaMeshWriter::writeBinaryData(KxSafeFile& out, const std::vector<Stored>& stored) const {
    for (int i = 0; i < mesh_.getNumData(); ++i, theWorkArea->step()) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        const Stored& s = stored[static_cast<size_t>(i)];
        align(out);
        if (s.compressed) {
            out.write(s.zlib.data(), s.bytes);
        } else if (!KorvaMeshFormat::hostIsLittleEndian() && d->getPrimType().getSize() > 1) {
            appendSwapped(out, static_cast<const char*>(d->getValues()), s.bytes, d->getPrimType().getSize());
        } else if (s.bytes > 0) {
            out.write(d->getValues(), s.bytes);
        }
    }
}

void KorvaMeshWriter::writeAsciiData(KxSafeFile& out) const {
    for (int i = 0; i < mesh_.getNumData(); ++i, theWorkArea->step()) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        out.write("@" + std::to_string(i + 1) + '\n');
        int64_t rows = d->getLocation()->getSize();
        int n = d->getNumComponents();
        const void* v = d->getValues();
        KorvaMeshFormat::visitType(d->getPrimType(), [&](auto* type) {
            using T = std::remove_pointer_t<decltype(type)>;
            appendAsciiValues(out, static_cast<const T*>(v), rows, n);
        });
    }
}

bool KorvaMeshWriter::write(const char* filename, bool ascii) {
    filename_ = filename;
    std::vector<Stored> stored;
    if (!checkValues() || (!ascii && !compressArrays(stored))) {
        return false;
    }
    KxSafeFile out(filename, "KorvaMesh file");
    if (!out.open()) {
        return false;
    }
    out.write(header(ascii, stored));
    theWorkArea->startWorking(String::format("Writing %s", filename), mesh_.getNumData());
    if (ascii) {
        writeAsciiData(out);
    } else {
        writeBinaryData(out, stored);
    }
    theWorkArea->stopWorking();
    return out.commit();
}
