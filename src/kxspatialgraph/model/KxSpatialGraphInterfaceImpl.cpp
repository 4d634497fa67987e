#include "kxspatialgraph/model/KxSpatialGraphInterfaceImpl.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

int KxSpatialGraphInterfaceImpl::doGetNumVertices() const {
    return graph_->getNumVertices();
}
Vec3f KxSpatialGraphInterfaceImpl::doGetVertexCoords(int v) const {
    return graph_->getVertexCoords(v);
}
int KxSpatialGraphInterfaceImpl::doGetNumVertexAttributes() const {
    return graph_->getNumVertexAttributes();
}
EdgeVertexAttribute* KxSpatialGraphInterfaceImpl::doGetVertexAttribute(int i) const {
    return graph_->getVertexAttribute(i);
}
EdgeVertexAttribute* KxSpatialGraphInterfaceImpl::doFindVertexAttribute(const char* name) const {
    return graph_->findVertexAttribute(name);
}
int KxSpatialGraphInterfaceImpl::doGetNumEdges() const {
    return graph_->getNumEdges();
}
int KxSpatialGraphInterfaceImpl::doGetNumEdgePoints(int e) const {
    return graph_->getNumEdgePoints(e);
}
int KxSpatialGraphInterfaceImpl::doGetEdgeSource(int e) const {
    return graph_->getEdgeSource(e);
}
int KxSpatialGraphInterfaceImpl::doGetEdgeTarget(int e) const {
    return graph_->getEdgeTarget(e);
}
int KxSpatialGraphInterfaceImpl::doGetNumEdgeAttributes() const {
    return graph_->getNumEdgeAttributes();
}
EdgeVertexAttribute* KxSpatialGraphInterfaceImpl::doGetEdgeAttribute(int i) const {
    return graph_->getEdgeAttribute(i);
}
EdgeVertexAttribute* KxSpatialGraphInterfaceImpl::doFindEdgeAttribute(const char* name) const {
    return graph_->findEdgeAttribute(name);
}
const Vec3f* KxSpatialGraphInterfaceImpl::doGetEdgePoints(int e, int& n) const {
    return graph_->getEdgePoints(e, n);
}
DArray<Vec3f> KxSpatialGraphInterfaceImpl::doGetEdgePoints(int e) const {
    return graph_->getEdgePoints(e);
}
Vec3f KxSpatialGraphInterfaceImpl::doGetEdgePoint(int e, int i) const {
    return graph_->getEdgePoint(e, i);
}
int KxSpatialGraphInterfaceImpl::doGetNumEdgePointAttributes() const {
    return graph_->getNumEdgePointAttributes();
}
PointAttribute* KxSpatialGraphInterfaceImpl::doGetEdgePointAttribute(int i) const {
    return graph_->getEdgePointAttribute(i);
}
PointAttribute* KxSpatialGraphInterfaceImpl::doFindEdgePointAttribute(const char* name) const {
    return graph_->findEdgePointAttribute(name);
}
bool KxSpatialGraphInterfaceImpl::doHasLabel(const GraphAttribute* a) const {
    return graph_->hasLabel(a);
}
int KxSpatialGraphInterfaceImpl::doGetNumLabels(const GraphAttribute* a) const {
    return graph_->getNumLabels(a);
}
bool KxSpatialGraphInterfaceImpl::doGetLabelName(const GraphAttribute* a, int id, String& name) const {
    return graph_->getLabelName(a, id, name);
}
bool KxSpatialGraphInterfaceImpl::doGetLabelColor(const GraphAttribute* a, int id, SbColor& color) const {
    return graph_->getLabelColor(a, id, color);
}
int KxSpatialGraphInterfaceImpl::doGetMaxLabelId(const GraphAttribute* a) const {
    return graph_->getMaxLabelId(a);
}
int KxSpatialGraphInterfaceImpl::doGetLabelId(const GraphAttribute* a, const String& name) const {
    return graph_->getLabelId(a, name);
}
const SmallArray<int, 2>& KxSpatialGraphInterfaceImpl::doGetIncidentEdges(int v) const {
    return graph_->getIncidentEdges(v);
}
bool KxSpatialGraphInterfaceImpl::doIsConsistent() const {
    return graph_->isConsistent();
}
SbMatrix KxSpatialGraphInterfaceImpl::doGetTransform() const {
    return graph_->getTransform();
}
void KxSpatialGraphInterfaceImpl::doGetTransform(SbMatrix& matrix) const {
    graph_->getTransform(matrix);
}
SpatialGraphSelection KxSpatialGraphInterfaceImpl::doGetConnectedComponent(int vertex) const {
    return graph_->getConnectedComponent(vertex);
}
void KxSpatialGraphInterfaceImpl::doGetBoundingBox(float* box) const {
    graph_->getBoundingBox(box);
}
