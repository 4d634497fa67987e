#include <gtest/gtest.h>

#include <tcl.h>

#include <vector>

#include "korva/core/KxData.h"
#include "korva/core/KxSpatialData.h"

TEST(KxDataTest, FireTellsListenersTheAccumulatedMaskOnce) {
    KxData data;
    std::vector<unsigned int> heard;
    int id = data.addListener([&](KxData&, unsigned int mask) { heard.push_back(mask); });
    data.fire();
    EXPECT_TRUE(heard.empty()) << "nothing touched, nothing fired";
    EXPECT_FALSE(data.isModified());

    data.touch(KxData::NEW_DATA);
    data.touch(KxData::NEW_PARAMETERS);
    EXPECT_TRUE(data.isModified());
    EXPECT_EQ(data.getTouchMask(), KxData::NEW_DATA | KxData::NEW_PARAMETERS);
    data.fire();
    data.fire();
    EXPECT_EQ(heard, std::vector<unsigned int>{KxData::NEW_DATA | KxData::NEW_PARAMETERS});
    EXPECT_EQ(data.getTouchMask(), 0u);

    data.removeListener(id);
    data.touch();
    data.fire();
    EXPECT_EQ(heard.size(), 1u);
}

TEST(KxDataTest, ListenersMayAddAndRemoveListenersWhileFiring) {
    KxData data;
    int calls = 0;
    int second = 0;
    int first = data.addListener([&](KxData& d, unsigned int) {
        ++calls;
        d.removeListener(first);
        d.removeListener(second);
    });
    second = data.addListener([&](KxData&, unsigned int) { ++calls; });
    data.touch();
    data.fire();
    EXPECT_EQ(calls, 1) << "a listener removed during a fire is not called any more";
    data.touch();
    data.fire();
    EXPECT_EQ(calls, 1);
    // Listeners added during a fire hear the next one.
    int added = 0;
    data.addListener([&](KxData& d, unsigned int) {
        if (added == 0) {
            d.addListener([&](KxData&, unsigned int) { ++added; });
        }
    });
    data.touch();
    data.fire();
    EXPECT_EQ(added, 0);
    data.touch();
    data.fire();
    EXPECT_EQ(added, 1);
}

TEST(KxDataTest, TransformCommandsOfSpatialData) {
    KxSpatialData data;
    data.setLabel("d");
    EXPECT_TRUE(data.isTransformIdentity());
    unsigned int heard = 0;
    data.addListener([&](KxData&, unsigned int mask) { heard = mask; });
    Tcl_Interp* interp = Tcl_CreateInterp();
    const char* set[] = {
        "d", "setTransform", "1", "0", "0", "0", "0", "1", "0", "0", "0", "0", "1", "0", "5", "6", "7", "1"};
    ASSERT_EQ(data.parse(interp, 18, const_cast<char**>(set)), TCL_OK) << Tcl_GetStringResult(interp);
    EXPECT_EQ(heard, static_cast<unsigned int>(KxData::NEW_TRANSFORM));
    EXPECT_EQ(data.getTransform()[3][0], 5.0f);
    const char* get[] = {"d", "getTransform"};
    ASSERT_EQ(data.parse(interp, 2, const_cast<char**>(get)), TCL_OK);
    EXPECT_STREQ(Tcl_GetStringResult(interp),
                 "1.0 0.0 0.0 0.0 0.0 1.0 0.0 0.0 0.0 0.0 1.0 0.0 5.0 6.0 7.0 1.0");
    const char* bad[] = {"d", "setTransform", "1"};
    EXPECT_EQ(data.parse(interp, 3, const_cast<char**>(bad)), TCL_ERROR);
    Tcl_DeleteInterp(interp);
}
