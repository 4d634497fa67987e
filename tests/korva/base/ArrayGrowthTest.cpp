#include <gtest/gtest.h>

#include <string>

#include "korva/base/DArray.h"
#include "korva/base/SmallArray.h"

TEST(DArrayTest, EditsKeepOrderAndOwnElementsSurviveReallocation) {
    DArray<int> a{0, 1, 2, 3, 4};
    a.insert(0, 10);
    a.insert(6, 11);
    a.remove(2, 2);
    EXPECT_EQ(a, (DArray<int>{10, 0, 3, 4, 11}));
    a.sort();
    EXPECT_EQ(a, (DArray<int>{0, 3, 4, 10, 11}));
    EXPECT_EQ(a.find(10), 3);
    EXPECT_EQ(a.find(7), -1);

    // Copies of the array's own elements must be taken before its buffer moves.
    DArray<std::string> s;
    s.append(std::string(40, 'x'));
    for (int i = 0; i < 20; ++i) {
        s.append(s[0]);
        s.insert(0, s[s.size() - 1]);
    }
    EXPECT_EQ(s, DArray<std::string>(41, std::string(40, 'x')));
    DArray<int> b{1, 2, 3};
    b.append(b.size(), b.dataPtr());
    b.insert(1, 2, b.dataPtr() + 4);
    EXPECT_EQ(b, (DArray<int>{1, 2, 3, 2, 3, 1, 2, 3}));
}

TEST(SmallArrayTest, CopiesMovesAndResizesCrossBetweenInlineAndHeap) {
    SmallArray<int, 2> small;
    small.append(7);
    SmallArray<int, 2> big;
    big.resize(5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(big[i], 0) << "new elements are zero";
        big[i] = i;
    }
    SmallArray<int, 2> a = small, b = big;
    EXPECT_EQ(a, small);
    EXPECT_EQ(b, big);
    SmallArray<int, 2> c = std::move(b);
    EXPECT_EQ(c, big);
    EXPECT_EQ(b.size(), 0);  // NOLINT(bugprone-use-after-move): a moved-from array is empty
    a = c;
    EXPECT_EQ(a, big);
    c = small;
    EXPECT_TRUE(c.isInline());
    EXPECT_EQ(c, small);

    big.resize(2);
    EXPECT_TRUE(big.isInline());
    EXPECT_EQ(big[1], 1);
    big.resize(3);
    EXPECT_EQ(big[2], 0) << "a regrown element does not bring back an old value";
    big.clear();
    EXPECT_TRUE(big.isInline());
    EXPECT_EQ(big.size(), 0);
}

TEST(SmallArrayTest, AppendAndInsertOfOwnElementAtTheInlineBoundary) {
    SmallArray<int, 2> s;
    s.append(7);
    s.append(8);
    s.append(s[0]);  // moves to the heap while reading its inline element
    EXPECT_EQ(s.size(), 3);
    EXPECT_EQ(s[2], 7);
    s.remove(0);
    s.insert(0, s[1]);  // full inline array of 2 again after the removal
    EXPECT_FALSE(s.isInline());
    EXPECT_EQ(s[0], 7);
    EXPECT_EQ(s[1], 8);
    EXPECT_EQ(s[2], 7);
    EXPECT_EQ(s.find(8), 1);
    EXPECT_EQ(s.find(9), -1);
    s.insert(1, 9);
    EXPECT_EQ(s[1], 9);
    EXPECT_EQ(s[2], 8);
}
