#pragma once

#include <memory>

#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"

class KxSpatialGraph;

// Small named graphs for tests. Every edge's polyline runs straight from its
// source to its target; edges carry different point counts (noted as [n]) so
// that offset mistakes show. All pass isConsistent().
namespace GraphFixtures {

// n vertices on the x axis (vertex i at (i, 0, 0)); edge i joins i -> i+1 and
// has 2 + i % 3 points.
//   0 --[2]-- 1 --[3]-- 2 --[4]-- 3 --[2]-- 4 ...
std::unique_ptr<KxSpatialGraph> makeChain(int n);

// One branching vertex 0 at the origin with three arms.
//   1[3]  2[4]      edges: 0: 0->1 [3], 1: 0->2 [4], 2: 3->0 [2]
//     \  /
//      0 --[2]-- 3
std::unique_ptr<KxSpatialGraph> makeY();

// A triangle cycle and a self-loop.
//   0 --[3]-- 1         edges: 0: 0->1 [3], 1: 1->2 [2], 2: 2->0 [4],
//    \       /                 3: 2->2 [5] (self-loop, listed twice at 2)
//     [4]  [2]
//       \  /
//        2 (loop [5])
std::unique_ptr<KxSpatialGraph> makeLoop();

// Two components and an isolated vertex.
//   0 --[3]-- 1 --[2]-- 2     3 --[4]-- 4     5
//   edges: 0: 0->1, 1: 1->2, 2: 3->4
std::unique_ptr<KxSpatialGraph> makeTwoComponents();

// Evenly spaced points from a to b, both included (n >= 2).
DArray<Vec3f> straightPoints(const Vec3f& a, const Vec3f& b, int n);

// Identity markers, one int attribute per location: "VertexMarker" = 1000 + v,
// "EdgeMarker" = 2000 + e, "PointMarker" = 10000 * e + p; and a float vertex
// attribute "VertexVec" of three components (v, -v, 0.5 v).
void addIdentityMarkers(KxSpatialGraph& graph);

}  // namespace GraphFixtures
