#include "kxspatialgraph/analysis/KxComputeDistanceToPoint.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/modules/KxSessionState.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/TclEval.h"
#include "support/TempDir.h"
#include "support/ModuleSessionTest.h"

namespace {

// The "DistanceToPoint" values of one edge of the module's result.
std::vector<float> distances(const KxSpatialGraph& g, int e) {
    std::vector<float> d;
    const PointAttribute* a = g.findEdgePointAttribute("DistanceToPoint");
    for (int p = 0; a && p < g.getNumEdgePoints(e); ++p) {
        d.push_back(a->getFloatDataAtPoint(e, p));
    }
    return d;
}

// Four edges along x, each of 10 points one apart, edge k from x = 20 k.
std::unique_ptr<KxSpatialGraph> makeCombs() {
    auto g = std::make_unique<KxSpatialGraph>();
    for (int k = 0; k < 4; ++k) {
        float x = 20.0f * static_cast<float>(k);
        int s = g->addVertex(Vec3f(x, 0, 0));
        int t = g->addVertex(Vec3f(x + 9, 0, 0));
        g->addEdge(s, t, GraphFixtures::straightPoints(Vec3f(x, 0, 0), Vec3f(x + 9, 0, 0), 10));
    }
    return g;
}

class KxComputeDistanceToPointTest : public ModuleSessionTest {
protected:
    void SetUp() override {
        ModuleSessionTest::SetUp();
        theObjectPool->add(module_, "D");
    }
    KxSpatialGraph* attach(std::unique_ptr<KxSpatialGraph> graph) {
        KxSpatialGraph* g = graph.release();
        theObjectPool->add(g, "g.kxm");
        EXPECT_TRUE(module_->portData.connect(g));
        module_->fire();
        return g;
    }
    KxComputeDistanceToPoint* module_ = new KxComputeDistanceToPoint;
    TempDir dir_;
};

TEST_F(KxComputeDistanceToPointTest, SetRefPointChecksItsNumbersAndAnswersSnappedOnesRunTogether) {
    EXPECT_EQ(evalOk(tcl_, "D referencePoint getValue"), "No reference point set.");
    attach(makeCombs());
    {
        KxMessageCapture capture;
        EXPECT_EQ(evalError(tcl_, "D setRefPoint 0 99"), "Error: invalid point number 99, should be 0..9");
        EXPECT_EQ(evalError(tcl_, "D setRefPoint 4 0"), "Error: invalid edge number 4, should be 0..3");
        EXPECT_EQ(module_->getRefEdge(), -1);
        evalOk(tcl_, "D setRefPoint 1");
        EXPECT_TRUE(
            capture.contains("usage: <edgeNumber> <edgePointNumber> | <coord x> <coord y> <coord z>"));
    }
    EXPECT_EQ(evalOk(tcl_, "D setRefPoint 67.2 0.3 0"), "37");
    EXPECT_EQ(evalOk(tcl_, "D setReferencePoint getValue 0"), "67.2");
    EXPECT_EQ(module_->getRefPoint(), 7);
}

TEST_F(KxComputeDistanceToPointTest, SavedStateRestoresReferenceAndResult) {
    attach(GraphFixtures::makeY());
    std::string file = dir_.path("y.kxm");
    evalOk(tcl_, ("save KorvaMesh g.kxm " + file).c_str());
    theObjectPool->clear();
    module_ = nullptr;
    evalOk(tcl_, ("load " + file + "; create KxComputeDistanceToPoint D; D data connect y.kxm").c_str());
    evalOk(tcl_, "D setRefPoint 1 2");
    std::string label = evalOk(tcl_, "D create");
    const KxSpatialGraph& result = *dynamic_cast<KxSpatialGraph*>(theObjectPool->find(label.c_str()));
    // From point 2 of edge 1 both ways along it, then through vertex 0 into edges 0 and 2.
    const float a0 = std::sqrt(5.0f) / 2, a1 = std::sqrt(5.25f) / 3, d0 = 2 * a1;  // point spacings
    using testing::FloatNear;
    using testing::Pointwise;
    EXPECT_THAT(distances(result, 1), Pointwise(FloatNear(1e-5f), {d0, a1, 0.0f, a1}));
    EXPECT_THAT(distances(result, 0), Pointwise(FloatNear(1e-5f), {d0, d0 + a0, d0 + 2 * a0}));
    EXPECT_THAT(distances(result, 2), Pointwise(FloatNear(1e-5f), {d0 + 2 * a0, d0}));
    GraphSnapshot before = takeSnapshot(result);
    std::string state = KxSessionState::write(*theObjectPool);
    EXPECT_NE(state.find("{D} setRefPoint 1 2\n{D} setReferencePoint setValue 3 1\n{D} create;\n"),
              std::string::npos)
        << state;
    evalOk(
        tcl_,
        ("saveState " + dir_.path("state.tcl") + "; remove -all; source " + dir_.path("state.tcl")).c_str());
    EXPECT_EQ(KxSessionState::write(*theObjectPool), state);
    auto* restored = dynamic_cast<KxSpatialGraph*>(theObjectPool->find(label.c_str()));
    ASSERT_NE(restored, nullptr);
    GraphComparisonOptions newIds;
    newIds.compareAttributeIds = false;
    EXPECT_TRUE(sameGraph(before, *restored, newIds));
}

}  // namespace
