#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxPackageLoader.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/TempDir.h"

// Tests of the package's entries in the host's format registry: the package
// is loaded, a temporary folder is at hand, and what load() adds to the
// object pool is removed afterwards.
class PackageFormatsTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(thePackageLoader->load("kxspatialgraph")); }
    void TearDown() override {
        for (KxObject* o : created_) {
            theObjectPool->remove(o);
        }
    }
    // Loads through the registry; the one graph it created, or null.
    KxSpatialGraph* load(const std::string& path) {
        std::vector<KxObject*> created;
        bool ok = theFileFormats->load(path.c_str(), created, *theObjectPool);
        created_.insert(created_.end(), created.begin(), created.end());
        return ok && created.size() == 1 ? dynamic_cast<KxSpatialGraph*>(created[0]) : nullptr;
    }

    TempDir dir_;
    std::vector<KxObject*> created_;
};
