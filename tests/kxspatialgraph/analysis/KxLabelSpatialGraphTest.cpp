#include "kxspatialgraph/analysis/KxLabelSpatialGraph.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxObjectPool.h"
#include "korva/data/KxUniformLabelField3.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphComparison.h"
#include "support/ModuleSessionTest.h"

namespace {

// 3 x 3 x 3 voxels with centres at 0, 1, 2 on each axis, moved by +10 in x;
// voxel (1,1,1) holds 2 ("Core"), (2,2,2) holds 1 ("Inside"), the rest 0.
KxUniformLabelField3* makeField() {
    auto* field = new KxUniformLabelField3;
    field->setDimensions(3, 3, 3);
    const float box[6] = {0, 2, 0, 2, 0, 2};
    field->setBoundingBox(box);
    field->setVoxel(1, 1, 1, 2);
    field->setVoxel(2, 2, 2, 1);
    field->addMaterial("Exterior", SbColor(0, 0, 0));
    field->addMaterial("Inside", SbColor(0, 1, 0));
    field->addMaterial("Core", SbColor(1, 0, 0));
    SbMatrix shift;
    shift.setTranslate(SbVec3f(10, 0, 0));
    field->setTransform(shift);
    return field;
}

// Vertex 0 at the centre of voxel (1,1,1) in world space, vertex 1 outside;
// the edge's middle point lies at voxel (2,2,2).
KxSpatialGraph* makeGraph() {
    auto* g = new KxSpatialGraph;
    g->addVertex(Vec3f(11, 1, 1));
    g->addVertex(Vec3f(50, 0, 0));
    g->addEdge(0, 1, DArray<Vec3f>{Vec3f(11, 1, 1), Vec3f(12.2f, 1.9f, 2.4f), Vec3f(50, 0, 0)});
    return g;
}

class KxLabelSpatialGraphTest : public ModuleSessionTest {
protected:
    void SetUp() override {
        ModuleSessionTest::SetUp();
        theObjectPool->add(graph_, "cell.kxm");
        theObjectPool->add(field_, "labels.kxm");
        theObjectPool->add(module_, "Label");
        module_->portData.connect(graph_);
        module_->portLabelData.connect(field_);
    }
    KxSpatialGraph* run(int points, int nodes) {
        module_->portLocation.setValue(KxLabelSpatialGraph::POINT_TOGGLE, points);
        module_->portLocation.setValue(KxLabelSpatialGraph::NODE_TOGGLE, nodes);
        module_->portAction.hit();
        module_->fire();
        return dynamic_cast<KxSpatialGraph*>(module_->getResult());
    }

    KxSpatialGraph* graph_ = makeGraph();
    KxUniformLabelField3* field_ = makeField();
    KxLabelSpatialGraph* module_ = new KxLabelSpatialGraph;
};

TEST_F(KxLabelSpatialGraphTest, LabelsNodesAndPointsThroughTheFieldsTransformationOutsideGetsOne) {
    KxSpatialGraph* r = run(1, 1);
    ASSERT_NE(r, nullptr);
    EXPECT_STREQ(r->getLabel(), "cell_labeled");
    EdgeVertexAttribute* nodes = r->findVertexAttribute("Materials_Nodes");
    PointAttribute* points = r->findEdgePointAttribute("Materials_Points");
    ASSERT_NE(nodes, nullptr);
    ASSERT_NE(points, nullptr);
    EXPECT_EQ((std::vector<int>{nodes->getIntDataAtIdx(0), nodes->getIntDataAtIdx(1),
                                points->getIntDataAtPoint(0, 0), points->getIntDataAtPoint(0, 1),
                                points->getIntDataAtPoint(0, 2)}),
              (std::vector<int>{3, 1, 3, 2, 1}));
    String name;
    ASSERT_TRUE(r->getLabelName(nodes, 3, name));
    EXPECT_EQ(name, "Core");
    SbColor color;
    ASSERT_TRUE(r->getLabelColor(points, 2, color));
    EXPECT_EQ(color, SbColor(0, 1, 0));

    // A second press overwrites the same result with a fresh copy; a pooled
    // result keeps the label the pool knows it by, even after a rename.
    theObjectPool->rename(graph_, "other.kxm");
    EXPECT_EQ(run(1, 0), r);
    EXPECT_EQ(theObjectPool->find(r->getLabel()), r);
    EXPECT_EQ(r->findVertexAttribute("Materials_Nodes"), nullptr);
    expectConsistent(*r);
    GraphComparisonOptions newIds;
    newIds.compareAttributeIds = false;
    EXPECT_TRUE(sameGraph(takeSnapshot(*graph_), *run(0, 0), newIds)) << "both toggles off: a plain copy";
}

}  // namespace
