#include "kxspatialgraph/analysis/GraphUtils.h"

#include <algorithm>
#include <cstdio>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxWorkArea.h"
#include "kxspatialgraph/analysis/LineEnds.h"
#include "kxspatialgraph/analysis/LinesAtPositions.h"
#include "kxspatialgraph/analysis/LoopSearch.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// A tree's growth stops at this level, however deep the graph goes.
const int kMaxLevel = 10000;
// Per level, a single line waiting beyond the level is pulled into it at most this often.
const int kMaxShortcutsPerLevel = 10;

bool isLine(const KxSpatialGraph* graph, int line) {
    return line >= 0 && line < graph->getNumEdges();
}

DArray<int> allLines(int n) {
    DArray<int> lines(n);
    for (int i = 0; i < n; ++i) {
        lines[i] = i;
    }
    return lines;
}

// Entry i is i for every line that takes part, -1 for the others: all lines,
// or only the start lines when there are any.
DArray<int> pendingLines(const KxSpatialGraph* graph, const DArray<int>& startLines) {
    int n = graph->getNumEdges();
    if (startLines.isEmpty()) {
        return allLines(n);
    }
    DArray<int> pending(n, -1);
    for (int line : startLines) {
        if (isLine(graph, line)) {
            pending[line] = line;
        } else {
            theMsg->printf("Warning: start line %d is not an edge of the graph; ignored.", line);
        }
    }
    return pending;
}

// The index of the lines that take part, the others withdrawn.
LinesAtPositions indexPending(const LineEnds& ends, const DArray<int>& pending) {
    LinesAtPositions index(ends, allLines(pending.size()));
    for (int line = 0; line < pending.size(); ++line) {
        if (pending[line] == -1) {
            index.withdraw(line);
        }
    }
    return index;
}

// The end positions of a line; NaN for an end at a vertex outside the graph,
// so that it equals nothing.
void endPositions(const KxSpatialGraph* graph, int line, Vec3f ends[2]) {
    int v[2] = {graph->getEdgeSource(line), graph->getEdgeTarget(line)};
    for (int k = 0; k < 2; ++k) {
        bool valid = v[k] >= 0 && v[k] < graph->getNumVertices();
        ends[k] = valid ? graph->getVertexCoords(v[k]) : Vec3f(NAN, NAN, NAN);
    }
}

bool isSelfLoop(const KxSpatialGraph* graph, int line) {
    return graph->getEdgeSource(line) == graph->getEdgeTarget(line);
}

const PointAttribute* thicknessAttribute(const KxSpatialGraph* graph) {
    const PointAttribute* a = graph->findEdgePointAttribute("thickness");
    return a && a->getPrimType() == PrimType::FLOAT32 ? a : nullptr;
}

float meanThickness(const PointAttribute* thickness, int line) {
    int n = thickness->getNumEdgePoints(line);
    if (n == 0) {
        return 0.0f;
    }
    float sum = 0.0f;
    for (int p = 0; p < n; ++p) {
        sum += thickness->getFloatDataAtPoint(line, p);
    }
    return sum / static_cast<float>(n);
}

// After slot i of the level [.., levelEnd) is done: when exactly one line
// waits beyond the level, it moves into slot i and is processed next, which
// keeps unbranched runs together in a tree's order.
bool takeChainShortcut(DArray<int>& queue, int i, int levelEnd, int& shortcuts) {
    if (queue.size() != levelEnd + 1 || shortcuts >= kMaxShortcutsPerLevel) {
        return false;
    }
    ++shortcuts;
    queue[i] = queue.last();
    queue.remove(queue.size() - 1);
    return true;
}

