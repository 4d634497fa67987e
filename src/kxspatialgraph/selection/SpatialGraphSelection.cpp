#include "kxspatialgraph/selection/SpatialGraphSelection.h"

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <cstring>
#include <vector>

#include <zlib.h>

#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

// The three bit sets of two selections normally have equal sizes, but the
// all-points bits may have been shrunk to size 0 by deselectAllPoints. The
// set operations therefore work on the bits both sets have; a union grows
// this set to the larger size so that no bit of other is lost.
void unite(BitField& bits, const BitField& other) {
    if (bits.size() < other.size()) {
        bits.resize(other.size());
    }
    uint32_t* words = bits.getWords();
    const uint32_t* otherWords = other.getWords();
    for (int i = 0; i < other.getNumWords(); ++i) {
        words[i] |= otherWords[i];
    }
    bits.clearUnusedBits();
}

// Bits beyond other's size count as clear in other.
void intersect(BitField& bits, const BitField& other) {
    uint32_t* words = bits.getWords();
    const uint32_t* otherWords = other.getWords();
    for (int i = 0; i < bits.getNumWords(); ++i) {
        words[i] &= i < other.getNumWords() ? otherWords[i] : 0u;
    }
}

void subtract(BitField& bits, const BitField& other) {
    uint32_t* words = bits.getWords();
    const uint32_t* otherWords = other.getWords();
    int common = std::min(bits.getNumWords(), other.getNumWords());
    for (int i = 0; i < common; ++i) {
        words[i] &= ~otherWords[i];
    }
}

bool isSubset(const BitField& bits, const BitField& other) {
    const uint32_t* words = bits.getWords();
    const uint32_t* otherWords = other.getWords();
    for (int i = 0; i < bits.getNumWords(); ++i) {
        uint32_t allowed = i < other.getNumWords() ? otherWords[i] : 0u;
        if (words[i] & ~allowed) {
            return false;
        }
    }
    return true;
}

bool isSetSafe(const BitField& bits, int i) {
    return i >= 0 && i < bits.size() && bits.test(i);
}

// Index of the n-th set bit, counting whole words first.
int nthSetBit(const BitField& bits, int n) {
    if (n < 0) {
        return -1;
    }
    const uint32_t* words = bits.getWords();
    for (int w = 0; w < bits.getNumWords(); ++w) {
        int inWord = static_cast<int>(std::bitset<32>(words[w]).count());
        if (n >= inWord) {
            n -= inWord;
            continue;
        }
        for (int b = 0; b < 32; ++b) {
            if ((words[w] >> b) & 1u && n-- == 0) {
                return w * 32 + b;
            }
        }
    }
    return -1;
}

void removeAll(DArray<SpatialGraphPoint>& points, const SpatialGraphPoint& p) {
    std::vector<SpatialGraphPoint>& list = points.std();
    list.erase(std::remove(list.begin(), list.end(), p), list.end());
}

// The serialised form of a bit set: its words as big-endian bytes, compressed
// with zlib, each compressed byte written as two letters 'A' + nibble, high
// nibble first. Independent of the machine's byte order.
String encodeBits(const BitField& bits) {
    const int numWords = bits.getNumWords();
    const uint32_t* words = bits.getWords();
    std::vector<unsigned char> raw(static_cast<size_t>(numWords) * 4);
    for (int i = 0; i < numWords; ++i) {
        raw[4 * i] = static_cast<unsigned char>(words[i] >> 24);
        raw[4 * i + 1] = static_cast<unsigned char>(words[i] >> 16);
        raw[4 * i + 2] = static_cast<unsigned char>(words[i] >> 8);
        raw[4 * i + 3] = static_cast<unsigned char>(words[i]);
    }
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    std::vector<unsigned char> packed(packedSize);
    if (compress(packed.data(), &packedSize, raw.data(), static_cast<uLong>(raw.size())) != Z_OK) {
        packedSize = 0;  // cannot happen with a buffer of compressBound bytes
    }
    std::string text;
    text.reserve(2 * packedSize);
    for (uLongf i = 0; i < packedSize; ++i) {
        text += static_cast<char>('A' + (packed[i] >> 4));
        text += static_cast<char>('A' + (packed[i] & 15));
    }
    return String(text);
}

// Letters below 'a' count from 'A', all others from 'a', so both cases decode.
unsigned nibble(char c) {
    return static_cast<unsigned>(c < 'a' ? c - 'A' : c - 'a');
}

// Fills the bit set's words from a string made by encodeBits. Words the data
// does not reach are cleared. Any zlib error (damaged or foreign text, more
// data than the set holds) sets every bit instead.
void decodeBits(const char* text, BitField& bits) {
    const size_t numBytes = (text ? std::strlen(text) : 0) / 2;
    std::vector<unsigned char> packed(numBytes);
    for (size_t i = 0; i < numBytes; ++i) {
        packed[i] = static_cast<unsigned char>((nibble(text[2 * i]) << 4) | (nibble(text[2 * i + 1]) & 15));
    }
    const int numWords = bits.getNumWords();
    std::vector<unsigned char> raw(static_cast<size_t>(numWords) * 4, 0);
    uLongf rawSize = static_cast<uLongf>(raw.size());
    if (uncompress(raw.data(), &rawSize, packed.data(), static_cast<uLong>(numBytes)) != Z_OK) {
        bits.setAll();
        return;
    }
    uint32_t* words = bits.getWords();
    for (int i = 0; i < numWords; ++i) {
        words[i] = static_cast<uint32_t>(raw[4 * i]) << 24 | static_cast<uint32_t>(raw[4 * i + 1]) << 16 |
                   static_cast<uint32_t>(raw[4 * i + 2]) << 8 | raw[4 * i + 3];
    }
    bits.clearUnusedBits();
}

}  // namespace

