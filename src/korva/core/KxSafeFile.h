#pragma once

#include <signal.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>

// Writes a file so that an existing one survives any failure. The bytes go,
// buffered, to a temporary file FILE.tmpXXXXXX in the target's directory;
// commit() flushes it to disk, gives it the old file's permissions (or the
// default ones for a new file) and renames it over the target. Until then,
// and whenever something fails, the target is untouched; a KxSafeFile that
// is destroyed without a successful commit() removes its temporary file.
// A read-only target is refused. A symbolic link is followed: the file it
// names is replaced. A FIFO or device is written to directly, as it cannot
// be replaced. While the file is open, a write past the file size limit fails
// with EFBIG instead of ending the process (SIGXFSZ).
//
// Error lines read "Error: cannot write KIND "FILE": reason.", so they name
// the user's file, never the temporary one.
//
//     KxSafeFile file(filename, "SWC file");
//     if (!file.open()) return 0;
//     file.stream() << ...;         // or file.write(bytes, n)
//     return file.commit() ? 1 : 0;
class KxSafeFile : private std::streambuf {
public:
    KxSafeFile(const char* filename, const char* kind);
    ~KxSafeFile() override;
    KxSafeFile(const KxSafeFile&) = delete;
    KxSafeFile& operator=(const KxSafeFile&) = delete;

    // Creates the temporary file. False, after one error line, when the
    // target is read-only or no temporary file can be made beside it.
    bool open();

    void write(const void* bytes, size_t n);
    void write(const std::string& text) { write(text.data(), text.size()); }
    // Room for at least n more bytes; hand back the unused tail with advance().
    char* reserve(size_t n);
    void advance(char* end);
    // Formatted output into the same buffer.
    std::ostream& stream() { return stream_; }
    // Bytes written so far.
    uint64_t size() const { return written_ + buffer_.size(); }
    // The first write error (an errno value), or 0.
    int error() const { return error_; }

    // Puts the file in place of the target. False, after one error line, if
    // anything failed since open(); the target is then unchanged.
    bool commit();
    // Prints "Error: cannot write KIND "FILE": reason." and discards the
    // temporary file; for writers that find a problem in their data.
    void fail(const std::string& reason);

private:
    static constexpr size_t kBufferSize = 1 << 20;

    void flush();
    void writeAll(const char* p, size_t n);
    void discard();
    int overflow(int c) override;
    std::streamsize xsputn(const char* s, std::streamsize n) override;

    std::string filename_;
    std::string target_;  // the file replaced: filename_ with a symbolic link followed
    std::string kind_;
    std::string temporary_;
    int fd_ = -1;
    std::string buffer_;
    uint64_t written_ = 0;
    int error_ = 0;
    std::ostream stream_;
    struct sigaction oldFileSizeAction_ = {};
};
