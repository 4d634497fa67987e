#include <gtest/gtest.h>

#include "korva/core/KxParamBundle.h"

TEST(KxParamBundleTextTest, RoundTripsExactly) {
    KxParamBundle b("Parameters");
    b.setInt("Id", -7);
    b.setString("Name", "with \"quotes\" and\nnewline \\");
    float matrix[16];
    for (int i = 0; i < 16; ++i) {
        matrix[i] = 0.1f * static_cast<float>(i) + 1e-7f;
    }
    b.setFloats("TransformationMatrix", matrix, 16);
    b.setDouble("Precise", 0.1 + 0.2);
    KxParamBundle* neuron = b.addBundle("Neuron");
    neuron->setInt("Id", 0);
    neuron->setColor(Color(0.8f, 0.8f, 0.8f));
    neuron->addBundle("Axon")->setInt("Id", 1);
    neuron->addBundle("Soma { }")->setInts("Empty", nullptr, 0);

    std::string text = b.toText();
    KxParamBundle read("Parameters");
    std::string error;
    ASSERT_TRUE(read.fromText(text.data(), text.size(), error)) << error << "\n" << text;
    EXPECT_TRUE(read == b) << text << "\n---\n" << read.toText();
    EXPECT_EQ(read.getBundle("Neuron")->getBundle("Axon")->getParent(), read.getBundle("Neuron"));
}

TEST(KxParamBundleTextTest, MalformedTextIsRejectedAndLeavesBundleAlone) {
    auto nested = [](int levels) {
        std::string open, close;
        for (int i = 0; i < levels; ++i) {
            open += "\"a\" { ";
            close += "} ";
        }
        return open + close;
    };
    KxParamBundle deepest;
    std::string deepError, text = nested(KxParamBundle::kMaxDepth - 1);
    EXPECT_TRUE(deepest.fromText(text.data(), text.size(), deepError)) << deepError;
    EXPECT_EQ(deepest.height(), KxParamBundle::kMaxDepth);
    const std::string cases[] = {
        nested(KxParamBundle::kMaxDepth),
        nested(60000),
        "\"a\" int 1 x",
        "\"a\" int 2.5",
        "\"a\" int 99999999999",
        "\"a\" float 1e99x",
        "\"a\" {",
        "}",
        "\"a\" color 1",
        "a int 1",
        "\"a\" string 1",
        "\"unterminated",
        "\"a\" { \"b\" int 1 } }",
    };
    for (const std::string& text : cases) {
        SCOPED_TRACE(text.substr(0, 40));
        KxParamBundle b;
        b.setInt("keep", 1);
        std::string error;
        EXPECT_FALSE(b.fromText(text.data(), text.size(), error));
        EXPECT_FALSE(error.empty());
        int v = 0;
        EXPECT_TRUE(b.findInt("keep", v));
        EXPECT_EQ(b.getNumBundles(), 0);
    }
}