// Grows the tree of startLine level by level over the lines still listed in
// both indexes, appending its lines to treeLines and their levels to rank (the
// start line 0, its unbranched continuation 1, one more per branching).
// Lines are withdrawn from the indexes as they are queued and processed, so
// trees of separate components can be ranked one after the other. Returns
// the number of levels reached.
int rankTree(const LineEnds& ends, LinesAtPositions& unqueued, LinesAtPositions& unprocessed, int startLine,
             DArray<int>& treeLines, DArray<int>& rank) {
    DArray<int> queue{startLine};
    unqueued.withdraw(startLine);
    int level = 0;
    for (int levelStart = 0;;) {
        int levelEnd = queue.size();
        int shortcuts = 0;
        for (int i = levelStart; i < levelEnd;) {
            int e = queue[i];
            treeLines.append(e);
            rank[e] = level;
            unprocessed.withdraw(e);
            if (!ends.isSelfLoop(e)) {
                int connected[2];
                int count = unprocessed.findUpToTwo(ends.source(e), ends.target(e), connected);
                int sizeBefore = queue.size();
                unqueued.takeAll(ends.source(e), ends.target(e), queue);
                if (count == 1) {
                    // The chain goes on in this level; a start line's continuation gets rank 1.
                    if (queue.size() > sizeBefore) {
                        queue.remove(queue.size() - 1);
                    }
                    queue[i] = unprocessed.lineOf(connected[0]);
                    level = std::max(level, 1);
                    continue;
                }
            }
            theWorkArea->step();
            if (!takeChainShortcut(queue, i, levelEnd, shortcuts)) {
                ++i;
            }
        }
        ++level;
        if (queue.size() == levelEnd || level > kMaxLevel) {
            return level;
        }
        levelStart = levelEnd;
    }
}

void sortLargestFirst(DArray<DArray<int>>& sets) {
    std::stable_sort(sets.begin(), sets.end(), [](const DArray<int>& a, const DArray<int>& b) {
        return GraphUtils::arraySizeCompare(a, b) < 0;
    });
}

}  // namespace

// ---- Trees ----------------------------------------------------------------------

void GraphUtils::identifyTrees(const KxSpatialGraph* graph, DArray<DArray<int>>& trees, DArray<int>& ranks,
                               DArray<LineLocation>& locations) {
    identifyTrees(graph, trees, ranks, locations, DArray<int>());
}

void GraphUtils::identifyTrees(const KxSpatialGraph* graph, DArray<DArray<int>>& trees, DArray<int>& ranks,
                               DArray<LineLocation>& locations, const DArray<int>& startLines) {
    theMsg->printf("calculating topology");
    int n = graph->getNumEdges();
    DArray<int> pending = pendingLines(graph, startLines);
    theWorkArea->startWorking("Identifying trees...", n);
    const EdgeVertexAttribute* givenRanks = graph->findEdgeAttribute("Ranks");
    if (givenRanks && givenRanks->getPrimType() != PrimType::INT32) {
        givenRanks = nullptr;
    }
    trees.clear();
    ranks.resize(n);
    ranks.fill(0);

    LineEnds ends(graph);
    // Lines not yet queued for any tree; all lines of a tree are queued before the next tree starts.
    LinesAtPositions unqueued = indexPending(ends, pending);
    DArray<int> queue;
    for (int seed = 0; seed < n; ++seed) {
        if (!unqueued.isListed(seed)) {
            continue;
        }
        DArray<int> tree;
        queue.clear();
        queue.append(seed);
        unqueued.withdraw(seed);
        for (int levelStart = 0; levelStart < queue.size();) {
            int levelEnd = queue.size();
            int shortcuts = 0;
            for (int i = levelStart; i < levelEnd;) {
                int e = queue[i];
                tree.append(e);
                if (givenRanks) {
                    ranks[e] = givenRanks->getIntDataAtIdx(e);
                }
                if (!ends.isSelfLoop(e)) {
                    unqueued.takeAll(ends.source(e), ends.target(e), queue);
                }
                theWorkArea->step();
                if (!takeChainShortcut(queue, i, levelEnd, shortcuts)) {
                    ++i;
                }
            }
            levelStart = levelEnd;
        }
        trees.append(std::move(tree));
    }

    sortLargestFirst(trees);
    locations.resize(n);
    locations.fill(LineLocation());
    for (int t = 0; t < trees.size(); ++t) {
        for (int p = 0; p < trees[t].size(); ++p) {
            locations[trees[t][p]] = LineLocation{t, p};
        }
    }
    theWorkArea->stopWorking();
}

