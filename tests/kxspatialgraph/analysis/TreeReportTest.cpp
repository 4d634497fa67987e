#include "kxspatialgraph/analysis/TreeReport.h"

#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphFixtures.h"

// Triangle 0-1-2 with a self-loop (3) at vertex 2.
TEST(TreeReportTest, PrintsAndStoresTreesRanksAndLoops) {
    auto g = GraphFixtures::makeLoop();
    KxMessageCapture console;
    char* text = nullptr;
    size_t size = 0;
    FILE* out = open_memstream(&text, &size);
    EXPECT_EQ(kxspatialgraphReportTrees(g.get(), out, 1, 1), 1);
    std::fclose(out);
    std::string printed(text, size);
    std::free(text);
    EXPECT_EQ(printed.substr(0, printed.find("Line 0")),
              "Trees: 1\nTree 0: 4 lines, ranks 0 to 1, first line 0\nLoops: 2\nLoop 0: 2 lines: 2 1\n"
              "Loop 1: 1 lines: 3\nLoop-generating lines: 3\n");
    EXPECT_NE(printed.find("Line 3: tree 0, rank 1, loop 1\n"), std::string::npos) << printed;
    EXPECT_EQ(g->findEdgeAttribute("Loop")->getIntDataAtIdx(0), -1);
    EXPECT_EQ(g->getLabelId(g->findEdgeAttribute("Ranks"), "Rank2"),
              g->findEdgeAttribute("Ranks")->getIntDataAtIdx(3));
}
