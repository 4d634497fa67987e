#include "korva/core/KxSafeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "korva/core/KxMessageConsole.h"

namespace {

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

// The file that saving to path replaces: symbolic links are followed, also
// to a file that does not exist yet, so the file a link names gets the new
// contents and the link stays a link.
std::string replacedFile(const std::string& path) {
    const int kMaxLinks = 40;  // as the kernel's own limit, against loops
    std::filesystem::path target = path;
    for (int hop = 0; hop < kMaxLinks; ++hop) {
        std::error_code error;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(target, error))) {
            break;
        }
        std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error) {
            break;
        }
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target.string();
}

// A FIFO, terminal or device cannot be replaced by a new file; it is written to.
bool isSpecialFile(const char* filename) {
    struct stat st;
    return ::stat(filename, &st) == 0 && !S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode);
}

}  // namespace

KxSafeFile::KxSafeFile(const char* filename, const char* kind)
    : filename_(filename), kind_(kind), stream_(this) {}

KxSafeFile::~KxSafeFile() {
    discard();
}

bool KxSafeFile::open() {
    if (isReadOnly(filename_.c_str())) {
        fail("the file is read-only. It is unchanged");
        return false;
    }
    if (isSpecialFile(filename_.c_str())) {
        fd_ = ::open(filename_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        if (fd_ < 0) {
            fail(std::strerror(errno));
            return false;
        }
    } else {
        target_ = replacedFile(filename_);
        temporary_ = target_ + ".tmpXXXXXX";
        fd_ = ::mkstemp(&temporary_[0]);
        if (fd_ < 0) {
            temporary_.clear();
            fail("cannot create a temporary file in " + directoryOf(target_) + " (" + std::strerror(errno) +
                 ")");
            return false;
        }
    }
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, &oldFileSizeAction_);
    buffer_.reserve(kBufferSize);
    return true;
}

void KxSafeFile::write(const void* bytes, size_t n) {
    if (buffer_.size() + n > kBufferSize) {
        flush();
        if (n >= kBufferSize) {
            writeAll(static_cast<const char*>(bytes), n);
            return;
        }
    }
    buffer_.append(static_cast<const char*>(bytes), n);
}

char* KxSafeFile::reserve(size_t n) {
    if (buffer_.size() + n > kBufferSize) {
        flush();
    }
    size_t old = buffer_.size();
    buffer_.resize(old + n);
    return &buffer_[old];
}

void KxSafeFile::advance(char* end) {
    buffer_.resize(static_cast<size_t>(end - buffer_.data()));
}

bool KxSafeFile::commit() {
    if (fd_ < 0) {
        return false;
    }
    stream_.flush();
    flush();
    int error = error_;
    const bool replacing = !temporary_.empty();
    if (replacing && error == 0 && (::fchmod(fd_, newFileMode(target_.c_str())) != 0 || ::fsync(fd_) != 0)) {
        error = errno;
    }
    if (::close(fd_) != 0 && error == 0) {
        error = errno;
    }
    fd_ = -1;
    if (replacing && error == 0 && ::rename(temporary_.c_str(), target_.c_str()) != 0) {
        error = errno;
    }
    if (!replacing) {
        ::sigaction(SIGXFSZ, &oldFileSizeAction_, nullptr);
        if (error != 0) {
            fail(std::strerror(error));
        }
        return error == 0;
    }
    if (error != 0) {
        fail(std::string(std::strerror(error)) + ". The old file, if any, is unchanged");
        return false;
    }
    temporary_.clear();
    ::sigaction(SIGXFSZ, &oldFileSizeAction_, nullptr);
    // Make the rename itself durable.
    int dir = ::open(directoryOf(target_).c_str(), O_RDONLY | O_DIRECTORY);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}

void KxSafeFile::fail(const std::string& reason) {
    theMsg->printf("Error: cannot write %s \"%s\": %s.", kind_.c_str(), filename_.c_str(), reason.c_str());
    discard();
}

void KxSafeFile::flush() {
    writeAll(buffer_.data(), buffer_.size());
    buffer_.clear();
}

void KxSafeFile::writeAll(const char* p, size_t n) {
    while (n > 0 && error_ == 0 && fd_ >= 0) {
        ssize_t w = ::write(fd_, p, n);
        if (w < 0) {
            if (errno != EINTR) {
                error_ = errno;
            }
            continue;
        }
        p += w;
        n -= static_cast<size_t>(w);
        written_ += static_cast<uint64_t>(w);
    }
}

void KxSafeFile::discard() {
    const bool open = fd_ >= 0 || !temporary_.empty();
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
        temporary_.clear();
    }
    if (open) {
        ::sigaction(SIGXFSZ, &oldFileSizeAction_, nullptr);
    }
}

int KxSafeFile::overflow(int c) {
    if (c != traits_type::eof()) {
        char byte = static_cast<char>(c);
        write(&byte, 1);
    }
    return error_ == 0 ? traits_type::not_eof(c) : traits_type::eof();
}

std::streamsize KxSafeFile::xsputn(const char* s, std::streamsize n) {
    write(s, static_cast<size_t>(n));
    return error_ == 0 ? n : 0;
}