void GraphUtils::identifyTree(const KxSpatialGraph* graph, int startLine, DArray<int>& treeLines,
                              DArray<DArray<int>>& levels) {
    theMsg->printf("calculating topology");
    int n = graph->getNumEdges();
    treeLines.clear();
    levels.clear();
    if (!isLine(graph, startLine)) {
        theMsg->printf("Error: start line %d is not an edge of the graph (%d edges).", startLine, n);
        return;
    }
    theWorkArea->startWorking("Identifying trees...", n);
    LineEnds ends(graph);
    LinesAtPositions unqueued(ends, allLines(n));
    LinesAtPositions unprocessed(ends, allLines(n));
    DArray<int> rank(n, 0);
    int level = rankTree(ends, unqueued, unprocessed, startLine, treeLines, rank);
    levels.resize(level);
    for (int line : treeLines) {
        levels[rank[line]].append(line);
    }
    for (int line : treeLines) {
        std::printf("rank1 [%d] line [%d]\n", rank[line], line);
    }
    for (int i = 0; i < n; ++i) {
        std::printf("rank2 [%d] line [%d]\n", rank[i], i);
    }
    theWorkArea->stopWorking();
}

void GraphUtils::rankTrees(const KxSpatialGraph* graph, const DArray<DArray<int>>& trees,
                           DArray<int>& ranks) {
    int n = graph->getNumEdges();
    ranks.resize(n);
    ranks.fill(0);
    LineEnds ends(graph);
    LinesAtPositions unqueued(ends, allLines(n));
    LinesAtPositions unprocessed(ends, allLines(n));
    // In the order the trees were found, so that a line goes to the same tree.
    DArray<int> firstLines;
    for (const DArray<int>& tree : trees) {
        if (!tree.isEmpty() && isLine(graph, tree[0])) {
            firstLines.append(tree[0]);
        }
    }
    firstLines.sort();
    theWorkArea->startWorking("Ranking trees...", n);
    DArray<int> treeLines;
    for (int line : firstLines) {
        if (unprocessed.isListed(line)) {
            rankTree(ends, unqueued, unprocessed, line, treeLines, ranks);
        }
    }
    theWorkArea->stopWorking();
}

// ---- Loops ----------------------------------------------------------------------

void GraphUtils::identifyLoops(const KxSpatialGraph* graph, DArray<DArray<int>>& loops) {
    DArray<int> loopyLines;
    identifyLoops(graph, loops, loopyLines, DArray<int>());
}

void GraphUtils::identifyLoops(const KxSpatialGraph* graph, DArray<DArray<int>>& loops,
                               DArray<int>& loopyLines) {
    identifyLoops(graph, loops, loopyLines, DArray<int>());
}

void GraphUtils::identifyLoops(const KxSpatialGraph* graph, DArray<DArray<int>>& loops,
                               DArray<int>& loopyLines, const DArray<int>& startLines) {
    int n = graph->getNumEdges();
    DArray<int> pending = pendingLines(graph, startLines);
    loopyLines.clear();
    theWorkArea->startWorking("Identifying loops...");
    LineEnds ends(graph);
    {
        LoopSearch search(ends, pending, loopyLines);
        for (int line = 0; line < n; ++line) {
            if (pending[line] != -1) {
                theWorkArea->setProgressValue(static_cast<float>(line) / (2.0f * static_cast<float>(n)));
                search.walkWithRestarts(line);
            }
        }
    }

    // A self-loop is a loop by itself; the other loopy lines are grouped by touch.
    loops.clear();
    DArray<int> work;
    for (int line : loopyLines) {
        if (ends.isSelfLoop(line)) {
            loops.append(DArray<int>{line});
        } else {
            work.append(line);
        }
    }
    LinesAtPositions ungrouped(ends, work);
    for (int k = 0; k < work.size(); ++k) {
        if (!ungrouped.isListed(k)) {
            continue;
        }
        theWorkArea->setProgressValue(static_cast<float>(k + work.size()) /
                                      (2.0f * static_cast<float>(work.size())));
        DArray<int> loop{work[k]};
        ungrouped.withdraw(k);
        for (int i = 0; i < loop.size(); ++i) {
            ungrouped.takeAll(ends.source(loop[i]), ends.target(loop[i]), loop);
        }
        loops.append(std::move(loop));
    }
    // Equal sizes keep the order in which the loops were found.
    sortLargestFirst(loops);
    theWorkArea->stopWorking();
}

