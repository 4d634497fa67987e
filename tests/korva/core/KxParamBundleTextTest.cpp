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
    const char* cases[] = {
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
    for (const char* text : cases) {
        SCOPED_TRACE(text);
        KxParamBundle b;
        b.setInt("keep", 1);
        std::string error;
        EXPECT_FALSE(b.fromText(text, std::strlen(text), error));
        EXPECT_FALSE(error.empty());
        int v = 0;
        EXPECT_TRUE(b.findInt("keep", v));
        EXPECT_EQ(b.getNumBundles(), 0);
    }
}
