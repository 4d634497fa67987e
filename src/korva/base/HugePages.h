#pragma once

#include <cstddef>

// Large arrays that are about to be filled (a graph of millions of points
// read from a file) spend more time in page faults, one per 4 KB page, than in
// copying their values. Advising transparent huge pages for the buffer makes
// that one fault per 2 MB. Only advice: nothing changes if the kernel refuses,
// and buffers under 2 MB are left alone.
namespace HugePages {

constexpr size_t kHugePageBytes = size_t(1) << 21;

// Advises huge pages for the whole 2 MB-aligned pages inside [p, p + bytes).
void advise(void* p, size_t bytes);

// Reserves room for n elements in a std::vector, advising huge pages for a
// new buffer before its free part is first touched.
template <class Vector>
void reserve(Vector& v, size_t n) {
    if (n > v.capacity()) {
        v.reserve(n);
        advise(v.data(), v.capacity() * sizeof(*v.data()));
    }
}

}  // namespace HugePages
