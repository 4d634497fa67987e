#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "korva/base/TypedElement.h"

TEST(TypedElementTest, ValuesConvertThroughTheStoredType) {
    TypedElement e(PrimType::INT32, 3);
    EXPECT_EQ(e.getNumBytes(), 12);
    e.setFloat(0, 2.75f);
    EXPECT_EQ(e.getInt(0), 2) << "an int attribute truncates";
    e.setInt(1, -7);
    EXPECT_FLOAT_EQ(e.getFloat(1), -7.0f);
    EXPECT_EQ(e.getInt(2), 0) << "reset values are zero";
    TypedElement f(PrimType::FLOAT32, 3);
    f.setDouble(0, 0.1);
    EXPECT_EQ(f.getFloat(0), 0.1f);
    EXPECT_FALSE(e == f);
}

TEST(TypedElementTest, OutOfRangeValuesSaturateInIntegerTypes) {
    struct Case {
        PrimType::Type type;
        double value;
        double expected;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {PrimType::INT32, 1e20, 2147483647.0},
        {PrimType::INT32, -1e20, -2147483648.0},
        {PrimType::INT32, nan, 0.0},
        {PrimType::UINT8, -1.0, 0.0},
        {PrimType::UINT8, 300.0, 255.0},
        {PrimType::INT16, -40000.0, -32768.0},
        {PrimType::INT64, 1e30, static_cast<double>(std::numeric_limits<int64_t>::max())},
        {PrimType::UINT32, 4294967295.0, 4294967295.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(PrimType(c.type).getName());
        TypedElement e(c.type, 1);
        e.setDouble(0, c.value);
        EXPECT_EQ(e.getDouble(0), c.expected);
    }
    TypedElement f(PrimType::FLOAT32, 1);
    f.setDouble(0, nan);
    EXPECT_TRUE(std::isnan(f.getDouble(0))) << "floats keep NaN";
}
