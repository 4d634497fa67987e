#include "kxspatialgraph/analysis/KxComputeDistanceToPoint.h"

#include <cmath>
#include <limits>
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

const float kMax = std::numeric_limits<float>::max();

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
    const KxSpatialGraph& run(const char* refPoint) {
        evalOk(tcl_, (std::string("D setRefPoint ") + refPoint).c_str());
        std::string label = evalOk(tcl_, "D create");
        auto* result = dynamic_cast<KxSpatialGraph*>(theObjectPool->find(label.c_str()));
        EXPECT_NE(result, nullptr) << label;
        return result ? *result : empty_;
    }

    KxComputeDistanceToPoint* module_ = new KxComputeDistanceToPoint;
    KxSpatialGraph empty_;
    TempDir dir_;
};

TEST_F(KxComputeDistanceToPointTest, GrowsBothWaysFromAnInteriorPoint) {
    auto g = std::make_unique<KxSpatialGraph>();
    g->addVertex(Vec3f(0, 0, 0));
    g->addVertex(Vec3f(4, 0, 0));
    g->addEdge(
        0, 1,
        DArray<Vec3f>{Vec3f(0, 0, 0), Vec3f(1, 0, 0), Vec3f(1.5f, 0, 0), Vec3f(3, 0, 0), Vec3f(4, 0, 0)});
    attach(std::move(g));
    EXPECT_EQ(distances(run("0 2"), 0), (std::vector<float>{1.5f, 0.5f, 0, 1.5f, 2.5f}));
    EXPECT_EQ(evalOk(tcl_, "D referencePoint getValue"), "Coords: 1.5 0.0 0.0 Segment: 0 Point: 2 ");
}

TEST_F(KxComputeDistanceToPointTest, SpreadsThroughTheBranchVertexAndLeavesOtherComponentsAlone) {
    // makeY: vertex 0 at the origin; edge 2 runs 3 -> 0 from (2, 0, -1).
    attach(GraphFixtures::makeY());
    const KxSpatialGraph& r = run("2 0");
    float arm = std::sqrt(5.0f);
    EXPECT_EQ(distances(r, 2), (std::vector<float>{0, arm}));
    const float a0 = std::sqrt(5.0f) / 2, a1 = std::sqrt(5.25f) / 3;  // point spacing on edges 0 and 1
    using testing::FloatNear;
    EXPECT_THAT(distances(r, 0), testing::Pointwise(FloatNear(1e-5f), {arm, arm + a0, arm + 2 * a0}));
    EXPECT_THAT(distances(r, 1),
                testing::Pointwise(FloatNear(1e-5f), {arm, arm + a1, arm + 2 * a1, arm + 3 * a1}));

    theObjectPool->clear();
    module_ = new KxComputeDistanceToPoint;
    theObjectPool->add(module_, "D");
    attach(GraphFixtures::makeTwoComponents());
    const KxSpatialGraph& two = run("2 3");
    EXPECT_EQ(distances(two, 0), (std::vector<float>(3, kMax)));
    EXPECT_EQ(distances(two, 1), (std::vector<float>(2, kMax)));
    const float step = std::sqrt(10.0f) / 3;
    EXPECT_THAT(distances(two, 2), testing::Pointwise(FloatNear(1e-5f), {3 * step, 2 * step, step, 0.0f}));
}

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
    GraphSnapshot before = takeSnapshot(*dynamic_cast<KxSpatialGraph*>(theObjectPool->find(label.c_str())));
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
