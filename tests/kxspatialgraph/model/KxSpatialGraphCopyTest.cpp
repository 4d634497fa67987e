#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

namespace {

// A chain of three vertices with identity markers, a label group "Neuron" on
// vertices and edges, a parameter and a transformation.
std::unique_ptr<KxSpatialGraph> makeRichGraph() {
    auto g = makeChain(3);
    addIdentityMarkers(*g);
    g->addNewLabelGroup("Neuron", true, true, false);
    g->addLabel("Neuron", 0, "Axon", SbColor(1, 0, 0));
    g->addLabel("Neuron", 0, "Soma", SbColor(0, 1, 0));
    g->parameters().setString("Origin", "test");
    SbMatrix m;
    m.setTranslate(SbVec3f(1, 2, 3));
    g->setTransform(m);
    return g;
}

int vertexInt(const KxSpatialGraph& g, const char* name, int v) {
    return g.findVertexAttribute(name)->getIntDataAtIdx(v);
}

// Adds an int vertex attribute and sets one value.
void setVertexInt(KxSpatialGraph& g, const char* name, int v, int value) {
    static_cast<EdgeVertexAttribute*>(g.addAttribute(name, KxSpatialGraph::VERTEX, PrimType::INT32, 1))
        ->setIntDataAtIdx(v, value);
}

SbMatrix translation(float x, float y, float z) {
    SbMatrix m;
    m.setTranslate(SbVec3f(x, y, z));
    return m;
}

}  // namespace

TEST(KxSpatialGraphCopyTest, CopyFromReproducesEverythingButAttributeIds) {
    auto source = makeRichGraph();
    KxSpatialGraph copy;
    copy.addVertex(Vec3f(7, 7, 7));  // replaced by the copy
    copy.addAttribute("Stale", KxSpatialGraph::EDGE, PrimType::FLOAT32, 1);
    copy.copyFrom(source.get());

    GraphComparisonOptions options;
    options.compareAttributeIds = false;
    EXPECT_EQ(describeDifference(*source, copy, options), "");
    expectConsistent(copy);
    ASSERT_NE(copy.getLabelGroup("Neuron"), nullptr);
    EXPECT_EQ(copy.getLabelId(copy.findEdgeAttribute("Neuron"), "Soma"),
              source->getLabelId(source->findEdgeAttribute("Neuron"), "Soma"));

    // The copy's own label bundle, not the source's, backs the group.
    source->addLabel("Neuron", 0, "Dendrite", SbColor(0, 0, 1));
    EXPECT_EQ(copy.getLabelId(copy.findEdgeAttribute("Neuron"), "Dendrite"), -1);

    GraphSnapshot before = takeSnapshot(*source);
    source->copyFrom(source.get());
    EXPECT_TRUE(sameGraph(before, *source));
}

template <class T>
std::vector<T> twice(const std::vector<T>& v) {
    std::vector<T> result = v;
    result.insert(result.end(), v.begin(), v.end());
    return result;
}

// The graph merged with itself reads from the arrays it appends to.
TEST(KxSpatialGraphCopyTest, MergeWithItselfAppendsVerticesEdgesAndValues) {
    auto g = makeChain(3);
    addIdentityMarkers(*g);
    GraphSnapshot before = takeSnapshot(*g);
    ASSERT_TRUE(g->merge(g.get()));
    expectConsistent(*g);

    GraphSnapshot after = takeSnapshot(*g);
    EXPECT_EQ(after.coords, twice(before.coords));
    EXPECT_EQ(after.edges, (std::vector<std::pair<int, int>>{{0, 1}, {1, 2}, {3, 4}, {4, 5}}));
    EXPECT_EQ(after.points, twice(before.points));
    for (int loc = 0; loc < 3; ++loc) {
        for (size_t k = 0; k < before.attributes[loc].size(); ++k) {
            SCOPED_TRACE(before.attributes[loc][k].name);
            EXPECT_EQ(after.attributes[loc][k].bytes, twice(before.attributes[loc][k].bytes));
        }
    }
}

