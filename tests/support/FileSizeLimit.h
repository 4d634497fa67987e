#pragma once

#include <sys/resource.h>

// While alive, a file may not grow beyond limit bytes: writing past it
// raises SIGXFSZ, which ends the process unless the writer handles it.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t limit) {
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit l = old_;
        l.rlim_cur = limit;
        setrlimit(RLIMIT_FSIZE, &l);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &old_); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit old_;
};
