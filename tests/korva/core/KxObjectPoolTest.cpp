#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "korva/core/KxData.h"
#include "korva/core/KxObjectPool.h"

namespace {

// Counts its own destructions so that tests see who deleted what.
class CountedData : public KxData {
public:
    explicit CountedData(int* deletions) : deletions_(deletions) {}
    ~CountedData() override { ++*deletions_; }

private:
    int* deletions_;
};

}  // namespace

TEST(KxObjectPoolTest, ClashingLabelsGetNumbersBeforeTheExtension) {
    KxObjectPool pool;
    std::vector<std::string> labels;
    for (const char* label : {"tree.swc", "tree.swc", "tree.swc", "tree2.swc", ".hidden", ".hidden", "",
                              static_cast<const char*>(nullptr)}) {
        labels.emplace_back(pool.add(new KxData, label));
    }
    // A label that already ends in digits continues the count instead of appending.
    EXPECT_EQ(labels, (std::vector<std::string>{"tree.swc", "tree2.swc", "tree3.swc", "tree4.swc", ".hidden",
                                                ".hidden2", "Data", "Data2"}));
    ASSERT_TRUE(pool.remove("tree2.swc"));
    EXPECT_STREQ(pool.add(new KxData, "tree.swc"), "tree2.swc") << "a freed label is given out again";
}

TEST(KxObjectPoolTest, FindRemoveTakeAndRename) {
    int deletions = 0;
    KxObjectPool pool;
    KxData* a = new CountedData(&deletions);
    KxData* b = new CountedData(&deletions);
    pool.add(a, "a");
    pool.add(b, "b");
    EXPECT_STREQ(pool.add(a, "other"), "a") << "adding an object twice changes nothing";
    EXPECT_EQ(pool.size(), 2);
    EXPECT_EQ(pool.find("a"), a);
    EXPECT_EQ(pool.findData("b"), b);
    EXPECT_EQ(pool.find("c"), nullptr);

    EXPECT_STREQ(pool.rename(a, "b"), "b2");
    EXPECT_EQ(pool.find("a"), nullptr);
    EXPECT_EQ(pool.find("b2"), a);

    EXPECT_EQ(pool.take(a), a);
    EXPECT_EQ(deletions, 0);
    EXPECT_FALSE(pool.contains(a));
    EXPECT_EQ(pool.take(a), nullptr);
    delete a;
    EXPECT_EQ(deletions, 1);

    EXPECT_FALSE(pool.remove("nothing"));
    EXPECT_TRUE(pool.remove(b));
    EXPECT_EQ(deletions, 2);
    EXPECT_EQ(pool.size(), 0);

    pool.add(new CountedData(&deletions), "x");
    pool.add(new CountedData(&deletions), "y");
    pool.clear();
    EXPECT_EQ(deletions, 4);
}

TEST(KxObjectPoolTest, DestructionDeletesObjectsWithoutNotifying) {
    int deletions = 0;
    int notifications = 0;
    {
        KxObjectPool pool;
        pool.add(new CountedData(&deletions), "a");
        pool.add(new CountedData(&deletions), "b");
        pool.addObserver([&](KxObjectPool::Event, KxObject*, const char*) { ++notifications; });
    }
    EXPECT_EQ(deletions, 2);
    EXPECT_EQ(notifications, 0);
}
