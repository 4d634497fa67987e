#include <gtest/gtest.h>

#include "korva/data/KxColormap.h"
#include "korva/modules/KxPortColormap.h"

TEST(KxPortColormapTest, ConstantColourWithoutColormapAndLocalRangeOverridesOwnRange) {
    KxPortColormap port;
    port.setDefaultColor(SbColor(0, 1, 0));
    EXPECT_EQ(port.getColor(123.0f), SbColor(0, 1, 0));

    const float rgba[] = {0, 0, 0, 1, 1, 1, 1, 1};
    KxColormap colormap(2, rgba, 0.0f, 10.0f);
    port.setColormap(&colormap);
    EXPECT_EQ(port.getColor(10.0f), SbColor(1, 1, 1));
    EXPECT_FLOAT_EQ(port.getColor(5.0f)[0], 0.5f);
    port.setLocalRange(true, 0.0f, 5.0f);
    EXPECT_EQ(port.getColor(5.0f), SbColor(1, 1, 1));
    EXPECT_FLOAT_EQ(port.getMaxValue(), 5.0f);
    port.setLocalRange(false);
    EXPECT_FLOAT_EQ(port.getMaxValue(), 10.0f);
}
