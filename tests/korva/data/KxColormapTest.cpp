#include <gtest/gtest.h>

#include <cmath>

#include <string>
#include <vector>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxObjectPool.h"
#include "korva/data/KxColormap.h"
#include "support/TempDir.h"

TEST(KxColormapTest, InterpolatesOverTheRangeClampsOutsideAndResizes) {
    // Black, red, white over [10, 20].
    const float rgba[] = {0, 0, 0, 1, 1, 0, 0, 1, 1, 1, 1, 1};
    KxColormap colormap(3, rgba, 10.0f, 20.0f);
    EXPECT_EQ(colormap.getColor(10.0f), SbColor(0, 0, 0));
    EXPECT_EQ(colormap.getColor(15.0f), SbColor(1, 0, 0));
    SbColor quarter = colormap.getColor(12.5f);
    EXPECT_FLOAT_EQ(quarter[0], 0.5f);
    EXPECT_FLOAT_EQ(quarter[1], 0.0f);
    EXPECT_EQ(colormap.getColor(-100.0f), SbColor(0, 0, 0));
    EXPECT_EQ(colormap.getColor(100.0f), SbColor(1, 1, 1));
    // Another window, and a window of width 0, which gives the first entry.
    EXPECT_EQ(colormap.getColor(1.0f, 0.0f, 1.0f), SbColor(1, 1, 1));
    EXPECT_EQ(colormap.getColor(7.0f, 7.0f, 7.0f), SbColor(0, 0, 0));
    EXPECT_EQ(colormap.getColorAtFraction(std::nanf("")), SbColor(0, 0, 0));

    colormap.resize(4);
    EXPECT_EQ(colormap.getEntry(3)[3], 1.0f);  // new entries are opaque
    colormap.setEntry(2, SbColor(0, 0, 1), 0.5f);
    colormap.setEntry(9, SbColor(0, 1, 0));  // out of range: ignored
    EXPECT_EQ(colormap.getColorAtFraction(2.0f / 3.0f), SbColor(0, 0, 1));
    EXPECT_EQ(colormap.getEntry(2)[3], 0.5f);
}

TEST(KxColormapTest, KorvaMeshKeepsEntriesAndRange) {
    KxColormap::registerClass();
    const float rgba[] = {0, 0, 1, 1, 1, 0.5f, 0, 0.25f};
    KxColormap colormap(2, rgba, -3.0f, 7.5f);
    TempDir dir;
    std::string path = dir.path("ramp.kxm");
    ASSERT_EQ(colormap.saveKorvaMesh(path.c_str()), 1);
    std::vector<KxObject*> created;
    ASSERT_TRUE(theFileFormats->load(path.c_str(), created, *theObjectPool));
    ASSERT_EQ(created.size(), 1u);
    auto* read = dynamic_cast<KxColormap*>(created[0]);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->getNumEntries(), 2);
    EXPECT_EQ(std::vector<float>(read->getEntry(0), read->getEntry(0) + 8),
              std::vector<float>(rgba, rgba + 8));
    EXPECT_EQ(read->getMinCoord(), -3.0f);
    EXPECT_EQ(read->getMaxCoord(), 7.5f);
    theObjectPool->clear();
}
