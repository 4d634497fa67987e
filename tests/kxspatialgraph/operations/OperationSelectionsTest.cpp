#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/operations/AddVertexOperation.h"
#include "kxspatialgraph/operations/ConnectOperation.h"
#include "kxspatialgraph/operations/DeleteOperation.h"
#include "kxspatialgraph/operations/FindAndDeleteIsolatedVertices.h"
#include "kxspatialgraph/operations/PointToVertexOperation.h"
#include "kxspatialgraph/operations/VertexToPointOperation.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/SelectionBits.h"

using namespace GraphFixtures;

namespace {

using MakeOperation = std::function<std::unique_ptr<Operation>(KxSpatialGraph&, const SpatialGraphSelection&,
                                                               const SpatialGraphSelection&)>;

template <class Op>
MakeOperation plain() {
    return [](KxSpatialGraph& g, const SpatialGraphSelection& h, const SpatialGraphSelection& v) {
        return std::make_unique<Op>(&g, h, v);
    };
}

struct SelectionCase {
    const char* name;
    std::function<std::unique_ptr<KxSpatialGraph>()> graph;
    // "highlighted | visible", each as vertex bits, edge bits and optionally
    // all-points bits; "-" for none.
    const char* given;
    SpatialGraphPoint highlightedPoint;  // selected when edgeNum >= 0
    MakeOperation make;
    const char* reported;  // "highlighted after exec / visible after exec / highlighted after undo"
};

SpatialGraphSelection parse(const KxSpatialGraph& g, const std::string& text) {
    std::istringstream in(text);
    std::string bits[3];
    in >> bits[0] >> bits[1] >> bits[2];
    for (std::string& b : bits) {
        b = b == "-" ? "" : b;
    }
    return selectionFromBits(g, bits[0], bits[1], bits[2]);
}

}  // namespace

TEST(OperationSelectionsTest, ReportedSelectionsAfterExecAndUndo) {
    const SelectionCase cases[] = {
        {"add vertex: only the new vertex is highlighted",
         makeY,
         "- - | 1 1 1",
         {},
         [](KxSpatialGraph& g, const SpatialGraphSelection& h, const SpatialGraphSelection& v) {
             return std::make_unique<AddVertexOperation>(&g, Vec3f(5, 5, 5), h, v);
         },
         "V:00001 E:000 A:000 / V:11111 E:111 A:111 / V:0000 E:000 A:000"},
        // Two components: 0-1-2, 3-4, 5.
        {"connect: both grow by the new last edge",
         makeTwoComponents,
         "001100 010 | 100000 010 001",
         {},
         plain<ConnectOperation>(),
         "V:001100 E:0101 A:0000 / V:100000 E:0101 A:0011 / V:001100 E:010 A:000"},
        {"delete: a vertex with an unselected edge stays, the undo highlight loses it",
         makeY,
         "1000 110 | 1111 111 001",
         {},
         plain<DeleteOperation>(),
         "V:0000 E:0 A:0 / V:1111 E:1 A:1 / V:0000 E:110 A:000"},
        {"delete: visible elements compacted over the deleted ones",
         [] { return makeChain(4); },
         "1000 100 | 0101 010 001",
         {},
         plain<DeleteOperation>(),
         "V:000 E:00 A:00 / V:101 E:10 A:01 / V:1000 E:100 A:000"},
        {"delete isolated vertices: the undo highlight is the one given",
         makeTwoComponents,
         "000000 100 | 111111 111",
         {},
         plain<FindAndDeleteIsolatedVertices>(),
         "V:00000 E:000 A:000 / V:11111 E:111 A:000 / V:000000 E:100 A:000"},
        // Chain 0-1-2-3-4: vertex 2 joins edges 1 and 2; the joined edge is the last one.
        {"vertex to point: visible states only added, moved ones carried over",
         [] { return makeChain(5); },
         "00100 0000 | 00010 0001 1000",
         {},
         plain<VertexToPointOperation>(),
         "V:0000 E:000 A:000 / V:0011 E:011 A:101 / V:00100 E:0000 A:0000"},
        // Chain of 6 vertices; edge 1 has 3 points and is split at point 1.
        {"point to vertex: new vertex and edges, all points at the old index too",
         [] { return makeChain(6); }, "- - | - 00010", SpatialGraphPoint(1, 1),
         plain<PointToVertexOperation>(),
         "V:0000001 E:000000 A:000000 / V:0000001 E:001111 A:000111 / V:000000 E:00000 A:00000"},
        {"point to vertex at an end point: nothing highlighted, visible unchanged",
         [] { return makeChain(3); }, "- - | 100 01", SpatialGraphPoint(1, 2),
         plain<PointToVertexOperation>(), "V:000 E:00 A:00 / V:100 E:01 A:00 / V:000 E:00 A:00"},
    };
    for (const SelectionCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<KxSpatialGraph> g = c.graph();
        std::string given = c.given;
        SpatialGraphSelection highlighted = parse(*g, given.substr(0, given.find('|')));
        if (c.highlightedPoint.edgeNum >= 0) {
            highlighted.selectPoint(c.highlightedPoint);
        }
        SpatialGraphSelection visible = parse(*g, given.substr(given.find('|') + 1));
        KxMessageCapture capture;
        std::unique_ptr<Operation> op = c.make(*g, highlighted, visible);
        op->exec();
        std::string reported = selectionBits(op->getHighlightSelectionAfterOperation()) + " / " +
                               selectionBits(op->getVisibleSelectionAfterOperation());
        op->undo();
        EXPECT_EQ(reported + " / " + selectionBits(op->getHighlightSelectionAfterUndo()), c.reported);
        EXPECT_EQ(op->getVisibleSelectionAfterUndo(), visible);
        EXPECT_EQ(capture.numErrors(), 0) << capture.text();
    }
}
