#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// How a key is hashed, compared and stored. Hashes are computed here rather
// than by std::hash so that they are the same on every platform. C-string keys
// are stored as copies, so callers may pass temporary strings.
template <class K, class Enable = void>
struct HashKeyTraits;

template <class K>
struct HashKeyTraits<K, typename std::enable_if<std::is_integral<K>::value || std::is_enum<K>::value>::type> {
    using Stored = K;
    static uint64_t hash(K key) {
        uint64_t x = static_cast<uint64_t>(key);  // splitmix64 finaliser
        x ^= x >> 30;
        x *= 0xbf58476d1ce4e5b9ull;
        x ^= x >> 27;
        x *= 0x94d049bb133111ebull;
        return x ^ (x >> 31);
    }
    static bool equal(const Stored& a, K b) { return a == b; }
    static K view(const Stored& s) { return s; }
};

inline uint64_t hashBytes(const char* bytes, size_t n) {
    uint64_t h = 0xcbf29ce484222325ull;  // FNV-1a
    for (size_t i = 0; i < n; ++i) {
        h ^= static_cast<unsigned char>(bytes[i]);
        h *= 0x100000001b3ull;
    }
    return h;
}

template <>
struct HashKeyTraits<const char*> {
    using Stored = std::string;
    static uint64_t hash(const char* key) { return hashBytes(key, std::strlen(key)); }
    static bool equal(const Stored& a, const char* b) { return a == b; }
    static const char* view(const Stored& s) { return s.c_str(); }
};

template <>
struct HashKeyTraits<std::string> {
    using Stored = std::string;
    static uint64_t hash(const std::string& key) { return hashBytes(key.data(), key.size()); }
    static bool equal(const Stored& a, const std::string& b) { return a == b; }
    static const std::string& view(const Stored& s) { return s; }
};

// Open hash table (linear probing over slots that index an entry array).
// Iteration visits the entries in insertion order, so it is the same on every
// platform and every run: file readers number elements in this order.
// Removing an entry keeps the order of the others. Traits may replace the
// key's hash where the keys have a known shape.
template <class K, class V, class Traits = HashKeyTraits<K>>
class HashTable {
    using Stored = typename Traits::Stored;

    struct Entry {
        Stored key;
        V value;
        bool alive;
    };

public:
    // Inserts key with value; answers false and changes nothing if key is present.
    bool insert(const K& key, const V& value);
    // Inserts or replaces.
    void set(const K& key, const V& value);
    // The value of key; if key is absent it is inserted with value first and
    // inserted is set. The reference is valid until the next insertion.
    V& findOrInsert(const K& key, const V& value, bool& inserted);
    // Room for n entries, so that inserting up to n keys rebuilds nothing.
    void reserve(int n);
    V* lookup(const K& key);
    const V* lookup(const K& key) const;
    bool lookup(const K& key, V& value) const;
    bool contains(const K& key) const { return findEntry(key) >= 0; }
    bool remove(const K& key);
    void clear();
    int size() const { return numAlive_; }
    bool isEmpty() const { return numAlive_ == 0; }

    // Calls f(key, value) for every entry in insertion order.
    template <class F>
    void forEach(F f) const {
        for (const Entry& e : entries_) {
            if (e.alive) {
                f(Traits::view(e.key), e.value);
            }
        }
    }
    template <class F>
    void forEach(F f) {
        for (Entry& e : entries_) {
            if (e.alive) {
                f(Traits::view(e.key), e.value);
            }
        }
    }

    // Keys and values in insertion order.
    std::vector<K> keys() const;
    std::vector<V> values() const;

private:
    static constexpr int32_t kEmpty = -1;
    static constexpr int32_t kRemoved = -2;

    int findEntry(const K& key) const;
    // Appends key, which must be absent, and answers its entry index.
    int insertNew(const K& key, const V& value);
    void rebuild(size_t slotCount);
    size_t slotMask() const { return slots_.size() - 1; }

    std::vector<Entry> entries_;
    std::vector<int32_t> slots_;  // entry index, kEmpty or kRemoved; size is a power of two
    int numAlive_ = 0;
    size_t numUsedSlots_ = 0;  // alive + removed markers
};

template <class K, class V, class Traits>
int HashTable<K, V, Traits>::findEntry(const K& key) const {
    if (slots_.empty()) {
        return -1;
    }
    size_t i = Traits::hash(key) & slotMask();
    while (true) {
        int32_t s = slots_[i];
        if (s == kEmpty) {
            return -1;
        }
        if (s >= 0 && Traits::equal(entries_[static_cast<size_t>(s)].key, key)) {
            return s;
        }
        i = (i + 1) & slotMask();
    }
}

