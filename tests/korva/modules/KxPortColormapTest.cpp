#include "korva/modules/KxPortColormap.h"

#include <gtest/gtest.h>

#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/data/KxColormap.h"
#include "korva/modules/KxModule.h"
#include "support/TclEval.h"

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

TEST(KxPortColormapTest, ConnectsToTheDefaultColormapAndSavesItsSettings) {
    auto* defaultColormap = new KxColormap;
    theObjectPool->add(defaultColormap, KxColormap::defaultLabel);
    auto* module = new KxModule;
    theObjectPool->add(module, "View");
    {
        KxPortColormap port(module, "colormap", "Colormap");
        EXPECT_EQ(port.getColormap(), defaultColormap);
        EXPECT_FALSE(port.isNew());
        KxTclInterpreter tcl(*theObjectPool);
        evalOk(tcl, "View colormap setDefaultColor 1 0.5 0; View colormap setLocalRange 1 -2 2");
        EXPECT_EQ(evalOk(tcl, "View colormap getLocalRange"), "1 -2 2");
        std::string lines;
        module->savePorts(lines);
        EXPECT_NE(lines.find("{View} {colormap} connect {defaultColormap}\n"
                             "{View} {colormap} setDefaultColor 1 0.5 0\n"
                             "{View} {colormap} setLocalRange 1 -2 2\n"),
                  std::string::npos)
            << lines;
        // The colormap leaves the pool: the port falls back to its constant colour.
        evalOk(tcl, "defaultColormap setMinMax 0 1");
        theObjectPool->remove(defaultColormap);
        EXPECT_EQ(port.getColor(0.0f), SbColor(1, 0.5f, 0));
    }
    theObjectPool->remove(module);
}
