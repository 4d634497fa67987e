#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "korva/base/HashTable.h"

TEST(HashTableTest, IterationFollowsInsertionOrderThroughRemovalsAndRehashes) {
    HashTable<int, int> t;
    // Keys whose hashes scatter; enough of them for several rehashes.
    auto key = [](int i) { return i * 7919 % 1009 - 500; };
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(t.insert(key(i), i));
    }
    EXPECT_FALSE(t.insert(key(10), -1)) << "a present key is not inserted again";
    EXPECT_EQ(*t.lookup(key(10)), 10);
    std::vector<int> survivors;
    for (int i = 0; i < 1000; ++i) {
        if (i % 3 == 0) {
            ASSERT_TRUE(t.remove(key(i)));
        } else {
            survivors.push_back(key(i));
        }
    }
    EXPECT_FALSE(t.remove(key(0)));
    EXPECT_EQ(t.keys(), survivors);
    // A removed key inserted again goes to the end; enough inserts to rebuild.
    t.insert(key(0), 0);
    survivors.push_back(key(0));
    for (int i = 0; i < 2000; ++i) {
        t.insert(10000 + i, i);
        survivors.push_back(10000 + i);
    }
    EXPECT_EQ(t.keys(), survivors);
    EXPECT_EQ(t.size(), static_cast<int>(survivors.size()));
    for (int k : survivors) {
        ASSERT_TRUE(t.contains(k)) << k;
    }
    // Slots freed by removals are reused: one key coming and going neither
    // fills the table nor disturbs the order.
    for (int i = 0; i < 20000; ++i) {
        ASSERT_TRUE(t.insert(5000, i));
        ASSERT_TRUE(t.remove(5000));
    }
    EXPECT_EQ(t.keys(), survivors);
}

TEST(HashTableTest, StringKeysAreCopiedSetReplacesAndClearEmpties) {
    HashTable<const char*, int> t;
    char buffer[16];
    std::strcpy(buffer, "alpha");
    t.insert(buffer, 1);
    std::strcpy(buffer, "beta");
    t.insert(buffer, 2);
    std::strcpy(buffer, "zzzz");
    EXPECT_EQ(*t.lookup("alpha"), 1);
    EXPECT_EQ(*t.lookup("beta"), 2);
    EXPECT_EQ(t.lookup("zzzz"), nullptr);
    t.set("alpha", 3);
    std::vector<std::string> keys;
    t.forEach([&](const char* key, int) { keys.push_back(key); });
    EXPECT_EQ(keys, (std::vector<std::string>{"alpha", "beta"}));
    EXPECT_EQ(t.values(), (std::vector<int>{3, 2}));
    t.clear();
    EXPECT_EQ(t.lookup("alpha"), nullptr);
    t.set("b", 3);
    EXPECT_EQ(t.values(), std::vector<int>{3});
}
