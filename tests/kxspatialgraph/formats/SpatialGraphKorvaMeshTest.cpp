#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/TempDir.h"

using namespace GraphFixtures;

namespace {

const GraphComparisonOptions kFileRoundTrip = [] {
    GraphComparisonOptions o;
    o.compareAttributeIds = false;
    return o;
}();

// Every encoding goes through the same arrays: the mesh tests cover the
// encodings, the format entries' test saves a graph in each.
// Everything a graph file carries: markers on all locations, a float vector
// attribute, a label group, a user parameter and a transformation.
void decorate(KxSpatialGraph& g) {
    addIdentityMarkers(g);
    HierarchicalLabels* ranks = g.addNewLabelGroup("Ranks", true, false, false);
    ranks->addLabel(0, "Rank1", SbColor(0.8f, 0.16f, 0.16f));
    int r2 = ranks->addLabel(0, "Rank2", SbColor(0.1f, 0.2f, 0.3f));
    ranks->addLabel(r2, "Rank2a", SbColor(1, 1, 1));
    g.parameters().setString("Owner", "lab \"7\"");
    SbMatrix m;
    m.setTranslate(SbVec3f(1.5f, -2, 0.25f));
    g.setTransform(m);
}

// The graph of the file; arrays, if given, receives the file's
// "LOCATION/name" of each array in file order.
std::unique_ptr<KxSpatialGraph> readBack(const std::string& path, KxMessageCapture& capture,
                                         std::vector<std::string>* arrays = nullptr) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(path.c_str());
    if (!mesh) {
        ADD_FAILURE() << capture.text();
        return nullptr;
    }
    for (int i = 0; arrays && i < mesh->getNumData(); ++i) {
        arrays->push_back(std::string(mesh->getData(i)->getLocationName()) + "/" +
                          mesh->getData(i)->getName());
    }
    return std::unique_ptr<KxSpatialGraph>(readKorvaMeshToSpatialGraph(*mesh, path.c_str()));
}

TEST(SpatialGraphKorvaMeshTest, RoundTripsReproduceWholeGraphs) {
    TempDir dir;
    const std::pair<const char*, std::function<std::unique_ptr<KxSpatialGraph>()>> graphs[] = {
        {"chain", [] { return makeChain(6); }},
        {"y", [] { return makeY(); }},
        {"loop", [] { return makeLoop(); }},
        {"two components", [] { return makeTwoComponents(); }},
        {"vertices only",
         [] {
             auto g = std::make_unique<KxSpatialGraph>();
             g->addVertex(Vec3f(1, 2, 3));
             g->addVertex(Vec3f(-1, 0, 0.5f));
             return g;
         }},
    };
    for (const auto& [graphName, make] : graphs) {
        SCOPED_TRACE(graphName);
        std::unique_ptr<KxSpatialGraph> g = make();
        decorate(*g);
        g->setModified(true);
        std::string path = dir.path("g.kxm");
        KxMessageCapture capture;
        ASSERT_EQ(g->saveKorvaMesh(path.c_str()), 1) << capture.text();
        EXPECT_STREQ(g->getLoadCmd(), path.c_str());
        EXPECT_FALSE(g->isModified());

        std::vector<std::string> arrays;
        std::unique_ptr<KxSpatialGraph> back = readBack(path, capture, &arrays);
        ASSERT_TRUE(back);
        EXPECT_TRUE(capture.lines().empty()) << capture.text();
        EXPECT_EQ(describeDifference(*g, *back, kFileRoundTrip), "");
        // The documented arrays in their order, each location's attributes after them.
        EXPECT_EQ(arrays, (std::vector<std::string>{"VERTEX/VertexCoordinates", "VERTEX/VertexMarker",
                                                    "VERTEX/VertexVec", "EDGE/EdgeConnectivity",
                                                    "EDGE/NumEdgePoints", "EDGE/EdgeMarker", "EDGE/Ranks",
                                                    "POINT/EdgePointCoordinates", "POINT/PointMarker"}));
        EXPECT_TRUE(back->getLabelGroup("Ranks"));
        EXPECT_STREQ(back->getSaveInfoParam(), "KorvaMesh");
        EXPECT_STREQ(back->getLoadCmd(), path.c_str());
    }
}

TEST(SpatialGraphKorvaMeshTest, InconsistentGraphIsReportedAndStillWritten) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> g = makeChain(3);
    g->setVertexCoords(1, Vec3f(5, 5, 5));
    std::string path = dir.path("bad.kxm");
    KxMessageCapture capture;
    ASSERT_EQ(g->saveKorvaMesh(path.c_str(), KxSpatialGraph::KorvaMeshEncoding::Ascii), 1);
    EXPECT_TRUE(capture.contains("Error: Inconsistent spatialgraph!!!")) << capture.text();
    capture.clear();
    std::unique_ptr<KxSpatialGraph> back = readBack(path, capture);
    ASSERT_TRUE(back);
    EXPECT_EQ(describeDifference(*g, *back, kFileRoundTrip), "");
    // Loading runs the consistency check, which reports the same faults.
    EXPECT_GT(capture.numErrors(), 0);

    // An attribute the file could not give back is refused; the file stays.
    const std::string before = readFileBytes(path);
    g->addAttribute("EdgePointCoordinates", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 3);
    capture.clear();
    EXPECT_EQ(g->saveKorvaMesh(path.c_str()), 0);
    EXPECT_EQ(capture.lines(), std::vector<std::string>{"Error: cannot write KorvaMesh file \"" + path +
                                                        "\": the VERTEX attribute \"EdgePointCoordinates\" "
                                                        "has the name of one of the graph's own arrays."});
    EXPECT_EQ(readFileBytes(path), before);
}

