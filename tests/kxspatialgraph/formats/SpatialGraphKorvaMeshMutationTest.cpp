#include <gtest/gtest.h>

#include "fuzz/KorvaMeshMutator.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"
#include "kxspatialgraph/formats/SkeletonGraphKorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphFixtures.h"
#include "support/GraphMeshes.h"
#include "support/TempDir.h"

namespace {

// Damaged graph and skeleton files that still parse as KorvaMesh files must
// not crash the graph readers either: forged counts, edge ends and neighbour
// indices are refused or reported, never followed out of the arrays.
TEST(SpatialGraphKorvaMeshMutationTest, DamagedGraphFilesNeverCrashTheReaders) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> g = GraphFixtures::makeLoop();
    GraphFixtures::addIdentityMarkers(*g);
    std::string graphFile = dir.path("g.kxm");
    ASSERT_EQ(g->saveKorvaMesh(graphFile.c_str(), KxSpatialGraph::KorvaMeshEncoding::Ascii), 1);

    Skeleton skeleton;  // a branch point with three arms
    skeleton.neighbours = {{1}, {0, 2, 4}, {1, 3}, {2}, {1}};
    skeleton.build();
    std::string skeletonFile = dir.path("s.kxm");
    ASSERT_EQ(skeleton.mesh.write(skeletonFile.c_str(), 1), 1);

    KorvaMeshMutator mutator(77);
    int built = 0;
    for (const std::string& path : {graphFile, skeletonFile}) {
        const std::string seed = readFileBytes(path);
        for (int n = 0; n < 1500; ++n) {
            std::string input = mutator.mutate(seed);
            KxMessageCapture capture;
            std::unique_ptr<KorvaMesh> mesh =
                KorvaMesh::readFromMemory(input.data(), input.size(), "mutated");
            if (!mesh) {
                continue;
            }
            std::unique_ptr<KxSpatialGraph> graph(path == graphFile
                                                      ? readKorvaMeshToSpatialGraph(*mesh, "mutated")
                                                      : loadSkeletonGraph(*mesh, "mutated"));
            built += graph ? 1 : 0;
        }
    }
    // Some damage leaves valid files (a changed coordinate digit, say).
    EXPECT_GT(built, 0);
}

}  // namespace
