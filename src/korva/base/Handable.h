#pragma once

#include <cassert>

// Base of reference-counted objects that several owners may hold. A new
// object has count 0; ref() and unref() change it, and unref() to 0 calls
// notifyDelete(), which deletes the object unless a subclass decides
// otherwise. Objects owned by exactly one parent may be deleted directly
// without ever being referenced.
class Handable {
public:
    Handable() = default;
    Handable(const Handable&) = delete;
    Handable& operator=(const Handable&) = delete;
    virtual ~Handable() = default;

    void ref() { ++refCount_; }
    void unref() {
        assert(refCount_ > 0);
        if (--refCount_ == 0) {
            notifyDelete();
        }
    }
    int getRefCount() const { return refCount_; }

    virtual void notifyDelete() { delete this; }

private:
    int refCount_ = 0;
};
