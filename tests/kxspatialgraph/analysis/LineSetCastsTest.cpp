#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/data/KxLineSet.h"
#include "kxspatialgraph/analysis/CastKxLineSetToKxSpatialGraph.h"
#include "kxspatialgraph/analysis/CastKxSpatialGraphToKxLineSet.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/TempDir.h"
#include "support/ModuleSessionTest.h"

namespace {

// Points 0..6 on the x axis at x = index, data column c holding 10 c + index;
// lines given as index lists.
KxLineSet* makeLineSet(const std::vector<std::vector<int>>& lines, int columns) {
    auto* ls = new KxLineSet;
    ls->setLabel("lines.kxm");
    for (int i = 0; i < 7; ++i) {
        Vec3f p(static_cast<float>(i), static_cast<float>(i % 2), 0);
        ls->addPoints(&p, 1);
    }
    ls->setNumDataColumns(columns);
    for (int c = 0; c < columns; ++c) {
        for (int i = 0; i < 7; ++i) {
            ls->setData(c, i, static_cast<float>(10 * c + i));
        }
    }
    for (const std::vector<int>& line : lines) {
        ls->addLine(line.data(), static_cast<int>(line.size()));
    }
    return ls;
}

class LineSetCastsTest : public ModuleSessionTest {
protected:
    KxSpatialGraph* toGraph(KxLineSet* lineSet, int thicknessColumn = 0) {
        theObjectPool->add(lineSet);
        auto* cast = new CastKxLineSetToKxSpatialGraph;
        theObjectPool->add(cast);
        cast->portData.connect(lineSet);
        cast->fire();
        cast->portMapToThickness.setValue(thicknessColumn);
        cast->portAction.hit();
        cast->fire();
        return dynamic_cast<KxSpatialGraph*>(cast->getResult());
    }
};

TEST_F(LineSetCastsTest, InteriorPointsUsedOnceBecomeEdgePointsAndColumnsBecomeAttributes) {
    struct Case {
        int columns;
        int chosen;
        std::vector<std::string> names;
    } cases[] = {{1, 0, {"thickness"}}, {3, 1, {"Data0", "thickness", "Data2"}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.columns);
        KxSpatialGraph* g = toGraph(makeLineSet({{2, 3, 4, 5, 6}}, c.columns), c.chosen);
        ASSERT_NE(g, nullptr);
        ASSERT_EQ(g->getNumEdges(), 1);
        EXPECT_EQ(g->getNumVertices(), 2);
        EXPECT_EQ(g->getNumEdgePoints(0), 5);
        ASSERT_EQ(g->getNumEdgePointAttributes(), c.columns);
        for (int d = 0; d < c.columns; ++d) {
            const PointAttribute* a = g->getEdgePointAttribute(d);
            EXPECT_EQ(a->getName(), c.names[static_cast<size_t>(d)]);
            EXPECT_EQ(a->getFloatDataAtPoint(0, 4), static_cast<float>(10 * d + 6));
        }
        theObjectPool->clear();
    }
}

TEST_F(LineSetCastsTest, GraphEdgesBecomeLinesWithThicknessFirstAndBackAgain) {
    std::unique_ptr<KxSpatialGraph> y = GraphFixtures::makeY();
    GraphFixtures::addIdentityMarkers(*y);
    auto* t = static_cast<PointAttribute*>(
        y->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    t->setFloatDataAtPoint(2.5f, 1, 3);
    std::unique_ptr<KxLineSet> ls(
        CastKxSpatialGraphToKxLineSet::makeLineSetFromSpatialGraph(*y->getSpatialGraphInterface()));
    EXPECT_EQ(ls->getNumLines(), 3);
    EXPECT_EQ(ls->getNumPoints(), 3 + 4 + 2);
    ASSERT_EQ(ls->getNumDataColumns(), 2);  // thickness, PointMarker (int, converted)
    EXPECT_EQ(ls->getData(0, 3 + 3), 2.5f);
    EXPECT_EQ(ls->getData(1, 3 + 3), 10003.0f);

    // Through a file and back: the same polylines and thickness.
    TempDir dir;
    ASSERT_EQ(ls->saveKorvaMesh(dir.path("y.kxm").c_str()), 1);
    std::vector<KxObject*> created;
    ASSERT_TRUE(theFileFormats->load(dir.path("y.kxm").c_str(), created, *theObjectPool));
    auto* read = dynamic_cast<KxLineSet*>(created.at(0));
    ASSERT_NE(read, nullptr);
    std::unique_ptr<KxSpatialGraph> back(
        CastKxLineSetToKxSpatialGraph::makeSpatialGraphWithAttrib(*read, {"thickness"}));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(takeSnapshot(*back).points, takeSnapshot(*y).points);
    EXPECT_EQ(back->findEdgePointAttribute("thickness")->getFloatDataAtPoint(1, 3), 2.5f);
}

TEST_F(LineSetCastsTest, LinesSharingAPointMeetInOneVertexALineToAMissingPointIsRefused) {
    KxMessageCapture capture;
    KxSpatialGraph* g = toGraph(makeLineSet({{0, 1, 2}, {3, 1, 4}}, 0));
    ASSERT_NE(g, nullptr);
    EXPECT_TRUE(capture.contains("total branching points 1")) << capture.text();
    EXPECT_STREQ(g->getLabel(), "lines.kxm-SG");
    EXPECT_EQ(g->getNumVertices(), 5);
    ASSERT_EQ(g->getNumEdges(), 4);
    EXPECT_EQ(g->getVertexCoords(g->getEdgeTarget(0)), Vec3f(1, 1, 0));
    EXPECT_EQ(g->getIncidentEdges(g->getEdgeTarget(0)).size(), 4);
    expectConsistent(*g);

    theObjectPool->clear();
    EXPECT_EQ(toGraph(makeLineSet({{0, 9}}, 0)), nullptr);
    EXPECT_TRUE(capture.contains("Error: Line 0 of lines.kxm refers to point 9; the line set has 7 points."))
        << capture.text();
}

}  // namespace
