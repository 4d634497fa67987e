#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>

// Text output of the morphology writers: numbers formatted exactly like the C
// library's printf in the "C" locale, whatever the process locale, collected
// in a block buffer that goes to the stream in large writes.
class MorphologyTextWriter {
public:
    explicit MorphologyTextWriter(std::ostream& out);
    // Flushes what is left.
    ~MorphologyTextWriter();
    MorphologyTextWriter(const MorphologyTextWriter&) = delete;
    MorphologyTextWriter& operator=(const MorphologyTextWriter&) = delete;

    MorphologyTextWriter& text(const char* s);
    MorphologyTextWriter& character(char c);
    // "%i"
    MorphologyTextWriter& integer(int v);
    // "%f": six decimals.
    MorphologyTextWriter& fixed(double v);
    // "%g": six significant digits, a stream's default float format.
    MorphologyTextWriter& general(double v);

    // Hands the buffer to the stream.
    void flush();

private:
    // Makes room for n more bytes, flushing when the block is full.
    char* room(size_t n);

    std::ostream& out_;
    std::unique_ptr<char[]> buffer_;
    size_t used_ = 0;
};
