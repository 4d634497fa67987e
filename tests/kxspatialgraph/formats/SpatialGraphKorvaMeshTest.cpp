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

std::unique_ptr<KxSpatialGraph> readBack(const std::string& path, KxMessageCapture& capture) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(path.c_str());
    if (!mesh) {
        ADD_FAILURE() << capture.text();
        return nullptr;
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

        std::unique_ptr<KxSpatialGraph> back = readBack(path, capture);
        ASSERT_TRUE(back);
        EXPECT_TRUE(capture.lines().empty()) << capture.text();
        EXPECT_EQ(describeDifference(*g, *back, kFileRoundTrip), "");
        EXPECT_TRUE(back->getLabelGroup("Ranks"));
        EXPECT_STREQ(back->getSaveInfoParam(), "KorvaMesh");
        EXPECT_STREQ(back->getLoadCmd(), path.c_str());
    }
}

TEST(SpatialGraphKorvaMeshTest, WritesTheDocumentedArraysInOrder) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> g = makeY();
    addIdentityMarkers(*g);
    std::string path = dir.path("y.kxm");
    ASSERT_EQ(g->saveKorvaMesh(path.c_str()), 1);
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(path.c_str());
    ASSERT_TRUE(mesh);
    std::vector<std::string> arrays;
    for (int i = 0; i < mesh->getNumData(); ++i) {
        arrays.push_back(std::string(mesh->getData(i)->getLocationName()) + "/" +
                         mesh->getData(i)->getName());
    }
    EXPECT_EQ(arrays,
              (std::vector<std::string>{"VERTEX/VertexCoordinates", "VERTEX/VertexMarker", "VERTEX/VertexVec",
                                        "EDGE/EdgeConnectivity", "EDGE/NumEdgePoints", "EDGE/EdgeMarker",
                                        "POINT/EdgePointCoordinates", "POINT/PointMarker"}));
    EXPECT_EQ(mesh->findLocation("POINT")->getSize(), 3 + 4 + 2);
    const int* counts = static_cast<const int*>(mesh->getData(4)->getValues());
    EXPECT_EQ(std::vector<int>(counts, counts + 3), (std::vector<int>{3, 4, 2}));
    String type;
    EXPECT_TRUE(mesh->getParameters().findString("ContentType", type));
    EXPECT_EQ(type, "KxSpatialGraph");
    // Identity transformation: no matrix.
    EXPECT_FALSE(mesh->getParameters().hasParam("TransformationMatrix"));
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
}

TEST(SpatialGraphKorvaMeshTest, FailedSaveKeepsTheGraphUnsaved) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> g = makeChain(2);
    g->setModified(true);
    KxMessageCapture capture;
    EXPECT_EQ(g->saveKorvaMesh(dir.path("missing/dir.kxm").c_str()), 0);
    EXPECT_EQ(capture.numErrors(), 1);
    EXPECT_TRUE(g->isModified());
    EXPECT_STREQ(g->getLoadCmd(), "");
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

TEST(SpatialGraphKorvaMeshTest, OnlyOtherArraysOfTheThreeLocationsBecomeAttributes) {
    CurrentMesh m;
    const KorvaMesh::Location* v = m.mesh.findLocation("VERTEX");
    const KorvaMesh::Location* other = m.mesh.createLocation("Elsewhere", 2);
    // Same fixed name with another type: still not an attribute.
    m.mesh.createData("VertexCoordinates", v, PrimType::INT32, 1, m.vertexValues);
    m.mesh.createData("Weight", v, PrimType::INT32, 1, m.vertexValues);
    m.mesh.createData("Ignored", other, PrimType::INT32, 1, m.vertexValues);
    m.mesh.createData("Radius", m.mesh.findLocation("POINT"), PrimType::FLOAT32, 1, m.pointValues);
    std::unique_ptr<KxSpatialGraph> g(readKorvaMeshToSpatialGraph(m.mesh, "hand.kxm"));
    ASSERT_TRUE(g);
    ASSERT_EQ(g->getNumVertexAttributes(), 1);
    EXPECT_STREQ(g->getVertexAttribute(0)->getName(), "Weight");
    EXPECT_EQ(g->getVertexAttribute(0)->getIntDataAtIdx(1), 8);
    ASSERT_EQ(g->getNumEdgePointAttributes(), 1);
    EXPECT_EQ(g->getEdgePointAttribute(0)->getFloatDataAtPoint(0, 2), 2.5f);
    EXPECT_EQ(g->getNumEdgeAttributes(), 0);
}

TEST(SpatialGraphKorvaMeshTest, RefusesMeshesWithoutTheRequiredArrays) {
    const char* required[] = {"VertexCoordinates", "EdgeConnectivity", "NumEdgePoints",
                              "EdgePointCoordinates"};
    for (const char* missing : required) {
        SCOPED_TRACE(missing);
        CurrentMesh m(missing);
        int poolSize = theObjectPool->size();
        KxMessageCapture capture;
        EXPECT_EQ(readKorvaMesh(m.mesh, "x.kxm"), 0);
        ASSERT_EQ(capture.lines().size(), 1u);
        EXPECT_EQ(capture.lines()[0],
                  "Error: KxSpatialGraph::readKorvaMesh: expecting at least  vertex coordinates, edge "
                  "connectivity, edge points in x.kxm.");
        EXPECT_EQ(theObjectPool->size(), poolSize);
    }
}

TEST(SpatialGraphKorvaMeshTest, RefusesPointCountsAndEdgeEndsPastTheStoredData) {
    struct Case {
        int count, target;
        const char* problem;
    } cases[] = {
        {4, 1, "lying.kxm: edge 0 has"},
        {-1, 1, "lying.kxm: edge 0 has"},
        {3, 2, "lying.kxm: edge 0 refers to vertex 2, but there are 2 vertices."},
        {3, -1, "lying.kxm: edge 0 refers to vertex -1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.problem);
        CurrentMesh m;
        m.counts[0] = c.count;
        m.ends[1] = c.target;
        KxMessageCapture capture;
        EXPECT_FALSE(readKorvaMeshToSpatialGraph(m.mesh, "lying.kxm"));
        ASSERT_EQ(capture.numErrors(), 1) << capture.text();
        EXPECT_NE(capture.lines()[0].find(c.problem), std::string::npos) << capture.text();
    }
}

TEST(SpatialGraphKorvaMeshTest, BrokenLabelTreeLoadsWithOneWarning) {
    CurrentMesh m;
    m.mesh.createData("Kind", m.mesh.findLocation("VERTEX"), PrimType::INT32, 1, m.vertexValues);
    KxParamBundle* group = m.mesh.getParameters().addBundle("Kind");
    group->setInt("Id", 0);
    group->setColor(Color(1, 1, 1));
    group->addBundle("NoId")->setColor(Color(0, 0, 1));
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> g(readKorvaMeshToSpatialGraph(m.mesh, "labels.kxm"));
    ASSERT_TRUE(g);
    EXPECT_TRUE(g->getLabelGroup("Kind"));
    EXPECT_EQ(
        capture.lines().back(),
        "Warning: The attributes are inconsistent.  It is unsafe to continue using Korva with the loaded "
        "SpatialGraph.");
}

}  // namespace
