#pragma once

#include <algorithm>
#include <cassert>
#include <vector>

// Growable array with 32-bit signed indices. Wraps std::vector but controls the
// growth itself: an append to a full array of n elements grows the capacity to
// max(floor(n * 1.5), n + 1), so large arrays waste at most half their size.
// Indices are not checked beyond an assert.
template <class T>
class DArray {
public:
    DArray() = default;
    explicit DArray(int n) : data_(static_cast<size_t>(n)) {}
    DArray(int n, const T& value) : data_(static_cast<size_t>(n), value) {}
    DArray(std::initializer_list<T> values) : data_(values) {}

    int size() const { return static_cast<int>(data_.size()); }
    bool isEmpty() const { return data_.empty(); }
    int capacity() const { return static_cast<int>(data_.capacity()); }

    T& operator[](int i) {
        assert(i >= 0 && i < size());
        return data_[static_cast<size_t>(i)];
    }
    const T& operator[](int i) const {
        assert(i >= 0 && i < size());
        return data_[static_cast<size_t>(i)];
    }
    T& last() { return data_.back(); }
    const T& last() const { return data_.back(); }

    T* dataPtr() { return data_.data(); }
    const T* dataPtr() const { return data_.data(); }

    // value may be an element of this array: it is copied before the buffer can move.
    void append(const T& value) {
        if (needsGrowth(1)) {
            T copy = value;
            growForAppend(1);
            data_.push_back(std::move(copy));
            return;
        }
        data_.push_back(value);
    }
    void append(T&& value) {
        growForAppend(1);
        data_.push_back(std::move(value));
    }
    void append(int n, const T* values) { insert(size(), n, values); }
    void append(const DArray& other) { append(other.size(), other.dataPtr()); }

    // Inserts before index i (i == size() appends).
    void insert(int i, const T& value) {
        assert(i >= 0 && i <= size());
        T copy = value;
        growForAppend(1);
        data_.insert(data_.begin() + i, std::move(copy));
    }
    // values may point into this array.
    void insert(int i, int n, const T* values) {
        assert(i >= 0 && i <= size() && n >= 0);
        if (needsGrowth(n) || (values >= dataPtr() && values < dataPtr() + size())) {
            std::vector<T> copy(values, values + n);
            growForAppend(n);
            data_.insert(data_.begin() + i, copy.begin(), copy.end());
            return;
        }
        data_.insert(data_.begin() + i, values, values + n);
    }

    // Removes n elements starting at index i; later elements move down.
    void remove(int i, int n = 1) {
        assert(i >= 0 && n >= 0 && i + n <= size());
        data_.erase(data_.begin() + i, data_.begin() + i + n);
    }

    void resize(int n) { data_.resize(static_cast<size_t>(n)); }
    void resize(int n, const T& value) { data_.resize(static_cast<size_t>(n), value); }
    void reserve(int n) { data_.reserve(static_cast<size_t>(n)); }
    void clear() { data_.clear(); }
    // Releases the buffer as well as the elements.
    void clearAndFree() { std::vector<T>().swap(data_); }
    void fill(const T& value) { std::fill(data_.begin(), data_.end(), value); }

    void sort() { std::sort(data_.begin(), data_.end()); }
    template <class Less>
    void sort(Less less) {
        std::sort(data_.begin(), data_.end(), less);
    }

    // Index of the first element equal to value, -1 if there is none.
    int find(const T& value) const {
        auto it = std::find(data_.begin(), data_.end(), value);
        return it == data_.end() ? -1 : static_cast<int>(it - data_.begin());
    }

    bool operator==(const DArray& other) const { return data_ == other.data_; }
    bool operator!=(const DArray& other) const { return data_ != other.data_; }

    typename std::vector<T>::iterator begin() { return data_.begin(); }
    typename std::vector<T>::iterator end() { return data_.end(); }
    typename std::vector<T>::const_iterator begin() const { return data_.begin(); }
    typename std::vector<T>::const_iterator end() const { return data_.end(); }

    std::vector<T>& std() { return data_; }
    const std::vector<T>& std() const { return data_; }

private:
    bool needsGrowth(int extra) const { return data_.size() + static_cast<size_t>(extra) > data_.capacity(); }

    void growForAppend(int extra) {
        size_t needed = data_.size() + static_cast<size_t>(extra);
        if (needed <= data_.capacity()) {
            return;
        }
        size_t n = data_.size();
        size_t grown = std::max(n * 3 / 2, n + 1);
        data_.reserve(std::max(grown, needed));
    }

    std::vector<T> data_;
};
