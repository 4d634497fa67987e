#include "kxspatialgraph/model/KxRangeSetDataImpl.h"

#include <gtest/gtest.h>

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphFixtures.h"

namespace {

EdgeVertexAttribute* floats(KxSpatialGraph& g, const char* name, KxSpatialGraph::Location loc,
                            std::initializer_list<float> values) {
    auto* a = static_cast<EdgeVertexAttribute*>(g.addAttribute(name, loc, PrimType::FLOAT32, 1));
    int i = 0;
    for (float x : values) {
        a->setFloatDataAtIdx(i++, x);
    }
    return a;
}

}  // namespace

// Multiples of four name the single-component vertex attributes in turn, other
// indices the single-component edge, then point attributes; only float and
// int attributes with values have a range.
TEST(KxRangeSetDataImplTest, IndicesNameSingleComponentAttributesByLocation) {
    auto g = GraphFixtures::makeChain(3);                                     // edges with 2 and 3 points
    g->addAttribute("Vector", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 3);  // not a candidate
    floats(*g, "Radius", KxSpatialGraph::VERTEX, {1.0f, 2.0f, 1.5f});
    floats(*g, "Falling", KxSpatialGraph::VERTEX, {3.0f, -1.0f, 7.0f});
    g->addAttribute("Wide", KxSpatialGraph::VERTEX, PrimType::FLOAT64, 1);
    floats(*g, "E", KxSpatialGraph::EDGE, {4.0f, 5.0f});
    auto* p = static_cast<PointAttribute*>(g->addAttribute("P", KxSpatialGraph::POINT, PrimType::INT32, 1));
    p->setIntDataAtPoint(0, 0, 7);
    p->setIntDataAtPoint(0, 1, -3);
    p->setIntDataAtPoint(1, 1, 12);

    const struct {
        int index;
        bool found;
        float min, max;
    } cases[] = {
        {0, true, 1, 2},       {4, true, -1, 7},      {8, false, -99, -99}, {12, false, -99, -99},
        {-4, false, -99, -99}, {-1, false, -99, -99}, {1, true, 4, 5},      {3, true, 4, 5},
        {5, true, -3, 12},     {9, false, -99, -99},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        float min = -99, max = -99;
        EXPECT_EQ(g->getRangeSetData().getRangeSet(min, max, c.index), c.found);
        EXPECT_EQ(min, c.min);
        EXPECT_EQ(max, c.max);
    }

    KxSpatialGraph empty;
    empty.addAttribute("Empty", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1);
    float min = 0, max = 0;
    EXPECT_FALSE(empty.getRangeSetData().getRangeSet(min, max, 0));
}
