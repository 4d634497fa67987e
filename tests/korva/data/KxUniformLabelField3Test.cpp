#include "korva/data/KxUniformLabelField3.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "support/TclEval.h"
#include "support/TempDir.h"

// A 3 x 2 x 1 field over x 0..4, y 0..1 (voxels 2 wide in x, 1 in y), made
// from the console, looked up near its edges and read back from a file.
TEST(KxUniformLabelField3Test, NearestVoxelLookupAndKorvaMeshRoundTrip) {
    KxUniformLabelField3::registerClass();
    auto* field = new KxUniformLabelField3;
    theObjectPool->add(field, "f");
    {
        KxTclInterpreter tcl(*theObjectPool);
        evalOk(tcl, "f setDimensions 3 2 1; f setBoundingBox 0 4 0 1 5 5; f setVoxel 2 1 0 7");
        evalOk(tcl,
               "f addMaterial Exterior 0 0 0; f addMaterial Bone 1 1 0.5; f setTransform 1 0 0 0 0 1 0 0 0 0 "
               "1 0 3 0 0 1");
        EXPECT_EQ(evalOk(tcl, "f getVoxel 2 1 0"), "7");
        EXPECT_EQ(evalOk(tcl, "f getTransform"),
                  "1.0 0.0 0.0 0.0 0.0 1.0 0.0 0.0 0.0 0.0 1.0 0.0 3.0 0.0 0.0 1.0");
        evalError(tcl, "f setTransform 1");
        evalError(tcl, "f setVoxel 3 0 0 1");
        evalError(tcl, "f setVoxel 0 0 0 256");
    }
    struct Case {
        Vec3f p;
        bool inside;
        int label;
    } cases[] = {
        {Vec3f(4.9f, 1.4f, 5.4f), true, 7}, {Vec3f(3.1f, 0.6f, 5), true, 7},
        {Vec3f(2.9f, 0.6f, 5), true, 0},    {Vec3f(5.0f, 1.0f, 5), false, 0},
        {Vec3f(4, 1, 5.6f), false, 0},      {Vec3f(-1.0f, -0.5f, 4.5f), true, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.p.x);
        int label = -1;
        EXPECT_EQ(field->findLabel(c.p, label), c.inside);
        EXPECT_EQ(label, c.inside ? c.label : -1);
    }

    TempDir dir;
    ASSERT_EQ(field->saveKorvaMesh(dir.path("f.kxm").c_str()), 1);
    std::vector<KxObject*> created;
    ASSERT_TRUE(theFileFormats->load(dir.path("f.kxm").c_str(), created, *theObjectPool));
    auto* read = dynamic_cast<KxUniformLabelField3*>(created.at(0));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(std::vector<int>(read->getDimensions(), read->getDimensions() + 3),
              (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(read->getVoxel(2, 1, 0), 7);
    EXPECT_EQ(read->getTransform(), field->getTransform());
    EXPECT_EQ(read->parameters().toText(), field->parameters().toText());
    theObjectPool->clear();
}
