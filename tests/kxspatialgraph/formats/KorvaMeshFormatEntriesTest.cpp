#include "kxspatialgraph/formats/KorvaMeshFormatEntries.h"

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

// Graph files in each encoding, skeletons and legacy graphs are recognised by
// their content, whatever the extension.
TEST_F(KorvaMeshFormatEntriesTest, SavesEachEncodingAndDispatchesByContent) {
    std::unique_ptr<KxSpatialGraph> g = GraphFixtures::makeLoop();
    GraphFixtures::addIdentityMarkers(*g);
    EXPECT_EQ(theFileFormats->findWriter("out.kxm", g.get())->name, "KorvaMesh");
    for (const char* format : {"KorvaMesh", "KorvaMeshASCII", "KorvaMeshCompressed"}) {
        SCOPED_TRACE(format);
        std::string path = dir_.path(std::string(format) + ".data");
        ASSERT_TRUE(theFileFormats->save(*theFileFormats->find(format), g.get(), path.c_str()));
        EXPECT_STREQ(g->getLoadCmd(), path.c_str());
        KxSpatialGraph* again = load(path);
        ASSERT_TRUE(again);
        EXPECT_EQ(describeDifference(*g, *again, {false, false}), "");
    }
    EXPECT_EQ(readFileBytes(dir_.path("KorvaMeshASCII.data")).rfind("KorvaMesh 1 ascii\n", 0), 0u);

    Skeleton skeleton;  // three points in a line
    skeleton.neighbours = {{1}, {0, 2}, {1}};
    std::string path = dir_.path("skeleton.data");
    ASSERT_EQ(skeleton.build().write(path.c_str(), 1), 1);
    KxSpatialGraph* loaded = load(path);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->getNumEdges(), 1);
    EXPECT_EQ(loaded->getTotalNumEdgePoints(), 3);

    LegacyMesh legacy;
    path = dir_.path("legacy.kxm");
    ASSERT_EQ(legacy.mesh.write(path.c_str(), 0), 1);
    KxMessageCapture capture;
    loaded = load(path);
    ASSERT_TRUE(loaded) << capture.text();
    EXPECT_EQ(loaded->getNumEdges(), 2);
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
