#pragma once

#include "korva/base/DArray.h"

class KxSpatialGraph;

// The end positions of a graph's lines (edges) as small integers, so that
// "these two line ends lie at the same place" is one int comparison. Two ends
// share an id exactly when their vertices' coordinates compare equal as
// floats: -0 equals 0, and an end at a NaN coordinate or at a vertex index
// outside the graph equals nothing, not even another end at the same vertex.
class LineEnds {
public:
    explicit LineEnds(const KxSpatialGraph* graph);

    int numLines() const { return source_.size(); }
    int numPositions() const { return numPositions_; }
    int source(int line) const { return source_[line]; }
    int target(int line) const { return target_[line]; }
    // Starts and ends at the same vertex index (not merely the same position).
    bool isSelfLoop(int line) const { return selfLoop_[line] != 0; }
    // Whether an end of the line lies at the position. An end at no place
    // (NaN coordinates, or a vertex outside the graph) touches nothing, not
    // even its own line, as a NaN coordinate equals nothing.
    bool touches(int line, int position) const {
        return position < numPlaces_ && (source_[line] == position || target_[line] == position);
    }
    // The same two end positions, in either order.
    bool sameEnds(int a, int b) const {
        return (source_[a] == source_[b] && target_[a] == target_[b]) ||
               (source_[a] == target_[b] && target_[a] == source_[b]);
    }

private:
    DArray<int> source_;
    DArray<int> target_;
    DArray<char> selfLoop_;
    int numPositions_ = 0;
    int numPlaces_ = 0;  // positions below this are places shared by vertices
};
