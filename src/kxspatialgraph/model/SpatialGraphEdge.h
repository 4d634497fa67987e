#pragma once

// One edge of a spatial graph: its source and target vertex indices.
class SpatialGraphEdge {
public:
    SpatialGraphEdge() = default;
    SpatialGraphEdge(int source, int target) : source_(source), target_(target) {}
    virtual ~SpatialGraphEdge() = default;
    SpatialGraphEdge(const SpatialGraphEdge&) = default;
    SpatialGraphEdge& operator=(const SpatialGraphEdge&) = default;

    int getSource() const { return source_; }
    void setSource(int source) { source_ = source; }
    int getTarget() const { return target_; }
    void setTarget(int target) { target_ = target; }

    bool operator==(const SpatialGraphEdge& o) const { return source_ == o.source_ && target_ == o.target_; }
    bool operator!=(const SpatialGraphEdge& o) const { return !(*this == o); }

private:
    int source_ = -1;
    int target_ = -1;
};
