#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

// Growable bit set kept in 32-bit words: bit i lies in word i / 32 at bit
// position i % 32. Serialised selections depend on this layout. Bits past the
// size in the last word are always clear, so counts and comparisons can work
// word by word.
class BitField {
public:
    BitField() = default;
    explicit BitField(int numBits) { resize(numBits); }

    int size() const { return numBits_; }
    // Keeps the bits below the new size; bits added are clear.
    void resize(int numBits);

    void set(int i) {
        assert(i >= 0 && i < numBits_);
        words_[static_cast<size_t>(i) >> 5] |= 1u << (i & 31);
    }
    void unset(int i) {
        assert(i >= 0 && i < numBits_);
        words_[static_cast<size_t>(i) >> 5] &= ~(1u << (i & 31));
    }
    void set(int i, bool value) { value ? set(i) : unset(i); }
    bool test(int i) const {
        assert(i >= 0 && i < numBits_);
        return (words_[static_cast<size_t>(i) >> 5] >> (i & 31)) & 1u;
    }
    bool operator[](int i) const { return test(i); }

    void setAll();
    void unsetAll();
    void toggleAll();
    int count() const;
    bool isEmpty() const;
    // True when every bit set here is also set in other (sizes must match).
    bool isSubsetOf(const BitField& other) const;

    BitField& operator|=(const BitField& other);
    BitField& operator&=(const BitField& other);
    // Clears the bits that are set in other.
    BitField& subtract(const BitField& other);
    bool operator==(const BitField& other) const {
        return numBits_ == other.numBits_ && words_ == other.words_;
    }
    bool operator!=(const BitField& other) const { return !(*this == other); }

    int getNumWords() const { return static_cast<int>(words_.size()); }
    uint32_t* getWords() { return words_.data(); }
    const uint32_t* getWords() const { return words_.data(); }
    // Call after writing words directly: clears the bits past the size.
    void clearUnusedBits();

private:
    std::vector<uint32_t> words_;
    int numBits_ = 0;
};
