#include "korva/korvamesh/KorvaMeshWriter.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxTextScanner.h"
#include "korva/core/KxWorkArea.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "korva/korvamesh/KorvaMeshFormat.h"

// Buffered output to a file descriptor that remembers the first failure, so
// the writing code can run to the end and check once.
class KorvaMeshWriter::Output {
public:
    explicit Output(int fd) : fd_(fd) { buffer_.reserve(kBufferSize); }

    void append(const void* bytes, size_t n) {
        if (buffer_.size() + n > kBufferSize) {
            flush();
            if (n >= kBufferSize) {
                writeAll(static_cast<const char*>(bytes), n);
                return;
            }
        }
        buffer_.append(static_cast<const char*>(bytes), n);
    }
    void append(const std::string& s) { append(s.data(), s.size()); }
    // Room for at least n more bytes at the end of the buffer.
    char* reserve(size_t n) {
        if (buffer_.size() + n > kBufferSize) {
            flush();
        }
        size_t old = buffer_.size();
        buffer_.resize(old + n);
        return &buffer_[old];
    }
    // Gives back the unused tail of the last reserve().
    void commit(char* end) { buffer_.resize(static_cast<size_t>(end - buffer_.data())); }
    // Pads with zero bytes up to the next multiple of the data alignment.
    void align() {
        static const char zeros[KorvaMeshFormat::kAlignment] = {};
        size_t total = written_ + buffer_.size();
        append(zeros, KorvaMeshFormat::padding(total));
    }
    void flush() {
        writeAll(buffer_.data(), buffer_.size());
        buffer_.clear();
    }
    int error() const { return error_; }

private:
    static constexpr size_t kBufferSize = 1 << 20;

    void writeAll(const char* p, size_t n) {
        while (n > 0 && error_ == 0) {
            ssize_t w = ::write(fd_, p, n);
            if (w < 0) {
                if (errno != EINTR) {
                    error_ = errno;
                }
                continue;
            }
            p += w;
            n -= static_cast<size_t>(w);
            written_ += static_cast<size_t>(w);
        }
    }

    int fd_;
    std::string buffer_;
    size_t written_ = 0;
    int error_ = 0;
};

namespace {

template <class T>
void appendAsciiValues(KorvaMeshWriter::Output& out, const T* values, int64_t rows, int components) {
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
        out.commit(p);
    }
}

// The binary encoding is little-endian; a big-endian host swaps each value.
void appendSwapped(KorvaMeshWriter::Output& out, const char* values, size_t bytes, int valueSize) {
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

std::string directoryOf(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// Mode for the new file: the old file's mode, or what a plain open would give.
mode_t newFileMode(const char* filename) {
    struct stat st;
    if (::stat(filename, &st) == 0) {
        return st.st_mode & 07777;
    }
    mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Deliberate: a read-only file is not replaced, although the directory would
// allow the rename; write protection means "keep this file". Checked by the
// mode bits too, because access() lets root write anything.
bool isReadOnly(const char* filename) {
    struct stat st;
    return ::stat(filename, &st) == 0 && S_ISREG(st.st_mode) &&
           ((st.st_mode & 0222) == 0 || ::access(filename, W_OK) != 0);
}

// While alive, a write past the file size limit fails with EFBIG instead of
// killing the process with SIGXFSZ, so the writer can remove its temporary file.
class IgnoreFileSizeSignal {
public:
    IgnoreFileSizeSignal() {
        struct sigaction ignore = {};
        ignore.sa_handler = SIG_IGN;
        ::sigaction(SIGXFSZ, &ignore, &old_);
    }
    ~IgnoreFileSizeSignal() { ::sigaction(SIGXFSZ, &old_, nullptr); }

private:
    struct sigaction old_;
};

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

void KorvaMeshWriter::writeBinaryData(Output& out, const std::vector<Stored>& stored) const {
    for (int i = 0; i < mesh_.getNumData(); ++i, theWorkArea->step()) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        const Stored& s = stored[static_cast<size_t>(i)];
        out.align();
        if (s.compressed) {
            out.append(s.zlib.data(), s.bytes);
        } else if (!KorvaMeshFormat::hostIsLittleEndian() && d->getPrimType().getSize() > 1) {
            appendSwapped(out, static_cast<const char*>(d->getValues()), s.bytes, d->getPrimType().getSize());
        } else if (s.bytes > 0) {
            out.append(d->getValues(), s.bytes);
        }
    }
}

void KorvaMeshWriter::writeAsciiData(Output& out) const {
    for (int i = 0; i < mesh_.getNumData(); ++i, theWorkArea->step()) {
        const KorvaMesh::Data* d = mesh_.getData(i);
        out.append("@" + std::to_string(i + 1) + '\n');
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
    if (isReadOnly(filename)) {
        theMsg->printf("Error: cannot write KorvaMesh file \"%s\": the file is read-only. It is unchanged.",
                       filename);
        return false;
    }
    IgnoreFileSizeSignal ignoreFileSizeSignal;
    std::string tmp = std::string(filename) + ".tmpXXXXXX";
    int fd = ::mkstemp(&tmp[0]);
    if (fd < 0) {
        theMsg->printf(
            "Error: cannot write KorvaMesh file \"%s\": cannot create a temporary file in %s (%s).", filename,
            directoryOf(filename).c_str(), std::strerror(errno));
        return false;
    }
    Output out(fd);
    out.append(header(ascii, stored));
    theWorkArea->startWorking(String::format("Writing %s", filename), mesh_.getNumData());
    if (ascii) {
        writeAsciiData(out);
    } else {
        writeBinaryData(out, stored);
    }
    out.flush();
    theWorkArea->stopWorking();
    int error = out.error();
    if (error == 0 && (::fchmod(fd, newFileMode(filename)) != 0 || ::fsync(fd) != 0)) {
        error = errno;
    }
    if (::close(fd) != 0 && error == 0) {
        error = errno;
    }
    if (error == 0 && ::rename(tmp.c_str(), filename) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(tmp.c_str());
        theMsg->printf("Error: cannot write KorvaMesh file \"%s\": %s. The old file, if any, is unchanged.",
                       filename, std::strerror(error));
        return false;
    }
    // Make the rename itself durable.
    int dir = ::open(directoryOf(filename).c_str(), O_RDONLY | O_DIRECTORY);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}