SpatialGraphSelection::SpatialGraphSelection(int numVertices, int numEdges)
    : vertices_(numVertices), edges_(numEdges), allPoints_(numEdges) {}

SpatialGraphSelection::SpatialGraphSelection(const KxSpatialGraph* graph)
    : SpatialGraphSelection(graph->getNumVertices(), graph->getNumEdges()) {}

void SpatialGraphSelection::resize(int numVertices, int numEdges) {
    vertices_.resize(numVertices);
    edges_.resize(numEdges);
    allPoints_.resize(numEdges);
}

bool SpatialGraphSelection::isSameSize(const SpatialGraphSelection& other) const {
    return vertices_.size() == other.vertices_.size() && edges_.size() == other.edges_.size() &&
           allPoints_.size() == other.allPoints_.size();
}

void SpatialGraphSelection::clear() {
    vertices_.unsetAll();
    edges_.unsetAll();
    allPoints_.unsetAll();
    points_.clear();
}

void SpatialGraphSelection::selectAllVerticesAndEdges() {
    vertices_.setAll();
    edges_.setAll();
}

int SpatialGraphSelection::getSelectedVertex(int i) const {
    return nthSetBit(vertices_, i);
}

int SpatialGraphSelection::getSelectedEdge(int i) const {
    return nthSetBit(edges_, i);
}

bool SpatialGraphSelection::isSubsetVertices(const SpatialGraphSelection& other) const {
    return isSubset(vertices_, other.vertices_);
}

bool SpatialGraphSelection::isSubsetEdges(const SpatialGraphSelection& other) const {
    return isSubset(edges_, other.edges_);
}

void SpatialGraphSelection::togglePoint(const SpatialGraphPoint& p) {
    int i = points_.find(p);
    if (i >= 0) {
        points_.remove(i);
    } else {
        points_.append(p);
    }
}

bool SpatialGraphSelection::isPointSelected(const SpatialGraphPoint& p) const {
    return isSetSafe(allPoints_, p.edgeNum) || points_.find(p) >= 0;
}

void SpatialGraphSelection::selectAllPointsOnEdge(int e) {
    allPoints_.resize(edges_.size());
    allPoints_.set(e);
}

bool SpatialGraphSelection::allPointsOnEdgeSelected(int e) const {
    return isSetSafe(allPoints_, e);
}

void SpatialGraphSelection::selectAllPoints() {
    allPoints_.resize(edges_.size());
    allPoints_.setAll();
    points_.clear();
}

void SpatialGraphSelection::deselectAllPoints() {
    allPoints_.resize(0);
    points_.clear();
}

void SpatialGraphSelection::copyPointSelection(const SpatialGraphSelection& other) {
    allPoints_ = other.allPoints_;
    points_ = other.points_;
}

void SpatialGraphSelection::addSelection(const SpatialGraphSelection& other) {
    unite(vertices_, other.vertices_);
    unite(edges_, other.edges_);
    unite(allPoints_, other.allPoints_);
    points_.append(other.points_);
}

void SpatialGraphSelection::subtractSelection(const SpatialGraphSelection& other) {
    subtract(vertices_, other.vertices_);
    subtract(edges_, other.edges_);
    subtract(allPoints_, other.allPoints_);
    for (const SpatialGraphPoint& p : other.points_) {
        removeAll(points_, p);
    }
}

SpatialGraphSelection& SpatialGraphSelection::operator&=(const SpatialGraphSelection& other) {
    intersect(vertices_, other.vertices_);
    intersect(edges_, other.edges_);
    intersect(allPoints_, other.allPoints_);
    std::vector<SpatialGraphPoint>& list = points_.std();
    list.erase(std::remove_if(list.begin(), list.end(),
                              [&other](const SpatialGraphPoint& p) { return other.points_.find(p) < 0; }),
               list.end());
    return *this;
}

void SpatialGraphSelection::toggleAll() {
    vertices_.toggleAll();
    edges_.toggleAll();
    points_.clear();
}

bool SpatialGraphSelection::isEmpty() const {
    return vertices_.isEmpty() && edges_.isEmpty() && allPoints_.isEmpty() && points_.isEmpty();
}

bool SpatialGraphSelection::operator==(const SpatialGraphSelection& other) const {
    if (!isSameSize(other) || vertices_ != other.vertices_ || edges_ != other.edges_ ||
        allPoints_ != other.allPoints_ || points_.size() != other.points_.size()) {
        return false;
    }
    for (const SpatialGraphPoint& p : points_) {
        if (other.points_.find(p) < 0) {
            return false;
        }
    }
    return true;
}

void SpatialGraphSelection::serialize(String& edges, String& vertices) const {
    edges = encodeBits(edges_);
    vertices = encodeBits(vertices_);
}

void SpatialGraphSelection::deserialize(const char* edges, const char* vertices) {
    // Deliberate: a selection of a graph without edges keeps its vertex bits.
    if (edges_.getNumWords() == 0) {
        return;
    }
    decodeBits(edges, edges_);
    if (vertices_.getNumWords() > 0) {
        decodeBits(vertices, vertices_);
    }
}
