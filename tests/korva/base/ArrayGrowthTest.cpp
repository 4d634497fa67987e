#include <gtest/gtest.h>

#include "korva/base/DArray.h"
#include "korva/base/SmallArray.h"

TEST(DArrayTest, AppendGrowsByHalfOrOne) {
    DArray<int> a;
    std::vector<int> capacities;
    for (int i = 0; i < 10; ++i) {
        a.append(i);
        capacities.push_back(a.capacity());
    }
    // 0 -> 1 -> 2 -> 3 -> 4 -> 6 -> 9 -> 13
    EXPECT_EQ(capacities, (std::vector<int>{1, 2, 3, 4, 6, 6, 9, 9, 9, 13}));
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(a[i], i);
    }
}

TEST(DArrayTest, InsertRemoveKeepOrder) {
    DArray<int> a{0, 1, 2, 3, 4};
    a.insert(0, 10);
    a.insert(6, 11);
    a.remove(2, 2);
    EXPECT_EQ(a, (DArray<int>{10, 0, 3, 4, 11}));
    a.sort();
    EXPECT_EQ(a, (DArray<int>{0, 3, 4, 10, 11}));
    EXPECT_EQ(a.find(10), 3);
    EXPECT_EQ(a.find(7), -1);
}

TEST(SmallArrayTest, MovesToHeapPastInlineSizeAndBackWhenSmall) {
    SmallArray<int, 2> s;
    s.append(1);
    s.append(2);
    EXPECT_TRUE(s.isInline());
    EXPECT_EQ(s.capacity(), 2);
    s.append(3);  // 2 -> max(3, 3)
    EXPECT_FALSE(s.isInline());
    EXPECT_EQ(s.capacity(), 3);
    s.append(4);  // 3 -> max(4, 4)
    EXPECT_EQ(s.capacity(), 4);
    s.append(5);  // 4 -> max(6, 5)
    EXPECT_EQ(s.capacity(), 6);
    s.remove(0, 2);
    EXPECT_FALSE(s.isInline());
    s.remove(1);
    EXPECT_TRUE(s.isInline());
    ASSERT_EQ(s.size(), 2);
    EXPECT_EQ(s[0], 3);
    EXPECT_EQ(s[1], 5);
}

TEST(SmallArrayTest, CopiesAndMovesInBothStates) {
    SmallArray<int, 2> small;
    small.append(7);
    SmallArray<int, 2> big;
    for (int i = 0; i < 5; ++i) {
        big.append(i);
    }
    SmallArray<int, 2> a = small, b = big;
    EXPECT_EQ(a, small);
    EXPECT_EQ(b, big);
    SmallArray<int, 2> c = std::move(b);
    EXPECT_EQ(c, big);
    EXPECT_EQ(b.size(), 0);
    a = c;
    EXPECT_EQ(a, big);
    c = small;
    EXPECT_TRUE(c.isInline());
    EXPECT_EQ(c, small);
    c.insert(0, 9);
    c.insert(1, 8);
    EXPECT_EQ(c[0], 9);
    EXPECT_EQ(c[1], 8);
    EXPECT_EQ(c[2], 7);
}
