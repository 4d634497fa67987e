#include <gtest/gtest.h>

#include <Inventor/SoInput.h>
#include <Inventor/SoOutput.h>

#include "korva/inventor/KxInventor.h"
#include "korva/inventor/SoMFBit.h"

TEST(SoMFBitTest, LastValueRepeatsAndGrowthAddsClearedFlags) {
    KxInventor::init();
    SoMFBit bits;
    EXPECT_FALSE(bits.test(0));
    bits.setValue(1);
    EXPECT_TRUE(bits.test(0));
    EXPECT_TRUE(bits.test(1000));  // a single value stands for all
    bits.setAll(4, false);
    bits.setRange(6, 2, true);  // grows over index 4 and 5, which stay clear
    ASSERT_EQ(bits.getNum(), 8);
    const bool expected[] = {false, false, false, false, false, false, true, true};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(bits.test(i), expected[i]) << i;
    }
    EXPECT_EQ(bits.countSet(), 2);
    EXPECT_FALSE(bits.test(-1));
}

TEST(SoMFBitTest, WritesAndReadsZeroOneValues) {
    KxInventor::init();
    SoMFBit bits;
    bits.setAll(3, false);
    bits.set1Value(1, 1);
    SbString text;
    bits.get(text);
    SoMFBit read;
    ASSERT_TRUE(read.set(text.getString())) << text.getString();
    ASSERT_EQ(read.getNum(), 3);
    EXPECT_TRUE(read == bits);
    SoMFBit bad;
    EXPECT_FALSE(bad.set("[0, 2, 1]"));
}
