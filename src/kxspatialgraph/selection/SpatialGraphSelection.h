#pragma once

#include "korva/base/BitField.h"
#include "korva/base/DArray.h"
#include "korva/base/String.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"

class KxSpatialGraph;

// A subset of one graph's vertices, edges and edge points. A plain value: it
// refers to elements by index, is sized when it is made and is never updated
// by the graph; whoever edits a graph resizes or rebuilds the selections it
// keeps. Vertex and edge indices are not range-checked.
//
// Edge points are selected in two independent ways: an all-points bit per edge
// (every point of that edge) and a list of individual points in the order they
// were added. The list may hold duplicates and entries whose edge also has its
// all-points bit set.
class SpatialGraphSelection {
public:
    SpatialGraphSelection() = default;
    SpatialGraphSelection(int numVertices, int numEdges);
    // Sized to the graph's current vertex and edge counts, nothing selected.
    explicit SpatialGraphSelection(const KxSpatialGraph* graph);

    // Keeps the bits that stay in range; new bits are clear. The point list is kept.
    void resize(int numVertices, int numEdges);
    int getNumVertices() const { return vertices_.size(); }
    int getNumEdges() const { return edges_.size(); }
    bool isSameSize(const SpatialGraphSelection& other) const;
    // Deselects everything; the sizes stay.
    void clear();

    void selectVertex(int v) { vertices_.set(v); }
    void deselectVertex(int v) { vertices_.unset(v); }
    void toggleVertex(int v) { vertices_.set(v, !vertices_.test(v)); }
    bool isSelectedVertex(int v) const { return vertices_.test(v); }
    void selectEdge(int e) { edges_.set(e); }
    void deselectEdge(int e) { edges_.unset(e); }
    void toggleEdge(int e) { edges_.set(e, !edges_.test(e)); }
    bool isSelectedEdge(int e) const { return edges_.test(e); }

    void selectAllVertices() { vertices_.setAll(); }
    void selectAllEdges() { edges_.setAll(); }
    void selectAllVerticesAndEdges();
    void deselectAllVertices() { vertices_.unsetAll(); }
    void deselectAllEdges() { edges_.unsetAll(); }
    int getNumSelectedVertices() const { return vertices_.count(); }
    int getNumSelectedEdges() const { return edges_.count(); }
    // Index of the i-th selected vertex or edge (i from 0); -1 if fewer than i + 1 are selected.
    int getSelectedVertex(int i) const;
    int getSelectedEdge(int i) const;

    BitField getVertexSelection() const { return vertices_; }
    BitField getEdgeSelection() const { return edges_; }
    void setVertexSelection(const BitField& bits) { vertices_ = bits; }
    void setEdgeSelection(const BitField& bits) { edges_ = bits; }
    void copyVertexSelection(const SpatialGraphSelection& other) { vertices_ = other.vertices_; }
    void copyEdgeSelection(const SpatialGraphSelection& other) { edges_ = other.edges_; }
    // Whether every selected vertex (edge) here is selected in other too.
    bool isSubsetVertices(const SpatialGraphSelection& other) const;
    bool isSubsetEdges(const SpatialGraphSelection& other) const;

    // Appends p to the point list, also when it is already there.
    void selectPoint(const SpatialGraphPoint& p) { points_.append(p); }
    // Removes the first occurrence of p from the point list, or appends p if it
    // is not listed. The all-points bits are not consulted.
    void togglePoint(const SpatialGraphPoint& p);
    // True if p's edge has its all-points bit set or p is in the point list.
    bool isPointSelected(const SpatialGraphPoint& p) const;
    // Length of the point list; points selected through all-points bits are not counted.
    int getNumSelectedPoints() const { return points_.size(); }
    SpatialGraphPoint getSelectedPoint(int i) const { return points_[i]; }
    // Sizes the all-points bits to the edge count, then sets bit e.
    void selectAllPointsOnEdge(int e);
    bool allPointsOnEdgeSelected(int e) const;
    int getNumEdgesWithAllPointsSelected() const { return allPoints_.count(); }
    // Sets every all-points bit (sized to the edge count) and empties the point list.
    void selectAllPoints();
    // Shrinks the all-points bits to size 0 and empties the point list.
    void deselectAllPoints();
    // The all-points bits become a copy of other's edge bits.
    void selectAllPointsOnEdgesFromSelection(const SpatialGraphSelection& other) {
        allPoints_ = other.edges_;
    }
    void copyPointSelection(const SpatialGraphSelection& other);

    // Union of the three bit sets; other's point list is appended (duplicates kept).
    void addSelection(const SpatialGraphSelection& other);
    // Removes other's bits from the three bit sets and every list entry equal to
    // one of other's points. Points selected here through an all-points bit stay.
    void subtractSelection(const SpatialGraphSelection& other);
    // Intersection of the three bit sets; the point list keeps the entries that
    // are also in other's list.
    SpatialGraphSelection& operator&=(const SpatialGraphSelection& other);
    // Deliberate: intersects this selection in place, exactly like &=, and
    // returns it; it does not make a new selection.
    SpatialGraphSelection& operator&(const SpatialGraphSelection& other) { return *this &= other; }
    // Flips every vertex and edge bit and empties the point list; the
    // all-points bits are left as they are.
    void toggleAll();
    bool isEmpty() const;
    // Same sizes, equal bit sets, and point lists of equal length whose entries
    // all occur in other's list (order does not matter).
    bool operator==(const SpatialGraphSelection& other) const;
    bool operator!=(const SpatialGraphSelection& other) const { return !(*this == other); }

    // Writes the edge bits and the vertex bits as strings of the letters A..P
    // (zlib-compressed big-endian words, two letters per byte). Edge points are
    // not written.
    void serialize(String& edges, String& vertices) const;
    // Reads strings written by serialize into a selection that already has the
    // sizes they were written with; the strings carry no sizes. Both letter
    // cases are accepted. Deliberate: a string that does not decompress selects
    // every bit of its set, rather than nothing. When the edge bits are empty
    // nothing is read, not even the vertex string.
    void deserialize(const char* edges, const char* vertices);

private:
    BitField vertices_;
    BitField edges_;
    BitField allPoints_;
    DArray<SpatialGraphPoint> points_;
};
