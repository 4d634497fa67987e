#pragma once

#include <iosfwd>

class KxSpatialGraphInterface;
class MorphologyTextWriter;
class SpatialGraphSelection;

// One piece of a Neurolucida V3 ASCII file, written when streamed: a tree
// (kind 1) from an end vertex, a branch inside a split (kind 3), or a closed
// contour (kind 11) along a vertex's loop edge. Trees and branches select
// every vertex and edge they write in visited, so nothing is written twice.
// Deliberate: points are written with y and z negated, and with diameter 1.
class NeurolucidaStreamer {
public:
    enum Kind { TREE = 1, BRANCH = 3, CONTOUR = 11 };

    // Inner points of an edge are thinned: one is written after more than
    // granularity were left out.
    static int granularity;

    NeurolucidaStreamer(const KxSpatialGraphInterface* graph, int vertex, SpatialGraphSelection* visited,
                        int kind)
        : graph_(graph), vertex_(vertex), visited_(visited), kind_(kind) {}

    // Writes the piece to file; branches nested to any depth are walked with
    // an explicit stack.
    void write(MorphologyTextWriter& file) const;

private:
    struct Split;
    void writeContour(MorphologyTextWriter& file) const;
    // Writes the piece that starts at vertex; answers the split at its far
    // vertex, if one follows.
    bool writeBranch(MorphologyTextWriter& file, int vertex, int kind, Split& split) const;

    const KxSpatialGraphInterface* graph_;
    int vertex_;
    SpatialGraphSelection* visited_;
    int kind_;
};

std::ostream& operator<<(std::ostream& out, const NeurolucidaStreamer& piece);
