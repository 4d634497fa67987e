#pragma once

#include <string>

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

// Selections written as bit strings for table-driven tests:
// "V:0110 E:101 A:100" = selected vertices, edges and (optionally) edges
// with all points selected.
inline std::string selectionBits(const SpatialGraphSelection& s, bool withAllPoints = true) {
    std::string out = "V:";
    for (int v = 0; v < s.getNumVertices(); ++v) {
        out += s.isSelectedVertex(v) ? '1' : '0';
    }
    out += " E:";
    for (int e = 0; e < s.getNumEdges(); ++e) {
        out += s.isSelectedEdge(e) ? '1' : '0';
    }
    if (withAllPoints) {
        out += " A:";
        for (int e = 0; e < s.getNumEdges(); ++e) {
            out += s.allPointsOnEdgeSelected(e) ? '1' : '0';
        }
    }
    return out;
}

// A selection sized to the graph with the '1' positions of each string selected.
inline SpatialGraphSelection selectionFromBits(const KxSpatialGraph& g, const std::string& vertices,
                                               const std::string& edges, const std::string& allPoints = "") {
    SpatialGraphSelection s(&g);
    for (int i = 0; i < static_cast<int>(vertices.size()); ++i) {
        if (vertices[i] == '1') {
            s.selectVertex(i);
        }
    }
    for (int i = 0; i < static_cast<int>(edges.size()); ++i) {
        if (edges[i] == '1') {
            s.selectEdge(i);
        }
        if (i < static_cast<int>(allPoints.size()) && allPoints[i] == '1') {
            s.selectAllPointsOnEdge(i);
        }
    }
    return s;
}
