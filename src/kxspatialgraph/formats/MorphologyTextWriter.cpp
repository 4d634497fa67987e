#include "kxspatialgraph/formats/MorphologyTextWriter.h"

#include <charconv>
#include <cstring>
#include <ostream>

namespace {

constexpr size_t kBlockSize = size_t(1) << 20;
// Longer than any number written: "%f" of the largest double has 309 digits before the point.
constexpr size_t kMaxNumberLength = 400;

}  // namespace

MorphologyTextWriter::MorphologyTextWriter(std::ostream& out)
    : out_(out), buffer_(new char[kBlockSize + kMaxNumberLength]) {}

MorphologyTextWriter::~MorphologyTextWriter() {
    flush();
}

char* MorphologyTextWriter::room(size_t n) {
    if (used_ + n > kBlockSize) {
        flush();
    }
    return buffer_.get() + used_;
}

MorphologyTextWriter& MorphologyTextWriter::text(const char* s) {
    size_t n = std::strlen(s);
    if (n > kBlockSize) {
        flush();
        out_.write(s, static_cast<std::streamsize>(n));
        return *this;
    }
    std::memcpy(room(n), s, n);
    used_ += n;
    return *this;
}

MorphologyTextWriter& MorphologyTextWriter::character(char c) {
    *room(1) = c;
    ++used_;
    return *this;
}

MorphologyTextWriter& MorphologyTextWriter::integer(int v) {
    char* p = room(kMaxNumberLength);
    used_ = static_cast<size_t>(std::to_chars(p, p + kMaxNumberLength, v).ptr - buffer_.get());
    return *this;
}

MorphologyTextWriter& MorphologyTextWriter::fixed(double v) {
    char* p = room(kMaxNumberLength);
    used_ = static_cast<size_t>(std::to_chars(p, p + kMaxNumberLength, v, std::chars_format::fixed, 6).ptr -
                                buffer_.get());
    return *this;
}

MorphologyTextWriter& MorphologyTextWriter::general(double v) {
    char* p = room(kMaxNumberLength);
    used_ = static_cast<size_t>(std::to_chars(p, p + kMaxNumberLength, v, std::chars_format::general, 6).ptr -
                                buffer_.get());
    return *this;
}

void MorphologyTextWriter::flush() {
    if (used_ > 0) {
        out_.write(buffer_.get(), static_cast<std::streamsize>(used_));
        used_ = 0;
    }
}
