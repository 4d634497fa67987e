// SpatialGraphViewNode: mapping picks and point-set positions back to graph elements.
#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/details/SoLineDetail.h>
#include <Inventor/details/SoPointDetail.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoPointSet.h>

#include "korva/inventor/SoSphereSetDetail.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"

namespace {

// Number of the k-th selected edge, or -1.
int selectedEdge(const SpatialGraphSelection& sel, int k) {
    return k >= 0 && k < sel.getNumSelectedEdges() ? sel.getSelectedEdge(k) : -1;
}

}  // namespace

int SpatialGraphViewNode::getPointIndex(int edge, int point, const SpatialGraphSelection* sel) const {
    if (!pointSet_ || !sel || !graph_) {
        return -1;
    }
    int numEdges = std::min(graph_->doGetNumEdges(), sel->getNumEdges());
    int wholeEdgePoints = 0, index = -1;
    for (int e = 0; e < numEdges; ++e) {
        if (!sel->allPointsOnEdgeSelected(e)) {
            continue;
        }
        if (e == edge && point >= 0 && point < graph_->doGetNumEdgePoints(e)) {
            index = wholeEdgePoints + point;
        }
        wholeEdgePoints += graph_->doGetNumEdgePoints(e);
    }
    if (index >= 0) {
        return index;
    }
    for (int i = 0; i < sel->getNumSelectedPoints(); ++i) {
        if (sel->getSelectedPoint(i) == SpatialGraphPoint(edge, point)) {
            return wholeEdgePoints + i;
        }
    }
    return -1;
}

bool SpatialGraphViewNode::getPickedElement(const SpatialGraphSelection* visible,
                                            const SpatialGraphSelection* highlighted,
                                            const SoPickedPoint* pickedPoint, int& vertex, int& edge,
                                            SpatialGraphPoint& point) const {
    vertex = edge = -1;
    point = SpatialGraphPoint();
    if (!pickedPoint || !visible || !highlighted || !graph_) {
        return false;
    }
    const SoDetail* detail = pickedPoint->getDetail();
    if (!detail) {
        return false;
    }
    const SoNode* tail = pickedPoint->getPath() ? pickedPoint->getPath()->getTail() : nullptr;
    if (detail->isOfType(SoSphereSetDetail::getClassTypeId())) {
        vertex = static_cast<const SoSphereSetDetail*>(detail)->getSphereIndex();
        return true;
    }
    if (detail->isOfType(SoLineDetail::getClassTypeId())) {
        int line = static_cast<const SoLineDetail*>(detail)->getLineIndex();
        if (tail == lineSet_) {
            edge = selectedEdge(*visible, line);
        } else if (tail == highlightedLineSet_) {
            edge = selectedEdge(*highlighted, line);
        }
        return true;
    }
    if (!detail->isOfType(SoPointDetail::getClassTypeId())) {
        return false;
    }
    int c = static_cast<const SoPointDetail*>(detail)->getCoordinateIndex();
    if (tail == highlightedPointSet_) {
        if (c >= 0 && c < highlighted->getNumSelectedPoints()) {
            point = highlighted->getSelectedPoint(c);
        }
        return true;
    }
    if (tail != pointSet_) {
        return true;
    }
    int blockStart = 0;
    int numEdges = std::min(graph_->doGetNumEdges(), visible->getNumEdges());
    for (int e = 0; e < numEdges; ++e) {
        if (!visible->allPointsOnEdgeSelected(e)) {
            continue;
        }
        int n = graph_->doGetNumEdgePoints(e);
        if (c >= blockStart && c < blockStart + n) {
            point = SpatialGraphPoint(e, c - blockStart);
            return true;
        }
        blockStart += n;
    }
    int k = c - blockStart;
    if (k >= 0 && k < visible->getNumSelectedPoints()) {
        point = visible->getSelectedPoint(k);
    }
    return true;
}
