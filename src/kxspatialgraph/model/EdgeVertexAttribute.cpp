#include "kxspatialgraph/model/EdgeVertexAttribute.h"

#include <algorithm>
#include <cstring>

#include "korva/base/HugePages.h"
#include "kxspatialgraph/model/EdgeBlockLayout.h"

EdgeVertexAttribute::EdgeVertexAttribute(KxSpatialGraph* graph, const char* name, PrimType type, int nDataVar)
    : GraphAttribute(graph, name, type, nDataVar) {}

int EdgeVertexAttribute::capacity() const {
    size_t es = getElementSize();
    return es == 0 ? count_ : static_cast<int>(bytes_.size() / es);
}

void EdgeVertexAttribute::reserveValues(int n) {
    if (n <= capacity()) {
        return;
    }
    size_t grown = std::max(static_cast<size_t>(capacity()) * 3 / 2, static_cast<size_t>(n));
    HugePages::reserve(bytes_, grown * getElementSize());
    bytes_.resize(grown * getElementSize(), 0);
}

void EdgeVertexAttribute::init(int n, const void* values) {
    if (n <= 0) {
        return;
    }
    HugePages::reserve(bytes_, offset(n));
    if (values) {
        const auto* first = static_cast<const unsigned char*>(values);
        bytes_.assign(first, first + offset(n));
    } else {
        bytes_.assign(offset(n), 0);
    }
    count_ = n;
}

void EdgeVertexAttribute::remax(int n) {
    if (n == -1 || n <= count_) {
        return;
    }
    std::vector<unsigned char> exact(offset(n), 0);
    if (count_ > 0) {  // an attribute without values may have no buffer yet
        std::memcpy(exact.data(), bytes_.data(), offset(count_));
    }
    bytes_.swap(exact);
}

void EdgeVertexAttribute::append(int n) {
    if (n <= 0) {
        return;
    }
    reserveValues(count_ + n);
    std::memset(genericDataAtIdx(count_), 0, offset(n));
    count_ += n;
}

void EdgeVertexAttribute::insertBefore(int i, int n) {
    if (n <= 0 || count_ == 0 || i < 0 || i >= count_) {
        return;
    }
    reserveValues(count_ + n);
    size_t es = getElementSize();
    EdgeBlockLayout::openGap(bytes_.data(), es, count_, i, n);
    std::memset(genericDataAtIdx(i), 0, offset(n));
    count_ += n;
}

void EdgeVertexAttribute::remove(int i, int n) {
    if (count_ < 1 || n < 1 || i < 0 || i + n > count_) {
        return;
    }
    size_t es = getElementSize();
    EdgeBlockLayout::closeGap(bytes_.data(), es, count_, i, n);
    count_ -= n;
    std::memset(genericDataAtIdx(count_), 0, offset(n));
}

void EdgeVertexAttribute::removeLast(int n) {
    if (count_ - n >= 0 && n >= 1) {
        remove(count_ - n, n);
    }
}

void EdgeVertexAttribute::copy(int dst, int src) {
    if (dst != src) {
        std::memcpy(genericDataAtIdx(dst), genericDataAtIdx(src), offset(1));
    }
}

void EdgeVertexAttribute::clearMemory(int i, int n) {
    int end = n == -1 ? capacity() : std::min(i + n, capacity());
    if (i >= 0 && end > i) {
        std::memset(genericDataAtIdx(i), 0, offset(end - i));
    }
}

TypedElement EdgeVertexAttribute::getValue(int i) const {
    TypedElement v(getPrimType(), getNumDataVar());
    std::memcpy(v.getData(), genericDataAtIdx(i), offset(1));
    return v;
}

void EdgeVertexAttribute::setValue(int i, const TypedElement& v) {
    size_t n = std::min(v.getNumBytes(), offset(1));
    std::memcpy(genericDataAtIdx(i), v.getData(), n);
}

TypedData2D EdgeVertexAttribute::getValues(const DArray<int>& idx) const {
    TypedData2D rows(getPrimType(), idx.size(), getNumDataVar());
    for (int k = 0; k < idx.size(); ++k) {
        std::memcpy(rows.getRow(k), genericDataAtIdx(idx[k]), offset(1));
    }
    return rows;
}

void EdgeVertexAttribute::setMultipleValues(const DArray<int>& idx, const TypedData2D& v) {
    size_t n = std::min(v.getRowBytes(), offset(1));
    int rows = std::min(idx.size(), v.getNumRows());
    for (int k = 0; k < rows; ++k) {
        std::memcpy(genericDataAtIdx(idx[k]), v.getRow(k), n);
    }
}

void EdgeVertexAttribute::setMultipleValues(const DArray<int>& idx, const DArray<TypedElement>& v) {
    int n = std::min(idx.size(), v.size());
    for (int k = 0; k < n; ++k) {
        setValue(idx[k], v[k]);
    }
}

void EdgeVertexAttribute::insertMultipleValues(const DArray<int>& idx, const TypedData2D& v) {
    int m = idx.size();
    if (m == 0) {
        return;
    }
    int oldCount = count_;
    reserveValues(count_ + m);
    count_ += m;
    // Back to front: each old value moves up by the number of new values below it.
    size_t es = offset(1);
    size_t rowBytes = std::min(v.getRowBytes(), es);
    int old = oldCount - 1;
    int k = m - 1;
    for (int p = count_ - 1; p >= 0 && k >= 0; --p) {
        if (idx[k] == p) {
            std::memset(genericDataAtIdx(p), 0, es);
            if (k < v.getNumRows()) {
                std::memcpy(genericDataAtIdx(p), v.getRow(k), rowBytes);
            }
            --k;
        } else {
            std::memcpy(genericDataAtIdx(p), genericDataAtIdx(old), es);
            --old;
        }
    }
}

void EdgeVertexAttribute::removeMultipleValues(const DArray<int>& idx) {
    int m = idx.size();
    if (m == 0) {
        return;
    }
    size_t es = offset(1);
    int write = idx[0];
    int next = 0;
    for (int i = idx[0]; i < count_; ++i) {
        if (next < m && idx[next] == i) {
            ++next;
            continue;
        }
        std::memcpy(genericDataAtIdx(write), genericDataAtIdx(i), es);
        ++write;
    }
    std::memset(genericDataAtIdx(write), 0, offset(count_ - write));
    count_ = write;
}
