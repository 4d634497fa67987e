#include "kxspatialgraph/model/KxRangeSetDataImpl.h"

#include <gtest/gtest.h>

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

namespace {

EdgeVertexAttribute* vertexFloats(KxSpatialGraph& g, const char* name, std::initializer_list<float> values) {
    auto* a =
        static_cast<EdgeVertexAttribute*>(g.addAttribute(name, KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1));
    int v = 0;
    for (float x : values) {
        a->setFloatDataAtIdx(v++, x);
    }
    return a;
}

struct Range {
    bool found;
    float min, max;
};

Range range(const KxSpatialGraph& g, int index) {
    Range r{false, -99, -99};
    r.found = g.getRangeSetData().getRangeSet(r.min, r.max, index);
    return r;
}

}  // namespace

TEST(KxRangeSetDataImplTest, VertexSetsAreTheMultiplesOfFour) {
    auto g = makeChain(3);
    g->addAttribute("Vector", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 3);  // not a candidate
    vertexFloats(*g, "Radius", {1.0f, 2.0f, 1.5f});
    Range r = range(*g, 0);
    EXPECT_TRUE(r.found);
    EXPECT_EQ(r.min, 1.0f);
    EXPECT_EQ(r.max, 2.0f);
    // Only one single-component vertex attribute: index 4 names nothing.
    EXPECT_FALSE(range(*g, 4).found);
    EXPECT_FALSE(range(*g, -4).found);
    EXPECT_FALSE(range(*g, -1).found);

    vertexFloats(*g, "Falling", {3.0f, -1.0f, 7.0f});
    r = range(*g, 4);
    EXPECT_TRUE(r.found);
    EXPECT_EQ(r.min, -1.0f);
    EXPECT_EQ(r.max, 7.0f);
}

TEST(KxRangeSetDataImplTest, OtherIndicesPickEdgeThenPointAttributes) {
    KxSpatialGraph g;
    g.addVertex(Vec3f(0, 0, 0));
    g.addVertex(Vec3f(1, 0, 0));
    g.addEdge(0, 1);
    g.addEdge(1, 0);
    auto* e =
        static_cast<EdgeVertexAttribute*>(g.addAttribute("E", KxSpatialGraph::EDGE, PrimType::FLOAT32, 1));
    e->setFloatDataAtIdx(0, 4.0f);
    e->setFloatDataAtIdx(1, 5.0f);
    auto* p = static_cast<PointAttribute*>(g.addAttribute("P", KxSpatialGraph::POINT, PrimType::INT32, 1));
    p->setIntDataAtPoint(0, 0, 7);
    p->setIntDataAtPoint(0, 1, -3);
    p->setIntDataAtPoint(1, 1, 12);

    for (int index : {1, 2, 3}) {
        SCOPED_TRACE(index);
        Range r = range(g, index);
        EXPECT_TRUE(r.found);
        EXPECT_EQ(r.min, 4.0f);
        EXPECT_EQ(r.max, 5.0f);
    }
    Range r = range(g, 5);
    EXPECT_TRUE(r.found);
    EXPECT_EQ(r.min, -3.0f);
    EXPECT_EQ(r.max, 12.0f);
    EXPECT_FALSE(range(g, 9).found);
    EXPECT_FALSE(range(g, 0).found);  // no vertex attribute at all
}

TEST(KxRangeSetDataImplTest, EmptyOrUnsupportedAttributesAnswerFalse) {
    KxSpatialGraph g;
    g.addAttribute("Empty", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1);
    EXPECT_FALSE(range(g, 0).found);

    auto chain = makeChain(2);
    chain->addAttribute("Wide", KxSpatialGraph::VERTEX, PrimType::FLOAT64, 1);
    Range r = range(*chain, 0);
    EXPECT_FALSE(r.found);
    EXPECT_EQ(r.min, -99);
}