TEST(KxSpatialGraphCopyTest, MergeMatchesAttributesByNameAndBringsOtherIntoThisFrame) {
    // This graph is scaled by 2, other is shifted by 10 in x: other's local x
    // lands at (x + 10) / 2 in this graph's coordinates.
    auto g = makeChain(2);
    SbMatrix scale;
    scale.setScale(2.0f);
    g->setTransform(scale);
    auto other = makeChain(3);
    other->setTransform(translation(10, 0, 0));
    // Other declares its attributes in the opposite order; its label group stays its own.
    setVertexInt(*g, "A", 0, 1);
    setVertexInt(*g, "B", 0, 2);
    setVertexInt(*other, "B", 1, 22);
    setVertexInt(*other, "A", 1, 11);
    g->addNewLabelGroup("Mine", false, false, false);
    other->addNewLabelGroup("Theirs", false, false, false);

    ASSERT_TRUE(g->merge(other.get()));
    expectConsistent(*g);
    EXPECT_EQ((std::vector<int>{vertexInt(*g, "A", 3), vertexInt(*g, "B", 3), vertexInt(*g, "A", 0)}),
              (std::vector<int>{11, 22, 1}));
    EXPECT_NE(g->getLabelGroup("Mine"), nullptr);
    EXPECT_EQ(g->getLabelGroup("Theirs"), nullptr);
    EXPECT_EQ(takeSnapshot(*g).coords,
              (std::vector<Vec3f>{{0, 0, 0}, {1, 0, 0}, {5, 0, 0}, {5.5f, 0, 0}, {6, 0, 0}}));
    EXPECT_EQ(g->getEdgePoint(2, 1), Vec3f(5.75f, 0, 0));  // other's midpoint (1.5, 0, 0)
    EXPECT_EQ(g->getTransform(), scale);

    // Equal transformations cancel without rounding.
    auto h = makeY();
    h->setTransform(translation(0.1f, 0.2f, 0.3f));
    std::unique_ptr<KxSpatialGraph> copy(h->duplicate());
    ASSERT_TRUE(h->merge(copy.get()));
    std::vector<Vec3f> merged = takeSnapshot(*h).coords;
    EXPECT_EQ(std::vector<Vec3f>(merged.begin() + 4, merged.end()), takeSnapshot(*copy).coords);
}

TEST(KxSpatialGraphCopyTest, MergeFailuresPrintOneMessageAndChangeNothing) {
    using Edit = std::function<void(KxSpatialGraph&)>;
    auto replace = [](KxSpatialGraph::Location loc, const char* name, PrimType type, int nDataVar) {
        return [=](KxSpatialGraph& g) { g.addAttribute(name, loc, type, nDataVar); };
    };
    auto rename = [](KxSpatialGraph::Location loc, const char* name) {
        return [=](KxSpatialGraph& g) { g.findAttribute(loc, name)->setName("Renamed"); };
    };
    auto add = [](KxSpatialGraph::Location loc) {
        return [=](KxSpatialGraph& g) { g.addAttribute("Extra", loc, PrimType::INT32, 1); };
    };
    struct Case {
        const char* message;
        Edit editOther;
    };
    const KxSpatialGraph::Location V = KxSpatialGraph::VERTEX, E = KxSpatialGraph::EDGE,
                                   P = KxSpatialGraph::POINT;
    const Case cases[] = {
        {"Error: number of VERTEX attributes does not match. Aborting merge.", add(V)},
        {"Error: number of EDGE attributes does not match. Aborting merge.", add(E)},
        {"Error: number of POINT attributes does not match. Aborting merge.", add(P)},
        {"Error: Vertex attribute VertexMarker not found. Aborting.", rename(V, "VertexMarker")},
        {"Error: Primtype of vertex attribute VertexMarker not matching. Aborting.",
         replace(V, "VertexMarker", PrimType::FLOAT32, 1)},
        {"Error: number of values of vertex attribute VertexVec not matching. Aborting.",
         replace(V, "VertexVec", PrimType::FLOAT32, 2)},
        {"Error: Edge attribute EdgeMarker not found. Aborting.", rename(E, "EdgeMarker")},
        {"Error: Primtype of edge attribute EdgeMarker not matching. Aborting.",
         replace(E, "EdgeMarker", PrimType::FLOAT32, 1)},
        {"Error: number of values of edge attribute EdgeMarker not matching. Aborting.",
         replace(E, "EdgeMarker", PrimType::INT32, 4)},
        {"Error: Point attribute PointMarker not found. Aborting.", rename(P, "PointMarker")},
        {"Error: Primtype of point attribute PointMarker not matching. Aborting.",
         replace(P, "PointMarker", PrimType::FLOAT32, 1)},
        {"Error: number of values of point attribute PointMarker not matching. Aborting.",
         replace(P, "PointMarker", PrimType::INT32, 2)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        auto g = makeRichGraph();
        auto other = makeTwoComponents();
        addIdentityMarkers(*other);
        other->addNewLabelGroup("Neuron", true, true, false);
        c.editOther(*other);
        GraphSnapshot before = takeSnapshot(*g);

        KxMessageCapture capture;
        EXPECT_FALSE(g->merge(other.get()));
        EXPECT_EQ(capture.lines(), std::vector<std::string>{c.message});
        EXPECT_TRUE(sameGraph(before, *g, {true, true}));
    }
    // No frame to bring other's coordinates into.
    auto g = makeTwoComponents(), other = makeTwoComponents();
    g->setTransform(SbMatrix(2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    GraphSnapshot before = takeSnapshot(*g);
    KxMessageCapture capture;
    EXPECT_FALSE(g->merge(other.get()));
    EXPECT_EQ(capture.lines(),
              std::vector<std::string>{"Error: The transformation of the graph to merge into "
                                       "cannot be inverted. Aborting merge."});
    EXPECT_TRUE(sameGraph(before, *g));
}