void GraphUtils::getLoopGeneratingLines(const KxSpatialGraph* graph, DArray<int>& lines) {
    DArray<DArray<int>> loops;
    DArray<int> loopy;
    identifyLoops(graph, loops, loopy);
    LineEnds ends(graph);

    // A parallel twin has the same two end positions: sort by the pair, and a
    // line has a later twin when the next one in that order shares its pair.
    auto pairOf = [&](int line) {
        int s = ends.source(line), t = ends.target(line);
        return std::make_pair(std::min(s, t), std::max(s, t));
    };
    DArray<int> order = allLines(loopy.size());
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return pairOf(loopy[a]) < pairOf(loopy[b]); });
    DArray<char> hasLaterTwin(loopy.size(), 0);
    for (int k = 0; k + 1 < order.size(); ++k) {
        hasLaterTwin[order[k]] = pairOf(loopy[order[k]]) == pairOf(loopy[order[k + 1]]);
    }
    for (int i = 0; i < loopy.size(); ++i) {
        if (ends.isSelfLoop(loopy[i]) || hasLaterTwin[i]) {
            lines.append(loopy[i]);
        }
    }

    DArray<char> listed(graph->getNumEdges(), 0);
    for (int line : lines) {
        if (isLine(graph, line)) {
            listed[line] = 1;
        }
    }
    for (const DArray<int>& loop : loops) {
        if (loop.size() > 2) {
            int thinnest = getThinnestLine(graph, loop);
            if (!listed[thinnest]) {
                listed[thinnest] = 1;
                lines.append(thinnest);
            }
        }
    }
}

int GraphUtils::identifyLoopRecur(const KxSpatialGraph* graph, DArray<int>& loopyLines, DArray<int>& pending,
                                  int prevLine, int line) {
    int n = graph->getNumEdges();
    if (pending.size() != n || !isLine(graph, line) || prevLine >= n) {
        theMsg->printf(
            "Error: identifyLoopRecur: line %d, previous line %d or %d pending entries do not fit "
            "a graph of %d edges.",
            line, prevLine, pending.size(), n);
        return -1;
    }
    LineEnds ends(graph);
    LoopSearch search(ends, pending, loopyLines);
    return search.walk(prevLine < 0 ? -1 : prevLine, line);
}

void GraphUtils::selectLoopyLine(DArray<int>& lines, int line) {
    if (lines.find(line) < 0) {
        lines.append(line);
    }
}

// ---- Single lines ---------------------------------------------------------------

bool GraphUtils::checkIfLinesAreConnected(const KxSpatialGraph* graph, int a, int b, int prevLine) {
    if (!isLine(graph, a) || !isLine(graph, b) || prevLine >= graph->getNumEdges() || isSelfLoop(graph, a)) {
        return false;
    }
    Vec3f ea[2], eb[2];
    endPositions(graph, a, ea);
    endPositions(graph, b, eb);
    bool counts[2] = {true, true};
    if (prevLine >= 0) {
        Vec3f ep[2];
        endPositions(graph, prevLine, ep);
        if (ea[0] == ep[0] || ea[0] == ep[1]) {
            counts[0] = false;
        } else if (ea[1] == ep[0] || ea[1] == ep[1]) {
            counts[1] = false;
        }
    }
    for (int k = 0; k < 2; ++k) {
        if (counts[k] && (eb[0] == ea[k] || eb[1] == ea[k])) {
            return true;
        }
    }
    return false;
}

bool GraphUtils::checkIfSameVertexes(const KxSpatialGraph* graph, int a, int b) {
    if (!isLine(graph, a) || !isLine(graph, b) || isSelfLoop(graph, a)) {
        return false;
    }
    Vec3f ea[2], eb[2];
    endPositions(graph, a, ea);
    endPositions(graph, b, eb);
    return (eb[0] == ea[0] && eb[1] == ea[1]) || (eb[0] == ea[1] && eb[1] == ea[0]);
}

int GraphUtils::getThinnestLine(const KxSpatialGraph* graph, const DArray<int>& lines) {
    const PointAttribute* thickness = thicknessAttribute(graph);
    int thinnest = -1;
    float smallest = 0.0f;
    for (int line : lines) {
        if (!isLine(graph, line)) {
            continue;
        }
        float t = thickness ? meanThickness(thickness, line) : 0.0f;
        if (thinnest < 0 || t < smallest) {
            thinnest = line;
            smallest = t;
        }
    }
    return thinnest;
}

float GraphUtils::calculateLineThicknes(const KxSpatialGraph* graph, int line) {
    const PointAttribute* thickness = thicknessAttribute(graph);
    return thickness && isLine(graph, line) ? meanThickness(thickness, line) : 0.0f;
}

int GraphUtils::arraySizeCompare(const DArray<int>& a, const DArray<int>& b) {
    return a.size() > b.size() ? -1 : (a.size() < b.size() ? 1 : 0);
}
