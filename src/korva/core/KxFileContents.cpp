#include "korva/core/KxFileContents.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "korva/base/HugePages.h"

namespace {

// The file mapped read-only, its pages entered at once; null if it cannot be
// mapped. Deliberate: a mapped file that another program truncates while we
// read it ends the process (SIGBUS). Korva's own writers never change a file
// in place (they rename a new file over it), so this does not happen between
// Korva sessions, and the mapping saves copying the whole file once.
std::shared_ptr<char> mapFile(int fd, size_t size) {
    if (size == 0) {
        return nullptr;
    }
    void* p = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    if (p == MAP_FAILED) {
        return nullptr;
    }
    return std::shared_ptr<char>(static_cast<char*>(p), [size](char* q) { ::munmap(q, size); });
}

// Reads the whole file with read(), for files that cannot be mapped.
bool readWholeFile(int fd, size_t size, std::shared_ptr<char>& contents, std::string& error) {
    contents = HugePages::allocate(size + 1);
    if (!contents) {
        error = "not enough memory for " + std::to_string(size) + " bytes";
        return false;
    }
    contents.get()[size] = '\0';
    size_t done = 0;
    while (done < size) {
        ssize_t n = ::read(fd, contents.get() + done, size - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            error = n < 0 ? std::strerror(errno) : "the file shrank while it was read";
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

}  // namespace

bool KxFileContents::load(const char* filename, std::string& error) {
    buffer_.reset();
    size_ = 0;
    int fd = ::open(filename, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        error = "not a regular file";
        return false;
    }
    size_t size = static_cast<size_t>(st.st_size);
    std::shared_ptr<char> contents = mapFile(fd, size);
    bool ok = contents || readWholeFile(fd, size, contents, error);
    ::close(fd);
    if (ok) {
        buffer_ = std::move(contents);
        size_ = size;
    }
    return ok;
}
