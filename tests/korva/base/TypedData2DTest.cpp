#include <gtest/gtest.h>

#include "korva/base/TypedData2D.h"

TEST(TypedData2DTest, RowsAreContiguousBlocksOfComponents) {
    TypedData2D d(PrimType::FLOAT32, 3, 2);
    EXPECT_EQ(d.getRowBytes(), 8);
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 2; ++c) {
            d.setDouble(r, c, 10 * r + c);
        }
    }
    const float* raw = static_cast<const float*>(d.getData());
    EXPECT_EQ(raw[5], 21.0f);
    EXPECT_EQ(static_cast<const float*>(d.getRow(1))[0], 10.0f);
    TypedData2D same(PrimType::FLOAT32, 3, 2);
    EXPECT_FALSE(d == same);
    same = d;
    EXPECT_TRUE(d == same);
    d.reset(PrimType::INT8, 2, 1);
    EXPECT_EQ(d.getInt(1, 0), 0);
}