template <class K, class V, class Traits>
void HashTable<K, V, Traits>::rebuild(size_t slotCount) {
    std::vector<Entry> alive;
    alive.reserve(static_cast<size_t>(numAlive_));
    for (Entry& e : entries_) {
        if (e.alive) {
            alive.push_back(std::move(e));
        }
    }
    entries_ = std::move(alive);
    slots_.assign(slotCount, kEmpty);
    for (size_t n = 0; n < entries_.size(); ++n) {
        size_t i = Traits::hash(Traits::view(entries_[n].key)) & slotMask();
        while (slots_[i] != kEmpty) {
            i = (i + 1) & slotMask();
        }
        slots_[i] = static_cast<int32_t>(n);
    }
    numUsedSlots_ = entries_.size();
}

template <class K, class V, class Traits>
bool HashTable<K, V, Traits>::insert(const K& key, const V& value) {
    if (findEntry(key) >= 0) {
        return false;
    }
    insertNew(key, value);
    return true;
}

template <class K, class V, class Traits>
int HashTable<K, V, Traits>::insertNew(const K& key, const V& value) {
    // Keep the load (alive entries and removal markers) under one half. Dead
    // entries count too: inserting and removing one key again and again reuses
    // its slot but appends a new entry each time, and the rebuild drops them.
    if ((std::max(numUsedSlots_, entries_.size()) + 1) * 2 > slots_.size()) {
        size_t slotCount = 16;
        while (slotCount < static_cast<size_t>(numAlive_ + 1) * 4) {
            slotCount *= 2;
        }
        rebuild(slotCount);
    }
    size_t i = Traits::hash(key) & slotMask();
    while (slots_[i] >= 0) {
        i = (i + 1) & slotMask();
    }
    if (slots_[i] == kEmpty) {
        ++numUsedSlots_;
    }
    slots_[i] = static_cast<int32_t>(entries_.size());
    entries_.push_back(Entry{Stored(key), value, true});
    ++numAlive_;
    return static_cast<int>(entries_.size()) - 1;
}

template <class K, class V, class Traits>
V& HashTable<K, V, Traits>::findOrInsert(const K& key, const V& value, bool& inserted) {
    int e = findEntry(key);
    inserted = e < 0;
    if (inserted) {
        e = insertNew(key, value);
    }
    return entries_[static_cast<size_t>(e)].value;
}

template <class K, class V, class Traits>
void HashTable<K, V, Traits>::reserve(int n) {
    // The load stays under one half up to n entries.
    size_t slotCount = std::max<size_t>(slots_.size(), 16);
    while (slotCount < static_cast<size_t>(std::max(n, numAlive_) + 1) * 2) {
        slotCount *= 2;
    }
    if (slotCount > slots_.size()) {
        rebuild(slotCount);
    }
    entries_.reserve(static_cast<size_t>(std::max(n, 0)));
}

template <class K, class V, class Traits>
void HashTable<K, V, Traits>::set(const K& key, const V& value) {
    int e = findEntry(key);
    if (e >= 0) {
        entries_[static_cast<size_t>(e)].value = value;
    } else {
        insert(key, value);
    }
}

template <class K, class V, class Traits>
V* HashTable<K, V, Traits>::lookup(const K& key) {
    int e = findEntry(key);
    return e < 0 ? nullptr : &entries_[static_cast<size_t>(e)].value;
}

template <class K, class V, class Traits>
const V* HashTable<K, V, Traits>::lookup(const K& key) const {
    int e = findEntry(key);
    return e < 0 ? nullptr : &entries_[static_cast<size_t>(e)].value;
}

template <class K, class V, class Traits>
bool HashTable<K, V, Traits>::lookup(const K& key, V& value) const {
    const V* v = lookup(key);
    if (v) {
        value = *v;
    }
    return v != nullptr;
}

template <class K, class V, class Traits>
bool HashTable<K, V, Traits>::remove(const K& key) {
    if (slots_.empty()) {
        return false;
    }
    size_t i = Traits::hash(key) & slotMask();
    while (slots_[i] != kEmpty) {
        int32_t s = slots_[i];
        if (s >= 0 && Traits::equal(entries_[static_cast<size_t>(s)].key, key)) {
            entries_[static_cast<size_t>(s)].alive = false;
            entries_[static_cast<size_t>(s)].value = V();
            slots_[i] = kRemoved;
            --numAlive_;
            if (numAlive_ == 0) {
                clear();
            }
            return true;
        }
        i = (i + 1) & slotMask();
    }
    return false;
}

template <class K, class V, class Traits>
void HashTable<K, V, Traits>::clear() {
    entries_.clear();
    slots_.clear();
    numAlive_ = 0;
    numUsedSlots_ = 0;
}

template <class K, class V, class Traits>
std::vector<K> HashTable<K, V, Traits>::keys() const {
    std::vector<K> result;
    forEach([&](const K& k, const V&) { result.push_back(k); });
    return result;
}

template <class K, class V, class Traits>
std::vector<V> HashTable<K, V, Traits>::values() const {
    std::vector<V> result;
    forEach([&](const K&, const V& v) { result.push_back(v); });
    return result;
}
