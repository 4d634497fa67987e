#include "korva/base/HugePages.h"

#include <sys/mman.h>

#include <cstdint>

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
