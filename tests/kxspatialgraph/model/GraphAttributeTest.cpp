#include <vector>

#include <gtest/gtest.h>

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;
using Ints = std::vector<int>;

namespace {

Ints values(const EdgeVertexAttribute& a) {
    Ints result;
    for (int i = 0; i < a.size(); ++i) {
        result.push_back(a.getIntDataAtIdx(i));
    }
    return result;
}

Ints values(const PointAttribute& a) {
    Ints result;
    for (int e = 0; e < a.getNumEdges(); ++e) {
        for (int p = 0; p < a.getNumEdgePoints(e); ++p) {
            result.push_back(a.getIntDataAtPoint(e, p));
        }
        result.push_back(-1);  // edge separator
    }
    return result;
}

// An int attribute holding 10, 11, ... 10 + n - 1.
void fill(EdgeVertexAttribute& a, int n) {
    a.init(n);
    for (int i = 0; i < n; ++i) {
        a.setIntDataAtIdx(i, 10 + i);
    }
}

TypedData2D rows(std::initializer_list<int> v) {
    TypedData2D d(PrimType::INT32, static_cast<int>(v.size()), 1);
    int r = 0;
    for (int x : v) {
        d.setDouble(r++, 0, x);
    }
    return d;
}

}  // namespace

TEST(GraphAttributeTest, AddAttributeReturnsSameOrReplaces) {
    auto g = makeChain(3);
    GraphAttribute* a = g->addAttribute("Radius", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1);
    static_cast<EdgeVertexAttribute*>(a)->setFloatDataAtIdx(2, 4.5f);
    EXPECT_EQ(g->addAttribute("Radius", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1), a);
    EXPECT_EQ(g->findVertexAttribute("Radius")->getFloatDataAtIdx(2), 4.5f);

    // A replacement takes the next id: ids are consecutive and never reused.
    int oldId = a->getId();
    GraphAttribute* b = g->addAttribute("Radius", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 2);
    EXPECT_EQ(b->getId(), oldId + 1);
    EXPECT_EQ(g->numAttributes(KxSpatialGraph::VERTEX), 1);
    EXPECT_EQ(static_cast<EdgeVertexAttribute*>(b)->floatDataAtIdx(2)[0], 0.0f);
    GraphAttribute* c = g->addAttribute("Radius", KxSpatialGraph::VERTEX, PrimType::INT32, 2);
    EXPECT_EQ(c->getId(), oldId + 2);

    EXPECT_FALSE(g->findAttribute(KxSpatialGraph::VERTEX, "radius") ||
                 g->findAttribute(KxSpatialGraph::EDGE, "Radius"));
    EXPECT_EQ(g->numAttributes(static_cast<KxSpatialGraph::Location>(3)), 0);
    EXPECT_EQ(g->addAttribute("X", static_cast<KxSpatialGraph::Location>(7), PrimType::INT32, 1), nullptr);

    GraphAttribute* p = g->addAttribute("Thick", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    EXPECT_EQ(p->getId(), oldId + 3);  // one sequence for every location
    EXPECT_EQ(p->size(), g->getTotalNumEdgePoints());
    EXPECT_EQ(g->getAttributeLocation(p), KxSpatialGraph::POINT);
    EXPECT_EQ(g->getAttributeLocation(c), KxSpatialGraph::VERTEX);
}

TEST(GraphAttributeTest, EdgeVertexGuardsDoNothingWhenTheyFail) {
    KxSpatialGraph g;
    EdgeVertexAttribute a(&g, "a", PrimType::INT32, 1);
    a.remax(4);            // room before the first value (a size hint on an empty graph)
    a.insertBefore(0, 1);  // empty: no-op
    a.remove(0, 1);
    a.removeLast(1);
    a.init(0);
    EXPECT_EQ(a.size(), 0);

    fill(a, 3);
    a.insertBefore(3, 1);  // deliberately a no-op at the end
    a.insertBefore(-1, 1);
    a.insertBefore(1, 0);
    a.remove(2, 2);
    a.remove(-1, 1);
    a.remove(0, 0);
    a.removeLast(4);
    a.remax(-1);
    a.remax(2);
    EXPECT_EQ(values(a), (Ints{10, 11, 12}));

    a.insertBefore(0, 2);
    EXPECT_EQ(values(a), (Ints{0, 0, 10, 11, 12}));
    a.remove(1, 2);
    EXPECT_EQ(values(a), (Ints{0, 11, 12}));
    a.removeLast(2);
    a.append(2);  // the values freed by removal come back as zero
    EXPECT_EQ(values(a), (Ints{0, 0, 0}));
    a.remax(10);
    EXPECT_EQ(a.size(), 3);
    a.setIntDataAtIdx(1, 7);
    a.copy(2, 1);
    EXPECT_EQ(values(a), (Ints{0, 7, 7}));
    a.clearMemory(1, -1);
    EXPECT_EQ(values(a), (Ints{0, 0, 0}));
}

TEST(GraphAttributeTest, MultipleValuesWithoutRowsAreZeroAndSetsGoByIndex) {
    KxSpatialGraph g;
    EdgeVertexAttribute a(&g, "a", PrimType::INT32, 1);
    fill(a, 2);
    a.insertMultipleValues(DArray<int>{0, 3}, TypedData2D());  // missing rows are zero
    EXPECT_EQ(values(a), (Ints{0, 10, 11, 0}));
    a.setMultipleValues(DArray<int>{3, 0}, rows({5, 6}));
    EXPECT_EQ(values(a), (Ints{6, 10, 11, 5}));
}

TEST(GraphAttributeTest, PointAttributeBlocksFollowTheirEdges) {
    KxSpatialGraph g;
    PointAttribute empty(&g, "e", PrimType::INT32, 1);
    empty.insertEdgeBefore(0, 0);  // an edge without points, before any value exists
    empty.insertEdgeBefore(1, TypedData2D());
    EXPECT_EQ(values(empty), (Ints{-1, -1}));
    EXPECT_EQ(empty.size(), 0);

    PointAttribute a(&g, "p", PrimType::INT32, 1);
    a.init(DArray<int>{0, 2, 5}, nullptr);
    a.setValues(0, rows({1, 2}));
    a.setValues(1, rows({3, 4, 5}));
    EXPECT_EQ(values(a), (Ints{1, 2, -1, 3, 4, 5, -1}));

    a.addEdge(TypedData2D(PrimType::INT32, 0, 1));  // deliberately nothing, not even an empty edge
    EXPECT_EQ(a.getNumEdges(), 2);
    a.addEdge(rows({6}));
    a.insertEdgeBefore(1, rows({7, 8}));
    a.insertEdgeBefore(0, 1);
    EXPECT_EQ(values(a), (Ints{0, -1, 1, 2, -1, 7, 8, -1, 3, 4, 5, -1, 6, -1}));

    a.insertEdgePoints(2, 1, 0);
    a.removeEdgePoints(2, 1, 0);
    a.resizeEdgePoints(2, 0);
    a.insertEdgePoints(2, 1, 2);
    EXPECT_EQ(values(a), (Ints{0, -1, 1, 2, -1, 7, 0, 0, 8, -1, 3, 4, 5, -1, 6, -1}));
    a.removeEdgePoints(2, 0, 3);
    a.resizeEdgePoints(3, 1);
    a.resizeEdgePoints(0, 3);
    EXPECT_EQ(values(a), (Ints{0, 0, 0, -1, 1, 2, -1, 8, -1, 3, -1, 6, -1}));

    a.removeMultipleEdges(DArray<int>{0, 2});
    EXPECT_EQ(values(a), (Ints{1, 2, -1, 3, -1, 6, -1}));
    a.insertValuesForMultipleEdges(DArray<int>{0, 2, 4},
                                   DArray<TypedData2D>{rows({9}), rows({}), rows({5, 5})});
    EXPECT_EQ(values(a), (Ints{9, -1, 1, 2, -1, -1, 3, -1, 5, 5, -1, 6, -1}));
    a.removeEdge(1);
    EXPECT_EQ(values(a), (Ints{9, -1, -1, 3, -1, 5, 5, -1, 6, -1}));
    EXPECT_EQ(a.size(), 5);
}

TEST(GraphAttributeTest, SettersCopyAtMostOneValue) {
    KxSpatialGraph g;
    EdgeVertexAttribute a(&g, "a", PrimType::INT32, 1);
    fill(a, 2);
    TypedElement wide(PrimType::INT32, 3);
    wide.setInt(0, 5);
    wide.setInt(1, 6);
    a.setValue(0, wide);
    EXPECT_EQ(values(a), (Ints{5, 11}));
}
