#pragma once

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

// Growable array of trivially copyable elements that keeps up to N of them
// inside the object and moves to a heap buffer only past N. Growth is to
// max(floor(count * 1.5), count + 1); when it shrinks back to N or fewer
// elements they move inline again and the heap buffer is freed. The graph's
// per-vertex incidence lists are SmallArray<int, 2>, so most vertices cost no
// allocation at all.
template <class T, int N>
class SmallArray {
    static_assert(std::is_trivially_copyable<T>::value, "SmallArray holds trivially copyable values");
    static_assert(N > 0, "SmallArray needs inline room");

public:
    SmallArray() = default;
    SmallArray(const SmallArray& other) { copyFrom(other); }
    SmallArray(SmallArray&& other) noexcept { moveFrom(other); }
    SmallArray& operator=(const SmallArray& other) {
        if (this != &other) {
            freeHeap();
            copyFrom(other);
        }
        return *this;
    }
    SmallArray& operator=(SmallArray&& other) noexcept {
        if (this != &other) {
            freeHeap();
            moveFrom(other);
        }
        return *this;
    }
    ~SmallArray() { freeHeap(); }

    int size() const { return count_; }
    bool isEmpty() const { return count_ == 0; }
    int capacity() const { return isInline() ? N : capacity_; }
    bool isInline() const { return capacity_ <= N; }

    T* dataPtr() { return isInline() ? inline_ : heap_; }
    const T* dataPtr() const { return isInline() ? inline_ : heap_; }
    T& operator[](int i) {
        assert(i >= 0 && i < count_);
        return dataPtr()[i];
    }
    const T& operator[](int i) const {
        assert(i >= 0 && i < count_);
        return dataPtr()[i];
    }
    T* begin() { return dataPtr(); }
    T* end() { return dataPtr() + count_; }
    const T* begin() const { return dataPtr(); }
    const T* end() const { return dataPtr() + count_; }

    void append(const T& value) {
        if (count_ == capacity()) {
            T copy = value;  // value may live in our own buffer
            setCapacity(std::max(count_ * 3 / 2, count_ + 1));
            dataPtr()[count_++] = copy;
            return;
        }
        dataPtr()[count_++] = value;
    }

    void insert(int i, const T& value) {
        assert(i >= 0 && i <= count_);
        T copy = value;
        if (count_ == capacity()) {
            setCapacity(std::max(count_ * 3 / 2, count_ + 1));
        }
        T* d = dataPtr();
        std::memmove(d + i + 1, d + i, sizeof(T) * static_cast<size_t>(count_ - i));
        d[i] = copy;
        ++count_;
    }

    void remove(int i, int n = 1) {
        assert(i >= 0 && n >= 0 && i + n <= count_);
        T* d = dataPtr();
        std::memmove(d + i, d + i + n, sizeof(T) * static_cast<size_t>(count_ - i - n));
        count_ -= n;
        shrinkInlineIfSmall();
    }

    void resize(int n) {
        assert(n >= 0);
        if (n > capacity()) {
            setCapacity(n);
        }
        if (n > count_) {
            std::memset(static_cast<void*>(dataPtr() + count_), 0,
                        sizeof(T) * static_cast<size_t>(n - count_));
        }
        count_ = n;
        shrinkInlineIfSmall();
    }

    void clear() { resize(0); }

    int find(const T& value) const {
        for (int i = 0; i < count_; ++i) {
            if (dataPtr()[i] == value) {
                return i;
            }
        }
        return -1;
    }

    bool operator==(const SmallArray& other) const {
        return count_ == other.count_ && std::equal(begin(), end(), other.begin());
    }

private:
    void setCapacity(int capacity) {
        if (capacity <= N) {
            return;
        }
        T* buffer = static_cast<T*>(std::malloc(sizeof(T) * static_cast<size_t>(capacity)));
        if (!buffer) {
            throw std::bad_alloc();
        }
        std::memcpy(static_cast<void*>(buffer), dataPtr(), sizeof(T) * static_cast<size_t>(count_));
        freeHeap();
        heap_ = buffer;
        capacity_ = capacity;
    }

    void shrinkInlineIfSmall() {
        if (isInline() || count_ > N) {
            return;
        }
        T* heap = heap_;
        std::memcpy(static_cast<void*>(inline_), heap, sizeof(T) * static_cast<size_t>(count_));
        std::free(heap);
        capacity_ = N;
    }

    void freeHeap() {
        if (!isInline()) {
            std::free(heap_);
            capacity_ = N;
        }
    }

    void copyFrom(const SmallArray& other) {
        count_ = 0;
        capacity_ = N;
        setCapacity(other.count_);
        std::memcpy(static_cast<void*>(dataPtr()), other.dataPtr(),
                    sizeof(T) * static_cast<size_t>(other.count_));
        count_ = other.count_;
    }

    void moveFrom(SmallArray& other) {
        count_ = other.count_;
        capacity_ = other.capacity_;
        if (other.isInline()) {
            std::memcpy(static_cast<void*>(inline_), other.inline_, sizeof(T) * static_cast<size_t>(count_));
        } else {
            heap_ = other.heap_;
        }
        other.count_ = 0;
        other.capacity_ = N;
    }

    int count_ = 0;
    int capacity_ = N;  // N while inline; the heap buffer's size otherwise
    union {
        T inline_[N];
        T* heap_;
    };
};
