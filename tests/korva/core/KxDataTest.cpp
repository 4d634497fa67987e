#include <gtest/gtest.h>

#include <vector>

#include "korva/core/KxData.h"

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
    int added = 0;
    int second = 0;
    int first = data.addListener([&](KxData& d, unsigned int) {
        ++calls;
        d.removeListener(first);
        d.removeListener(second);
        d.addListener([&](KxData&, unsigned int) { ++added; });
    });
    second = data.addListener([&](KxData&, unsigned int) { ++calls; });
    data.touch();
    data.fire();
    EXPECT_EQ(calls, 1) << "a listener removed during a fire is not called any more";
    EXPECT_EQ(added, 0) << "a listener added during a fire hears the next one";
    data.touch();
    data.fire();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(added, 1);
}
