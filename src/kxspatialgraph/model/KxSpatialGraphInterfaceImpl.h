#pragma once

#include "kxspatialgraph/model/KxSpatialGraphInterface.h"

class KxSpatialGraph;

// The read-only interface over one graph; created by the graph itself.
class KxSpatialGraphInterfaceImpl : public KxSpatialGraphInterface {
public:
    explicit KxSpatialGraphInterfaceImpl(const KxSpatialGraph* graph) : graph_(graph) {}

    const char* getTypeName() const override { return "KxSpatialGraphInterfaceImpl"; }
    const KxSpatialGraph* getGraph() const { return graph_; }

    int doGetNumVertices() const override;
    Vec3f doGetVertexCoords(int v) const override;
    int doGetNumVertexAttributes() const override;
    EdgeVertexAttribute* doGetVertexAttribute(int i) const override;
    EdgeVertexAttribute* doFindVertexAttribute(const char* name) const override;
    int doGetNumEdges() const override;
    int doGetNumEdgePoints(int e) const override;
    int doGetEdgeSource(int e) const override;
    int doGetEdgeTarget(int e) const override;
    int doGetNumEdgeAttributes() const override;
    EdgeVertexAttribute* doGetEdgeAttribute(int i) const override;
    EdgeVertexAttribute* doFindEdgeAttribute(const char* name) const override;
    const Vec3f* doGetEdgePoints(int e, int& n) const override;
    DArray<Vec3f> doGetEdgePoints(int e) const override;
    Vec3f doGetEdgePoint(int e, int i) const override;
    int doGetNumEdgePointAttributes() const override;
    PointAttribute* doGetEdgePointAttribute(int i) const override;
    PointAttribute* doFindEdgePointAttribute(const char* name) const override;
    bool doHasLabel(const GraphAttribute* a) const override;
    int doGetNumLabels(const GraphAttribute* a) const override;
    bool doGetLabelName(const GraphAttribute* a, int id, String& name) const override;
    bool doGetLabelColor(const GraphAttribute* a, int id, SbColor& color) const override;
    int doGetMaxLabelId(const GraphAttribute* a) const override;
    int doGetLabelId(const GraphAttribute* a, const String& name) const override;
    const SmallArray<int, 2>& doGetIncidentEdges(int v) const override;
    bool doIsConsistent() const override;
    SbMatrix doGetTransform() const override;
    void doGetTransform(SbMatrix& matrix) const override;
    SpatialGraphSelection doGetConnectedComponent(int vertex) const override;
    void doGetBoundingBox(float* box) const override;

private:
    const KxSpatialGraph* graph_;
};
