#include <gtest/gtest.h>

#include <vector>

#include "korva/base/BitField.h"

namespace {
std::vector<uint32_t> words(const BitField& b) {
    return std::vector<uint32_t>(b.getWords(), b.getWords() + b.getNumWords());
}
}  // namespace

TEST(BitFieldTest, BitILiesInWordIOver32AtPositionIMod32AndResizeAddsClearBits) {
    BitField b(70);
    EXPECT_EQ(b.getNumWords(), 3);
    for (int i : {0, 5, 31, 32, 33, 63, 69}) {
        b.set(i);
    }
    EXPECT_EQ(words(b), (std::vector<uint32_t>{0x80000021u, 0x80000003u, 0x20u}));
    EXPECT_EQ(b.count(), 7);
    b.unset(31);
    b.set(5, false);
    EXPECT_EQ(words(b)[0], 0x1u);
    EXPECT_TRUE(b.test(69));
    EXPECT_FALSE(b[68]);

    b.setAll();
    EXPECT_EQ(b.count(), 70);
    b.resize(33);
    EXPECT_EQ(words(b), (std::vector<uint32_t>{0xffffffffu, 0x1u}));
    b.resize(64);
    EXPECT_EQ(b.count(), 33) << "bits cut off by a shrink do not come back";
    b.resize(0);
    EXPECT_EQ(b.getNumWords(), 0);
    EXPECT_TRUE(b.isEmpty());
    b.resize(3);
    EXPECT_EQ(b.count(), 0);
}

TEST(BitFieldTest, WholeFieldOperationsLeaveBitsPastTheSizeClear) {
    BitField b(37);
    b.set(3);
    b.toggleAll();
    EXPECT_EQ(b.count(), 36);
    EXPECT_EQ(words(b)[1], 0x1fu);
    b.toggleAll();
    EXPECT_EQ(b.count(), 1);

    // Words written directly are trimmed by clearUnusedBits.
    b.getWords()[1] = 0xffffffffu;
    b.clearUnusedBits();
    EXPECT_EQ(b.count(), 6);

    BitField small(37), large(37);
    small.set(3);
    large.set(3);
    large.set(36);
    EXPECT_TRUE(small.isSubsetOf(large));
    EXPECT_FALSE(large.isSubsetOf(small));
    BitField both = small;
    both |= large;
    EXPECT_EQ(both, large);
    both &= small;
    EXPECT_EQ(both, small);
    large.subtract(small);
    EXPECT_EQ(large.count(), 1);
    EXPECT_TRUE(large.test(36));
    EXPECT_NE(large, small);
}
