#include "kxspatialgraph/operations/AddTracedEdgeOperationSet.h"

#include <algorithm>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/operations/AddVertexOperation.h"
#include "kxspatialgraph/operations/ConnectOperation.h"

AddTracedEdgeOperationSet::AddTracedEdgeOperationSet(KxSpatialGraph* graph, const DArray<Vec3f>& points,
                                                     const DArray<float>& radii,
                                                     const SpatialGraphSelection& highlighted,
                                                     const SpatialGraphSelection& visible)
    : AddTracedEdgeOperationSet(graph, points.isEmpty() ? Vec3f() : points.last(), points, radii, highlighted,
                                visible) {}

AddTracedEdgeOperationSet::AddTracedEdgeOperationSet(KxSpatialGraph* graph, const Vec3f& start,
                                                     const DArray<Vec3f>& points, const DArray<float>& radii,
                                                     const SpatialGraphSelection& highlighted,
                                                     const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible), points_(points), radii_(radii), start_(start) {}

void AddTracedEdgeOperationSet::exec() {
    OperationSet::exec();
    storeRadii();
}

void AddTracedEdgeOperationSet::build() {
    int numPoints = highlighted_.getNumSelectedPoints();
    SpatialGraphPoint first;
    for (int i = 0; i < numPoints; ++i) {
        SpatialGraphPoint p = selectedPoint(i);
        // Converting the first point removed its edge; the second point's edge
        // moved down if it lay above. Later points are taken as selected.
        if (i == 0) {
            first = p;
        } else if (i == 1 && p.edgeNum > first.edgeNum) {
            --p.edgeNum;
        }
        convertPointToVertex(p);
    }
    int numVertices = highlighted_.getNumSelectedVertices();
    if (numVertices + numPoints == 1) {
        SpatialGraphSelection none(graph_);
        newVertex_ = run(new AddVertexOperation(graph_, start_, none, working()))->getNewVertexNum();
    }
    int last = graph_->getNumVertices() - 1;
    int a = last - 1, b = last;
    if (numVertices >= 2) {
        a = highlighted_.getSelectedVertex(0);
        b = highlighted_.getSelectedVertex(1);
    } else if (numVertices == 1) {
        a = highlighted_.getSelectedVertex(0);
    }
    SpatialGraphSelection ends = selectionOfVertices(a, b);
    ConnectOperation* connect = new ConnectOperation(graph_, ends, working());
    connect->setEdgePoints(points_);
    run(connect);
}

void AddTracedEdgeOperationSet::storeRadii() {
    createdThicknessId_ = -1;
    PointAttribute* thickness = graph_->findEdgePointAttribute("thickness");
    if (!thickness) {
        thickness = static_cast<PointAttribute*>(
            graph_->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
        if (!thickness) {
            return;
        }
        createdThicknessId_ = thickness->getId();
    }
    // Deliberate: radii are written only into a float attribute of one
    // component and only for points the new edge has, so that a radius list
    // longer than the polyline or an int "thickness" cannot write past a value.
    if (thickness->getPrimType() != PrimType::FLOAT32 || thickness->getNumDataVar() != 1) {
        theMsg->printf(
            "Warning: point attribute thickness is not a float of one component; radii not stored.");
        return;
    }
    int e = graph_->getNumEdges() - 1;
    int n = std::min(radii_.size(), graph_->getNumEdgePoints(e));
    for (int i = 0; i < n; ++i) {
        thickness->setFloatDataAtPoint(radii_[i], e, i);
    }
}

void AddTracedEdgeOperationSet::undo() {
    if (createdThicknessId_ >= 0) {
        GraphAttribute* thickness = graph_->findEdgePointAttribute("thickness");
        if (thickness && thickness->getId() == createdThicknessId_) {
            graph_->deleteAttribute(thickness);
        }
        createdThicknessId_ = -1;
    }
    OperationSet::undo();
}
