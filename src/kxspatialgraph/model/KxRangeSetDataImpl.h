#pragma once

class KxSpatialGraph;

// Tells the host's colormap ports the value range of one single-component
// attribute of a graph. The set index encodes the candidate list and the
// position in it: index % 4 == 0 picks among the vertex attributes, any other
// remainder among the edge attributes followed by the point attributes;
// index / 4 is the position. Only attributes with one component count.
class KxRangeSetDataImpl {
public:
    explicit KxRangeSetDataImpl(const KxSpatialGraph* graph) : graph_(graph) {}

    // min and max of the chosen attribute's values. False (min and max
    // untouched) for a negative index, a position past the candidates, an
    // attribute without values or one that is neither 32-bit int nor float.
    bool getRangeSet(float& min, float& max, int index) const;

private:
    const KxSpatialGraph* graph_;
};
