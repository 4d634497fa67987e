#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphComparison.h"
#include "support/GraphMeshes.h"

namespace {

// The label tree below a group bundle: "id (child id (...), child id)"; a
// bundle without an id shows -1.
std::string labelTree(const KxParamBundle* b) {
    if (!b) {
        return "missing";
    }
    int id = -1;
    b->findInt("Id", id);
    std::string s = std::to_string(id);
    for (int i = 0; i < b->getNumBundles(); ++i) {
        s += (i ? ", " : " (") + std::string(b->getBundle(i)->getName()) + " " + labelTree(b->getBundle(i));
    }
    return b->getNumBundles() ? s + ")" : s;
}

std::vector<int> intValues(const GraphAttribute* a) {
    const int* v = static_cast<const int*>(a->dataPtr());
    return std::vector<int>(v, v + a->size());
}

TEST(SpatialGraphKorvaMeshLegacyTest, ConvertsTopologyAndOptionalDataAndGivesLandmarkLabelsTheFixedIds) {
    LegacyMesh legacy;
    legacy.addOptionalData();
    float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    legacy.mesh.getParameters().setFloats("TransformationMatrix", matrix, 16);
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> g(readKorvaMeshToSpatialGraph(legacy.mesh, "old.kxm"));
    ASSERT_TRUE(g);
    EXPECT_EQ(capture.lines(), std::vector<std::string>{"Reading legacy spatialGraph"});
    EXPECT_TRUE(graphIsConsistent(*g));
    ASSERT_EQ(g->getNumEdges(), 2);
    EXPECT_EQ(g->getNumEdgePoints(0), 3);
    EXPECT_EQ(g->getEdgePoint(0, 1).y, 0.1f);
    EXPECT_EQ(g->getEdgeTarget(1), 2);
    EXPECT_EQ(g->getTransform()[3][0], 5.0f);
    EXPECT_STREQ(g->getSaveInfoParam(), "KorvaMesh");
    EXPECT_STREQ(g->getLoadCmd(), "old.kxm");

    EXPECT_EQ(intValues(g->findVertexAttribute("VertexLabels")), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(intValues(g->findEdgeAttribute("EdgeLabels")), (std::vector<int>{2, 1}));
    // Split: vertex values first, edge values after; no group bundle, so the 1s stay.
    EXPECT_EQ(intValues(g->findVertexAttribute("GraphLabels")), (std::vector<int>{1, 2, 8}));
    EXPECT_EQ(intValues(g->findEdgeAttribute("GraphLabels")), (std::vector<int>{1, 7}));
    EXPECT_EQ(intValues(g->findVertexAttribute("GraphIntData")), (std::vector<int>{10, 11, 12}));
    EXPECT_EQ(intValues(g->findEdgeAttribute("GraphIntData")), (std::vector<int>{20, 21}));
    EXPECT_EQ(g->findEdgePointAttribute("EdgePointFloatData")->getFloatDataAtPoint(1, 1), 0.5f);
    // Label bundles are missing: no groups.
    EXPECT_EQ(g->getLabelGroups().size(), 0);

    // Graph labels whose bundle holds "Landmark" get the fixed ids.
    KxParamBundle* group = legacy.addGroup("GraphLabels", "UndefinedGraphLabel", {"Neuron", "Landmark"});
    KxParamBundle* neuron = group->getBundle("Neuron");
    neuron->addBundle("Dendrite")->addBundle("BasalDendrite");
    neuron->addBundle("Soma");
    KxParamBundle* barrel = group->getBundle("Landmark")->addBundle("Barrel");
    barrel->addBundle("cRow")->addBundle("C6");
    barrel->addBundle("greekRow")->addBundle("Delta");
    capture.clear();
    g.reset(readKorvaMeshToSpatialGraph(legacy.mesh, "old.kxm"));
    ASSERT_TRUE(g);
    EXPECT_EQ(labelTree(g->parameters().getBundle("GraphLabels")),
              "0 (Neuron 2 (Dendrite 3 (BasalDendrite 5), Soma 7), Landmark 8 (Barrel 11 (cRow 22 (C6 28), "
              "greekRow 43 (Delta 47))))");
    EXPECT_TRUE(g->getLabelGroup("GraphLabels"));
    // The undefined label's value 1 became the group's own 0.
    EXPECT_EQ(intValues(g->findVertexAttribute("GraphLabels")), (std::vector<int>{0, 2, 8}));
    EXPECT_EQ(intValues(g->findEdgeAttribute("GraphLabels")), (std::vector<int>{0, 7}));
    // Each missing label of the table is reported once; its children are skipped.
    for (const char* missing :
         {"ApicalDendrite", "Axon", "Pia", "Vessel", "aRow", "bRow", "dRow", "eRow", "A1"}) {
        bool reported = capture.contains(std::string("Warning: label \"") + missing +
                                         "\" not found. Skipping child labels.");
        EXPECT_EQ(reported, std::string(missing) != "A1") << missing;
    }
    EXPECT_TRUE(capture.contains("Warning: label \"C1\" not found. Skipping child labels."));
}

TEST(SpatialGraphKorvaMeshLegacyTest, FoldsUndefinedLabelsAndNumbersChildren) {
    LegacyMesh legacy;
    legacy.addOptionalData();
    legacy.addGroup("VertexLabels", "UndefinedVertexLabel", {"A", "B"});
    // Without its undefined child a group is not registered; its ids stay.
    legacy.addGroup("EdgeLabels", nullptr, {"C"});
    // Graph labels without "Landmark" are numbered in order, deeper ones keep their ids.
    KxParamBundle* graphLabels = legacy.addGroup("GraphLabels", nullptr, {"Neuron", "Glia", "Other"});
    graphLabels->getBundle("Glia")->addBundle("Astrocyte")->setInt("Id", 42);
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> g(readKorvaMeshToSpatialGraph(legacy.mesh, "old.kxm"));
    ASSERT_TRUE(g);
    const KxParamBundle* vertexGroup = g->parameters().getBundle("VertexLabels");
    ASSERT_TRUE(vertexGroup);
    EXPECT_EQ(labelTree(vertexGroup), "0 (A 1, B 2)");
    Color color;
    ASSERT_TRUE(vertexGroup->findColor(color));
    EXPECT_EQ(color, Color(0.25f, 0.5f, 0.75f));
    EXPECT_TRUE(g->getLabelGroup("VertexLabels"));
    EXPECT_FALSE(g->getLabelGroup("EdgeLabels"));
    EXPECT_EQ(labelTree(g->parameters().getBundle("EdgeLabels")), "-1 (C 99)");
    // Deliberate: vertex label values are left as they are.
    EXPECT_EQ(intValues(g->findVertexAttribute("VertexLabels")), (std::vector<int>{0, 1, 2}));

    EXPECT_EQ(labelTree(g->parameters().getBundle("GraphLabels")),
              "-1 (Neuron 1, Glia 2 (Astrocyte 42), Other 3)");
    // Without the undefined child the values stay and the group is still registered.
    EXPECT_EQ(intValues(g->findVertexAttribute("GraphLabels")), (std::vector<int>{1, 2, 8}));
    EXPECT_TRUE(g->getLabelGroup("GraphLabels"));
}

TEST(SpatialGraphKorvaMeshLegacyTest, RefusesIncompleteOrLyingLayouts) {
    struct Case {
        const char* what;
        void (*damage)(LegacyMesh&);
        const char* message;
    } cases[] = {
        {"counts past the points", [](LegacyMesh& m) { m.counts[1] = 3; },
         "Error: old.kxm: edge 1 has 3 points"},
        {"vertex out of range", [](LegacyMesh& m) { m.ends[3] = 3; },
         "Error: old.kxm: edge 1 refers to vertex 3, but there are 3 vertices."},
        {"graph array short",
         [](LegacyMesh& m) {
             m.mesh.createData("GraphIntData", m.mesh.createLocation("Graph", 4), PrimType::INT32, 1,
                               m.graphInts);
         },
         "Error: old.kxm: \"GraphIntData\" holds 4 values, fewer than the 5 vertices and edges."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LegacyMesh legacy;
        c.damage(legacy);
        KxMessageCapture capture;
        EXPECT_FALSE(readKorvaMeshToSpatialGraph(legacy.mesh, "old.kxm"));
        ASSERT_EQ(capture.lines().size(), 2u) << capture.text();
        EXPECT_EQ(capture.lines()[1].rfind(c.message, 0), 0u) << capture.text();
    }

    // Legacy files without point counts or edge points: the "expecting at least" message.
    KorvaMesh mesh;
    float vertices[3] = {0, 0, 0};
    int ends[2] = {0, 0};
    mesh.createData("VertexCoordinates", mesh.createLocation("Vertices", 1), PrimType::FLOAT32, 3, vertices);
    mesh.createData("EdgeConnectivity", mesh.createLocation("Edges", 1), PrimType::INT32, 2, ends);
    KxMessageCapture capture;
    EXPECT_FALSE(readKorvaMeshToSpatialGraph(mesh, "old.kxm"));
    EXPECT_EQ(capture.lines(),
              (std::vector<std::string>{
                  "Reading legacy spatialGraph",
                  "Error: KxSpatialGraph::readKorvaMesh: expecting at least  vertex coordinates, "
                  "edge connectivity, edge points in old.kxm."}));
}

}  // namespace