// A hand-made mesh in the current layout: 2 vertices, 1 edge with 3 points;
// the array named missing is left out.
struct CurrentMesh {
    KorvaMesh mesh;
    float vertices[6] = {0, 0, 0, 2, 0, 0};
    int ends[2] = {0, 1};
    int counts[1] = {3};
    float points[9] = {0, 0, 0, 1, 0, 0, 2, 0, 0};
    int vertexValues[2] = {7, 8};
    float pointValues[3] = {0.5f, 1.5f, 2.5f};

    explicit CurrentMesh(const std::string& missing = "") {
        const KorvaMesh::Location* v = mesh.createLocation("VERTEX", 2);
        const KorvaMesh::Location* e = mesh.createLocation("EDGE", 1);
        const KorvaMesh::Location* p = mesh.createLocation("POINT", 3);
        auto add = [&](const char* name, const KorvaMesh::Location* l, PrimType t, int n,
                       const void* values) {
            if (missing != name) {
                mesh.createData(name, l, t, n, values);
            }
        };
        add("VertexCoordinates", v, PrimType::FLOAT32, 3, vertices);
        add("EdgeConnectivity", e, PrimType::INT32, 2, ends);
        add("NumEdgePoints", e, PrimType::INT32, 1, counts);
        add("EdgePointCoordinates", p, PrimType::FLOAT32, 3, points);
    }
};

TEST(SpatialGraphKorvaMeshTest, RefusesMissingArraysAndCountsOrEndsPastTheStoredData) {
    const std::string missing =
        "Error: KxSpatialGraph::readKorvaMesh: expecting at least  vertex coordinates, edge connectivity, "
        "edge "
        "points in x.kxm.";
    struct Case {
        const char* missing;
        int count, target;
        std::string problem;
    } cases[] = {
        {"VertexCoordinates", 3, 1, missing},
        {"EdgeConnectivity", 3, 1, missing},
        {"NumEdgePoints", 3, 1, missing},
        {"EdgePointCoordinates", 3, 1, missing},
        {"", 4, 1, "Error: x.kxm: edge 0 has"},
        {"", -1, 1, "Error: x.kxm: edge 0 has"},
        {"", 3, 2, "Error: x.kxm: edge 0 refers to vertex 2, but there are 2 vertices."},
        {"", 3, -1, "Error: x.kxm: edge 0 refers to vertex -1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.problem);
        CurrentMesh m(c.missing);
        m.counts[0] = c.count;
        m.ends[1] = c.target;
        int poolSize = theObjectPool->size();
        KxMessageCapture capture;
        EXPECT_EQ(readKorvaMesh(m.mesh, "x.kxm"), 0);
        ASSERT_EQ(capture.lines().size(), 1u) << capture.text();
        EXPECT_EQ(capture.lines()[0].rfind(c.problem, 0), 0u) << capture.text();
        EXPECT_EQ(theObjectPool->size(), poolSize);
    }
}

TEST(SpatialGraphKorvaMeshTest, OnlyOtherArraysOfTheThreeLocationsBecomeAttributesAndBrokenLabelTreesWarn) {
    CurrentMesh m;
    const KorvaMesh::Location* v = m.mesh.findLocation("VERTEX");
    // A fixed name with another type, or another location: not an attribute.
    m.mesh.createData("VertexCoordinates", v, PrimType::INT32, 1, m.vertexValues);
    m.mesh.createData("Ignored", m.mesh.createLocation("Elsewhere", 2), PrimType::INT32, 1, m.vertexValues);
    m.mesh.createData("Kind", v, PrimType::INT32, 1, m.vertexValues);
    m.mesh.createData("Radius", m.mesh.findLocation("POINT"), PrimType::FLOAT32, 1, m.pointValues);
    // The label tree of "Kind" holds a label without an id.
    KxParamBundle* group = m.mesh.getParameters().addBundle("Kind");
    group->setInt("Id", 0);
    group->setColor(Color(1, 1, 1));
    group->addBundle("NoId")->setColor(Color(0, 0, 1));
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> g(readKorvaMeshToSpatialGraph(m.mesh, "hand.kxm"));
    ASSERT_TRUE(g);
    ASSERT_EQ(g->getNumVertexAttributes(), 1);
    EXPECT_EQ(g->getVertexAttribute(0)->getIntDataAtIdx(1), 8);
    EXPECT_TRUE(g->getLabelGroup("Kind"));
    ASSERT_EQ(g->getNumEdgePointAttributes(), 1);
    EXPECT_EQ(g->getEdgePointAttribute(0)->getFloatDataAtPoint(0, 2), 2.5f);
    EXPECT_EQ(g->getNumEdgeAttributes(), 0);
    EXPECT_EQ(
        capture.lines().back(),
        "Warning: The attributes are inconsistent.  It is unsafe to continue using Korva with the loaded "
        "SpatialGraph.");
}

}  // namespace
