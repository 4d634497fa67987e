#include "kxspatialgraph/analysis/KxSpatialGraphStats.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxObjectPool.h"
#include "korva/data/KxSpreadSheet.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphSelectionInterfaceImpl.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "support/TclEval.h"
#include "support/ModuleSessionTest.h"

namespace {

const float kPi = 3.14159265f;

// Three straight edges with "thickness" and the edge label group "Region"
// (1 axon, 2 dendrite, 3 soma); only axon and label 0 are used.
//   0 --e0 [2, r 1 1]-- 1 --e2 [2, r 2 2]-- 3      e0: length 2, volume 2 pi
//                       |                          e1: length 3, mean radius 2,
//                       e1 [3 at y 0 1 3, r 1 2 3]     volume 15 pi
//                       2                          e2: length 3, volume 12 pi
KxSpatialGraph* makeMeasuredGraph() {
    auto* g = new KxSpatialGraph;
    g->addVertex(Vec3f(0, 0, 0));
    g->addVertex(Vec3f(2, 0, 0));
    g->addVertex(Vec3f(2, 3, 0));
    g->addVertex(Vec3f(5, 0, 0));
    g->addEdge(0, 1);
    g->addEdge(1, 2, DArray<Vec3f>{Vec3f(2, 0, 0), Vec3f(2, 1, 0), Vec3f(2, 3, 0)});
    g->addEdge(1, 3);
    auto* t = static_cast<PointAttribute*>(
        g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    const float radii[3][3] = {{1, 1, 0}, {1, 2, 3}, {2, 2, 0}};
    for (int e = 0; e < 3; ++e) {
        for (int p = 0; p < g->getNumEdgePoints(e); ++p) {
            t->setFloatDataAtPoint(radii[e][p], e, p);
        }
    }
    g->addNewLabelGroup("Region", true, false, false);
    for (const char* name : {"axon", "dendrite", "soma"}) {
        g->addLabel("Region", 0, name, SbColor(1, 0, 0));
    }
    EdgeVertexAttribute* region = g->findEdgeAttribute("Region");
    const int labels[] = {1, 0, 1};
    for (int e = 0; e < 3; ++e) {
        region->setIntDataAtIdx(e, labels[e]);
    }
    return g;
}

// A data object holding a selection of a graph, offered through the selection interface.
class SelectionHolder : public KxData {
public:
    explicit SelectionHolder(const SpatialGraphSelection& s) : selection_(s), interface_(&selection_) {}
    void* getInterface(const char* name) const override {
        return std::string(name) == "KxSpatialGraphSelectionInterface"
                   ? const_cast<KxSpatialGraphSelectionInterfaceImpl*>(&interface_)
                   : nullptr;
    }

private:
    SpatialGraphSelection selection_;
    KxSpatialGraphSelectionInterfaceImpl interface_;
};

// The given columns' texts, rows joined by "," and columns by " | ".
std::string columns(const KxSpreadSheet::Table& table, std::initializer_list<int> which) {
    std::string text;
    for (int c : which) {
        text += text.empty() ? "" : " | ";
        for (int r = 0; r < table.getNumRows(); ++r) {
            text += (r ? "," : "") + table.getText(c, r);
        }
    }
    return text;
}

class KxSpatialGraphStatsTest : public ModuleSessionTest {
protected:
    void SetUp() override {
        ModuleSessionTest::SetUp();
        graph_ = makeMeasuredGraph();
        theObjectPool->add(graph_, "cell.kxm");
        theObjectPool->add(stats_, "Stats");
        stats_->portData.connect(graph_);
    }
    KxSpreadSheet* run() {
        stats_->portDoIt.hit();
        stats_->fire();
        return dynamic_cast<KxSpreadSheet*>(stats_->getResult());
    }

    KxSpatialGraph* graph_ = nullptr;
    KxSpatialGraphStats* stats_ = new KxSpatialGraphStats;
};

// Without "thickness" a segment has its length but no radius or volume.
TEST(KxSpatialGraphStatsMetricsTest, WithoutThicknessOnlyTheLength) {
    std::unique_ptr<KxSpatialGraph> g(makeMeasuredGraph());
    g->deleteAttribute(g->findEdgePointAttribute("thickness"));
    KxSpatialGraphStats::SegmentMetrics m;
    KxSpatialGraphStats::calcSegmentMetrics(g.get(), 1, m);
    EXPECT_FLOAT_EQ(m.length, 3.0f);
    EXPECT_EQ(m.meanRadius, 0.0f);
    EXPECT_EQ(m.volume, 0.0f);
}

TEST_F(KxSpatialGraphStatsTest, SegmentAndLabelTablesWithUnlabeledRowAndWithoutEmptyLabels) {
    EXPECT_EQ(evalOk(tcl_, "Stats create"), "cell.statistics");
    KxSpreadSheet* sheet = run();
    ASSERT_NE(sheet, nullptr);
    ASSERT_EQ(sheet->getNumTables(), 2);
    const KxSpreadSheet::Table& segments = *sheet->getTable(0);
    EXPECT_STREQ(segments.getName(), "Segment Statistics");
    ASSERT_EQ(segments.getNumColumns(), 5);
    EXPECT_STREQ(segments.getColumnName(4), "Region");
    EXPECT_EQ(columns(segments, {0, 1, 2, 4}), "0,1,2 | 2,3,3 | 1,2,2 | axon,<unlabeled>,axon");
    const float volumes[] = {2 * kPi, 15 * kPi, 12 * kPi};  // truncated cones
    for (int r = 0; r < 3; ++r) {
        EXPECT_NEAR(segments.getFloat(3, r), volumes[r], 1e-4f) << r;
    }

    const KxSpreadSheet::Table& labels = *sheet->getTable(1);
    EXPECT_STREQ(labels.getName(), "Region");
    EXPECT_EQ(columns(labels, {0, 1, 2, 3, 5}), "<unlabeled>,axon | 3,2.5 | 2,1.5 | 3,5 | 1,2");
    EXPECT_NEAR(labels.getFloat(4, 0), 15 * kPi, 1e-4f);
    EXPECT_NEAR(labels.getFloat(4, 1), 14 * kPi, 1e-4f);
    // The second press reused and cleared the same spreadsheet.
    EXPECT_EQ(theObjectPool->find("cell.statistics"), sheet);

    // Deliberately, a partial selection reads labels from the first edges:
    // edge 1 shows edge 0's label, edge 2 edge 1's.
    SpatialGraphSelection selection(graph_);
    selection.selectEdge(1);
    selection.selectEdge(2);
    auto* holder = new SelectionHolder(selection);
    theObjectPool->add(holder, "selection");
    ASSERT_TRUE(stats_->portSelection.connect(holder));
    EXPECT_EQ(columns(*run()->getTable(0), {0, 4}), "1,2 | axon,<unlabeled>");

    graph_->deleteAttribute(graph_->findEdgeAttribute("Region"));
    ASSERT_EQ(run()->getNumTables(), 1) << "without labels only the segment table";
    EXPECT_EQ(sheet->getTable(0)->getNumColumns(), 4);
}

}  // namespace
