#pragma once

// One edge point of a spatial graph: the edge's index and the point's index
// along that edge (0 at the source vertex). Compared member by member.
class SpatialGraphPoint {
public:
    SpatialGraphPoint() = default;
    SpatialGraphPoint(int edge, int point) : edgeNum(edge), pointNum(point) {}

    bool operator==(const SpatialGraphPoint& other) const {
        return edgeNum == other.edgeNum && pointNum == other.pointNum;
    }
    bool operator!=(const SpatialGraphPoint& other) const { return !(*this == other); }

    int edgeNum = -1;
    int pointNum = -1;
};
