#include "kxspatialgraph/formats/KorvaMeshFormatEntries.h"

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxPackageLoader.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/GraphMeshes.h"
#include "support/PackageFormatsTest.h"
#include "support/TempDir.h"

namespace {

using KorvaMeshFormatEntriesTest = PackageFormatsTest;

TEST_F(KorvaMeshFormatEntriesTest, RegistryReadsAndWritesGraphFiles) {
    std::unique_ptr<KxSpatialGraph> g = GraphFixtures::makeLoop();
    GraphFixtures::addIdentityMarkers(*g);
    std::string original = dir_.path("loop.kxm");
    ASSERT_EQ(g->saveKorvaMesh(original.c_str()), 1);

    // Recognised by content, whatever the extension.
    std::string renamed = dir_.path("loop.data");
    std::rename(original.c_str(), renamed.c_str());
    const KxFileFormat* reader = theFileFormats->findReader(renamed.c_str());
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->name, "KorvaMesh");

    KxSpatialGraph* loaded = load(renamed);
    ASSERT_TRUE(loaded);
    GraphComparisonOptions options;
    options.compareAttributeIds = false;
    EXPECT_EQ(describeDifference(*g, *loaded, options), "");

    const KxFileFormat* writer = theFileFormats->findWriter("out.kxm", loaded);
    ASSERT_TRUE(writer);
    EXPECT_EQ(writer->name, "KorvaMesh");
    for (const char* format : {"KorvaMesh", "KorvaMeshASCII", "KorvaMeshCompressed"}) {
        SCOPED_TRACE(format);
        std::string path = dir_.path(std::string(format) + ".kxm");
        ASSERT_TRUE(theFileFormats->save(*theFileFormats->find(format), loaded, path.c_str()));
        EXPECT_STREQ(loaded->getLoadCmd(), path.c_str());
        KxSpatialGraph* again = load(path);
        ASSERT_TRUE(again);
        EXPECT_EQ(describeDifference(*g, *again, options), "");
    }
    EXPECT_EQ(readFileBytes(dir_.path("KorvaMeshASCII.kxm")).rfind("KorvaMesh 1 ascii\n", 0), 0u);
}

TEST_F(KorvaMeshFormatEntriesTest, DispatchesByContent) {
    Skeleton skeleton;  // three points in a line
    skeleton.neighbours = {{1}, {0, 2}, {1}};
    std::string path = dir_.path("skeleton.kxm");
    ASSERT_EQ(skeleton.build().write(path.c_str(), 1), 1);
    KxSpatialGraph* g = load(path);
    ASSERT_TRUE(g);
    EXPECT_EQ(g->getNumEdges(), 1);
    EXPECT_EQ(g->getTotalNumEdgePoints(), 3);

    LegacyMesh legacy;
    path = dir_.path("legacy.kxm");
    ASSERT_EQ(legacy.mesh.write(path.c_str(), 0), 1);
    KxMessageCapture capture;
    g = load(path);
    ASSERT_TRUE(g) << capture.text();
    EXPECT_EQ(g->getNumEdges(), 2);
    EXPECT_TRUE(capture.contains("Reading legacy spatialGraph"));

    // Other content is refused by name.
    KorvaMesh other;
    other.getParameters().setString("ContentType", "KxSurface");
    path = dir_.path("surface.kxm");
    ASSERT_EQ(other.write(path.c_str(), 1), 1);
    capture.clear();
    EXPECT_FALSE(load(path));
    EXPECT_TRUE(capture.contains("Error: KorvaMesh file " + path +
                                 " holds content type \"KxSurface\", which no reader of this package reads."))
        << capture.text();
}

}  // namespace
