#include "korva/base/HugePages.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

void HugePages::advise(void* p, size_t bytes) {
    if (!p || bytes < kHugePageBytes) {
        return;
    }
    const uintptr_t begin = (reinterpret_cast<uintptr_t>(p) + kHugePageBytes - 1) & ~(kHugePageBytes - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(p) + bytes) & ~(kHugePageBytes - 1);
    if (end > begin) {
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    }
}

std::shared_ptr<char> HugePages::allocate(size_t bytes) {
    if (bytes < kHugePageBytes) {
        return std::shared_ptr<char>(new (std::nothrow) char[bytes == 0 ? 1 : bytes],
                                     std::default_delete<char[]>());
    }
    // Maps one huge page more than needed and returns the unaligned ends.
    const size_t length = (bytes + kHugePageBytes - 1) & ~(kHugePageBytes - 1);
    void* mapped =
        ::mmap(nullptr, length + kHugePageBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        return nullptr;
    }
    const uintptr_t start = reinterpret_cast<uintptr_t>(mapped);
    const uintptr_t aligned = (start + kHugePageBytes - 1) & ~(kHugePageBytes - 1);
    if (aligned > start) {
        ::munmap(mapped, aligned - start);
    }
    if (start + kHugePageBytes > aligned) {
        ::munmap(reinterpret_cast<void*>(aligned + length), start + kHugePageBytes - aligned);
    }
    char* p = reinterpret_cast<char*>(aligned);
    ::madvise(p, length, MADV_HUGEPAGE);
    return std::shared_ptr<char>(p, [length](char* q) { ::munmap(q, length); });
}
