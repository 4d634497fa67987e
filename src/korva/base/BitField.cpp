#include "korva/base/BitField.h"

#include <bitset>

void BitField::resize(int numBits) {
    assert(numBits >= 0);
    numBits_ = numBits;
    words_.resize((static_cast<size_t>(numBits) + 31) / 32, 0u);
    clearUnusedBits();
}

void BitField::clearUnusedBits() {
    int used = numBits_ & 31;
    if (used != 0 && !words_.empty()) {
        words_.back() &= (1u << used) - 1u;
    }
}

void BitField::setAll() {
    for (uint32_t& w : words_) {
        w = ~0u;
    }
    clearUnusedBits();
}

void BitField::unsetAll() {
    for (uint32_t& w : words_) {
        w = 0u;
    }
}

void BitField::toggleAll() {
    for (uint32_t& w : words_) {
        w = ~w;
    }
    clearUnusedBits();
}

int BitField::count() const {
    int n = 0;
    for (uint32_t w : words_) {
        n += static_cast<int>(std::bitset<32>(w).count());
    }
    return n;
}

bool BitField::isEmpty() const {
    for (uint32_t w : words_) {
        if (w) {
            return false;
        }
    }
    return true;
}

bool BitField::isSubsetOf(const BitField& other) const {
    assert(numBits_ == other.numBits_);
    for (size_t i = 0; i < words_.size(); ++i) {
        if (words_[i] & ~other.words_[i]) {
            return false;
        }
    }
    return true;
}

BitField& BitField::operator|=(const BitField& other) {
    assert(numBits_ == other.numBits_);
    for (size_t i = 0; i < words_.size(); ++i) {
        words_[i] |= other.words_[i];
    }
    return *this;
}

BitField& BitField::operator&=(const BitField& other) {
    assert(numBits_ == other.numBits_);
    for (size_t i = 0; i < words_.size(); ++i) {
        words_[i] &= other.words_[i];
    }
    return *this;
}

BitField& BitField::subtract(const BitField& other) {
    assert(numBits_ == other.numBits_);
    for (size_t i = 0; i < words_.size(); ++i) {
        words_[i] &= ~other.words_[i];
    }
    return *this;
}
