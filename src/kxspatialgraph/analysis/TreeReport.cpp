#include "kxspatialgraph/analysis/TreeReport.h"

#include <cmath>

#include <Inventor/SbColor.h>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/analysis/GraphUtils.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

void printLines(FILE* out, const DArray<int>& lines) {
    for (int line : lines) {
        std::fprintf(out, " %d", line);
    }
    std::fputc('\n', out);
}

EdgeVertexAttribute* intEdgeAttribute(KxSpatialGraph* graph, const char* name) {
    return static_cast<EdgeVertexAttribute*>(
        graph->addAttribute(name, KxSpatialGraph::EDGE, PrimType::INT32, 1));
}

// Rank r is stored as the id of the label "Rank<r + 1>", created where missing.
void storeRanks(KxSpatialGraph* graph, const DArray<int>& ranks) {
    graph->addNewLabelGroup("Ranks", true, false, false);
    EdgeVertexAttribute* attribute = intEdgeAttribute(graph, "Ranks");
    DArray<int> labelIds;
    for (int e = 0; e < ranks.size(); ++e) {
        while (labelIds.size() <= ranks[e]) {
            int n = labelIds.size();
            float hue = static_cast<float>(n) / 6.37f;
            SbColor color;
            color.setHSVValue(hue - std::floor(hue), 0.8f, 0.8f);
            labelIds.append(graph->addLabel("Ranks", 0, String::format("Rank%d", n + 1).getString(), color));
        }
        attribute->setIntDataAtIdx(e, labelIds[ranks[e]]);
    }
}

void storeIndices(KxSpatialGraph* graph, const char* name, const DArray<DArray<int>>& sets) {
    EdgeVertexAttribute* attribute = intEdgeAttribute(graph, name);
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        attribute->setIntDataAtIdx(e, -1);
    }
    for (int i = 0; i < sets.size(); ++i) {
        for (int line : sets[i]) {
            attribute->setIntDataAtIdx(line, i);
        }
    }
}

}  // namespace

void TreeReport::write(KxSpatialGraph* graph, FILE* out, bool listLines, bool label) {
    DArray<DArray<int>> trees, loops;
    DArray<int> givenRanks, ranks, loopy, generating;
    DArray<GraphUtils::LineLocation> locations;
    GraphUtils::identifyTrees(graph, trees, givenRanks, locations);
    GraphUtils::rankTrees(graph, trees, ranks);
    GraphUtils::identifyLoops(graph, loops, loopy);
    GraphUtils::getLoopGeneratingLines(graph, generating);

    std::fprintf(out, "Trees: %d\n", trees.size());
    for (int t = 0; t < trees.size(); ++t) {
        int maxRank = 0;
        for (int line : trees[t]) {
            maxRank = std::max(maxRank, ranks[line]);
        }
        std::fprintf(out, "Tree %d: %d lines, ranks 0 to %d, first line %d\n", t, trees[t].size(), maxRank,
                     trees[t][0]);
    }
    std::fprintf(out, "Loops: %d\n", loops.size());
    for (int l = 0; l < loops.size(); ++l) {
        std::fprintf(out, "Loop %d: %d lines:", l, loops[l].size());
        printLines(out, loops[l]);
    }
    std::fprintf(out, "Loop-generating lines:");
    printLines(out, generating);
    DArray<int> loopOf(graph->getNumEdges(), -1);
    for (int l = 0; l < loops.size(); ++l) {
        for (int line : loops[l]) {
            loopOf[line] = l;
        }
    }
    if (listLines) {
        for (int e = 0; e < graph->getNumEdges(); ++e) {
            std::fprintf(out, "Line %d: tree %d, rank %d, loop %d\n", e, locations[e].tree, ranks[e],
                         loopOf[e]);
        }
    }
    if (label) {
        storeRanks(graph, ranks);
        storeIndices(graph, "Tree", trees);
        storeIndices(graph, "Loop", loops);
        graph->touch(KxData::NEW_DATA | KxData::NEW_PARAMETERS);
        graph->fire();
    }
}

extern "C" int kxspatialgraphReportTrees(KxData* data, FILE* out, int listLines, int label) {
    if (!data || !data->isOfType("KxSpatialGraph")) {
        theMsg->printf("Error: %s is not a spatial graph.", data ? data->getLabel() : "(none)");
        return 0;
    }
    TreeReport::write(static_cast<KxSpatialGraph*>(data), out, listLines != 0, label != 0);
    return 1;
}
