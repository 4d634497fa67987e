#pragma once

#include <cstddef>
#include <memory>

// Large arrays that are about to be filled (a graph of millions of points
// read from a file) spend more time in page faults, one per 4 KB page, than in
// copying their values. Advising transparent huge pages for the buffer makes
// that one fault per 2 MB. Only advice: nothing changes if the kernel refuses,
// and buffers under 2 MB are left alone.
namespace HugePages {

constexpr size_t kHugePageBytes = size_t(1) << 21;

// Advises huge pages for the whole 2 MB-aligned pages inside [p, p + bytes).
void advise(void* p, size_t bytes);

// A new buffer of at least bytes bytes, freed when the last copy goes; null
// if there is no memory. Buffers of 2 MB or more start on a huge page and
// take whole huge pages with advice: a buffer from the heap starts at an
// arbitrary address, and the 4 KB pages before its first huge page cost a
// fault each. Not zero-filled by this function.
std::shared_ptr<char> allocate(size_t bytes);

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
