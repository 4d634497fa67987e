#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "korva/core/KxParamBundle.h"

namespace {

std::vector<std::string> bundleNames(const KxParamBundle& b) {
    std::vector<std::string> names;
    for (int i = 0; i < b.getNumBundles(); ++i) {
        names.push_back(b.getBundle(i)->getName());
    }
    return names;
}

std::vector<std::string> paramNames(const KxParamBundle& b) {
    std::vector<std::string> names;
    for (int i = 0; i < b.getNumParams(); ++i) {
        names.push_back(b.getParam(i)->getName());
    }
    return names;
}

}  // namespace

TEST(KxParamBundleTest, LookupsCheckKindAndCount) {
    KxParamBundle b;
    float m[16];
    for (int i = 0; i < 16; ++i) {
        m[i] = static_cast<float>(i);
    }
    b.setFloats("TransformationMatrix", m, 16);
    b.setFloat("r", 2.5f);
    b.setInt("n", 3);
    b.setString("s", "x");
    b.setColor(Color(0.1f, 0.2f, 0.3f));
    b.setDouble("r", 0.25);  // replaced in place, kind changes
    EXPECT_EQ(b.findParam("r")->getKind(), KxParam::DOUBLE);

    double d[16];
    EXPECT_TRUE(b.findReals("TransformationMatrix", 16, d));
    EXPECT_EQ(d[15], 15.0);
    float wrong[4] = {-1, -1, -1, -1};
    EXPECT_FALSE(b.findReals("TransformationMatrix", 4, wrong));
    EXPECT_EQ(wrong[0], -1.0f) << "a failed lookup leaves the output alone";
    float f = 0;
    EXPECT_TRUE(b.findFloat("n", f)) << "numeric lookups accept any numeric kind";
    EXPECT_EQ(f, 3.0f);
    int i = 7;
    EXPECT_FALSE(b.findInt("s", i));
    EXPECT_FALSE(b.findInt("missing", i));
    EXPECT_EQ(i, 7);
    String s;
    EXPECT_FALSE(b.findString("n", s));
    EXPECT_TRUE(b.findString("s", s));
    EXPECT_EQ(s, "x");
    Color c;
    ASSERT_TRUE(b.findColor(c));
    EXPECT_EQ(c, Color(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(b.findParam("color")->getKind(), KxParam::FLOAT);
    EXPECT_TRUE(b.removeParam("s"));
    EXPECT_FALSE(b.removeParam("s"));
    EXPECT_EQ(paramNames(b), (std::vector<std::string>{"TransformationMatrix", "r", "n", "color"}));
}

TEST(KxParamBundleTest, SubBundlesInsertMoveTakeAndRemoveInOrder) {
    KxParamBundle root("root");
    for (const char* name : {"a", "b", "c", "d"}) {
        root.addBundle(name);
    }
    EXPECT_TRUE(root.moveBundle(0, 3));
    EXPECT_EQ(bundleNames(root), (std::vector<std::string>{"b", "c", "d", "a"}));
    EXPECT_TRUE(root.moveBundle(3, 1));
    EXPECT_EQ(bundleNames(root), (std::vector<std::string>{"b", "a", "c", "d"}));
    EXPECT_FALSE(root.moveBundle(0, 4));
    EXPECT_FALSE(root.moveBundle(-1, 0));
    EXPECT_EQ(bundleNames(root), (std::vector<std::string>{"b", "a", "c", "d"}));

    KxParamBundle* c = root.takeBundle(root.indexOfBundle("c"));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->getParent(), nullptr);
    root.insertBundle(c, 0);
    EXPECT_EQ(c->getParent(), &root);
    EXPECT_EQ(bundleNames(root), (std::vector<std::string>{"c", "b", "a", "d"}));
    EXPECT_EQ(root.takeBundle(4), nullptr);

    EXPECT_TRUE(root.removeBundle("b"));
    EXPECT_TRUE(root.removeBundle(root.getBundle("d")));
    EXPECT_FALSE(root.removeBundle("d"));
    EXPECT_EQ(bundleNames(root), (std::vector<std::string>{"c", "a"}));
}

TEST(KxParamBundleTest, CopiesAreDeepAndIndependent) {
    KxParamBundle original("Parameters");
    KxParamBundle* labels = original.addBundle("Labels");
    labels->addBundle("Axon")->setInt("Id", 1);
    labels->setColor(Color(1, 0, 0));

    KxParamBundle copy(original);
    EXPECT_EQ(copy, original);
    KxParamBundle* copiedAxon = copy.getBundle("Labels")->getBundle("Axon");
    EXPECT_NE(copiedAxon, labels->getBundle("Axon"));
    EXPECT_EQ(copiedAxon->getParent(), copy.getBundle("Labels"));
    copiedAxon->setInt("Id", 2);
    int id = 0;
    labels->getBundle("Axon")->findInt("Id", id);
    EXPECT_EQ(id, 1) << "changing the copy leaves the original alone";
    EXPECT_NE(copy, original);

    KxParamBundle assigned("other");
    assigned.setInt("gone", 1);
    assigned = original;
    EXPECT_EQ(assigned, original);
    EXPECT_FALSE(assigned.hasParam("gone"));

    // Copying the contents of one's own sub-bundle must not read freed memory.
    original.copyContentsFrom(*labels);
    EXPECT_EQ(bundleNames(original), std::vector<std::string>{"Axon"});
    EXPECT_TRUE(original.hasColor());
    EXPECT_EQ(original.getBundle("Axon")->getParent(), &original);
}
