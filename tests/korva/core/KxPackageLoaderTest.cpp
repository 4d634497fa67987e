#include <gtest/gtest.h>

#include <dlfcn.h>

#include <fstream>
#include <string>
#include <vector>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxPackageLoader.h"

namespace {

// The test package's count of init calls, asked through its own library.
int testPackageInitCalls() {
    std::string path = thePackageLoader->getLibraryPath("kxtestpackage");
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (!handle) {
        return -1;
    }
    auto calls = reinterpret_cast<int (*)()>(dlsym(handle, "kxtestpackage_initCalls"));
    int n = calls ? calls() : -1;
    dlclose(handle);
    return n;
}

void loadTestPackage() {
    thePackageLoader->addSearchDir(KORVA_TEST_PACKAGE_DIR);
    KxMessageCapture capture;
    ASSERT_TRUE(thePackageLoader->load("kxtestpackage")) << capture.text();
    EXPECT_EQ(capture.lines().size(), 0u) << capture.text();
}

}  // namespace

TEST(KxPackageLoaderTest, LoadsOnceRegistersClassesAndFormats) {
    loadTestPackage();
    EXPECT_TRUE(thePackageLoader->load("kxtestpackage"));
    EXPECT_EQ(testPackageInitCalls(), 1);
    EXPECT_TRUE(thePackageLoader->isLoaded("kxtestpackage"));

    EXPECT_STREQ(theClassRegistry->getPackage("KxTestNote"), "kxtestpackage");
    const KxFileFormat* format = theFileFormats->find("Test note");
    ASSERT_NE(format, nullptr);
    EXPECT_EQ(format->package, "kxtestpackage");
    EXPECT_EQ(format->extensions, std::vector<std::string>{"note"});
    EXPECT_TRUE(format->read && format->write && format->check);

    std::string resources = thePackageLoader->getResourceDir("kxtestpackage");
    EXPECT_TRUE(std::ifstream(resources + "/kxtestpackage.rc").good()) << resources;
}

TEST(KxPackageLoaderTest, MissingPackagesAndBadNamesFailWithAnErrorLine) {
    struct Case {
        const char* name;
        const char* error;
    };
    const Case cases[] = {
        {"kxnosuchpackage",
         "Error: Package kxnosuchpackage not found (no libkxnosuchpackage.so beside libkorva or on "
         "KORVA_PACKAGE_PATH)."},
        {"../kxspatialgraph", "Error: \"../kxspatialgraph\" is not a package name."},
        {"", "Error: \"\" is not a package name."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        KxMessageCapture capture;
        EXPECT_FALSE(thePackageLoader->load(c.name));
        EXPECT_EQ(capture.lines(), std::vector<std::string>{c.error});
        EXPECT_FALSE(thePackageLoader->isLoaded(c.name));
    }
}
