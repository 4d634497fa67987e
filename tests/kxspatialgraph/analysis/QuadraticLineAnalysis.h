#pragma once

// The tree and loop procedures written plainly: every line scans all lines
// for neighbours and the loop walk recurses. Slow (quadratic), obviously
// faithful, and the yardstick GraphUtils is compared with on random graphs.

#include <algorithm>
#include <cstdio>
#include <string>

#include "korva/base/DArray.h"
#include "kxspatialgraph/analysis/GraphUtils.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace QuadraticLineAnalysis {

using Lines = DArray<int>;
using LineSets = DArray<DArray<int>>;
const auto connected = GraphUtils::checkIfLinesAreConnected;
const auto select = GraphUtils::selectLoopyLine;

inline bool isSelfLoop(const KxSpatialGraph* g, int e) {
    return g->getEdgeSource(e) == g->getEdgeTarget(e);
}

inline Lines pendingOf(const KxSpatialGraph* g, const Lines& startLines) {
    Lines pending(g->getNumEdges(), -1);
    for (int i = 0; i < g->getNumEdges(); ++i) {
        pending[i] = startLines.isEmpty() || startLines.find(i) >= 0 ? i : -1;
    }
    return pending;
}

inline bool shortcut(Lines& queue, int i, int levelEnd, int& shortcuts) {
    if (queue.size() != levelEnd + 1 || shortcuts >= 10) {
        return false;
    }
    ++shortcuts;
    queue[i] = queue.last();
    queue.remove(queue.size() - 1);
    return true;
}

inline void trees(const KxSpatialGraph* g, LineSets& trees, Lines& ranks,
                  DArray<GraphUtils::LineLocation>& locations, const Lines& startLines) {
    int n = g->getNumEdges();
    Lines pending = pendingOf(g, startLines);
    EdgeVertexAttribute* givenRanks = g->findEdgeAttribute("Ranks");
    trees.clear();
    ranks = Lines(n, 0);
    for (int seed = 0; seed < n; ++seed) {
        Lines tree, queue;
        if (pending[seed] != -1) {
            queue.append(seed);
        }
        for (int levelStart = 0; levelStart < queue.size();) {
            int levelEnd = queue.size(), shortcuts = 0;
            for (int i = levelStart; i < levelEnd;) {
                int e = queue[i];
                tree.append(e);
                ranks[e] = givenRanks ? givenRanks->getIntDataAtIdx(e) : 0;
                for (int f = 0; f < n; ++f) {
                    if (f != e && pending[f] != -1 && connected(g, e, f, -1) && queue.find(f) < 0) {
                        queue.append(f);
                    }
                }
                pending[e] = -1;
                i += shortcut(queue, i, levelEnd, shortcuts) ? 0 : 1;
            }
            levelStart = levelEnd;
        }
        if (!tree.isEmpty()) {
            trees.append(tree);
        }
    }
    std::stable_sort(trees.begin(), trees.end(),
                     [](const Lines& a, const Lines& b) { return a.size() > b.size(); });
    locations = DArray<GraphUtils::LineLocation>(n);
    for (int t = 0; t < trees.size(); ++t) {
        for (int p = 0; p < trees[t].size(); ++p) {
            locations[trees[t][p]] = {t, p};
        }
    }
}

// Returns what identifyTree prints.
inline std::string tree(const KxSpatialGraph* g, int start, Lines& treeLines, LineSets& levels) {
    int n = g->getNumEdges(), level = 0;
    Lines pending = pendingOf(g, Lines()), rank(n, 0), queue{start};
    treeLines.clear();
    for (int levelStart = 0;;) {
        int levelEnd = queue.size(), shortcuts = 0;
        for (int i = levelStart; i < levelEnd;) {
            int e = queue[i], count = 0, single = -1;
            bool appended = false;
            treeLines.append(e);
            rank[e] = level;
            for (int f = 0; f < n; ++f) {
                if (f != e && pending[f] != -1 && connected(g, e, f, -1)) {
                    ++count;
                    single = f;
                    if ((appended = queue.find(f) < 0)) {
                        queue.append(f);
                    }
                }
            }
            pending[e] = -1;
            if (count == 1) {
                if (appended) {
                    queue.remove(queue.size() - 1);
                }
                queue[i] = single;
                level = std::max(level, 1);
            } else {
                i += shortcut(queue, i, levelEnd, shortcuts) ? 0 : 1;
            }
        }
        if (++level > 10000 || queue.size() == levelEnd) {
            break;
        }
        levelStart = levelEnd;
    }
    levels = LineSets(level);
    std::string printed;
    char text[64];
    for (int e : treeLines) {
        levels[rank[e]].append(e);
        std::snprintf(text, sizeof text, "rank1 [%d] line [%d]\n", rank[e], e);
        printed += text;
    }
    for (int i = 0; i < n; ++i) {
        std::snprintf(text, sizeof text, "rank2 [%d] line [%d]\n", rank[i], i);
        printed += text;
    }
    return printed;
}

struct LoopWalk {
    const KxSpatialGraph* g;
    Lines& loopy;
    Lines& pending;
    Lines path;

    int recur(int prev, int line) {
        if (isSelfLoop(g, line)) {
            select(loopy, line);
        }
        if (path.find(line) >= 0) {
            select(loopy, prev);
            pending[prev] = -1;
            return line;
        }
        path.append(line);
        for (int j = 0; j < g->getNumEdges(); ++j) {
            if (j == line || j == prev || pending[j] == -1) {
                continue;
            }
            int r = connected(g, line, j, prev) ? recur(line, j) : -1;
            if (r != -1) {
                path.remove(path.size() - 1);
                if (r != line && r != -2) {
                    select(loopy, line);
                }
                return r == line ? -2 : r;
            }
            if (GraphUtils::checkIfSameVertexes(g, line, j)) {
                select(loopy, line);
                select(loopy, j);
            }
        }
        path.remove(path.size() - 1);
        pending[line] = -1;
        return -1;
    }
};

inline void loops(const KxSpatialGraph* g, LineSets& loops, Lines& loopy, const Lines& startLines) {
    Lines pending = pendingOf(g, startLines), work;
    loopy.clear();
    LoopWalk walk{g, loopy, pending, {}};
    for (int first = 0; first < pending.size(); ++first) {
        while (pending[first] != -1) {
            walk.recur(-1, first);
        }
    }
    loops.clear();
    for (int line : loopy) {
        isSelfLoop(g, line) ? loops.append(Lines{line}) : work.append(line);
    }
    for (int k = 0; k < work.size(); ++k) {
        if (work[k] == -1) {
            continue;
        }
        Lines loop{work[k]};
        work[k] = -1;
        for (int i = 0; i < loop.size(); ++i) {
            for (int& w : work) {
                if (w != -1 && connected(g, loop[i], w, -1)) {
                    loop.append(w);
                    w = -1;
                }
            }
        }
        auto at = std::upper_bound(loops.begin(), loops.end(), loop, [](const Lines& a, const Lines& b) {
            return GraphUtils::arraySizeCompare(a, b) < 0;
        });
        loops.insert(static_cast<int>(at - loops.begin()), loop);
    }
}

// The first line of the loop with the smallest mean "thickness"; all count 0 without one.
inline int thinnest(const KxSpatialGraph* g, const Lines& loop) {
    const PointAttribute* t = g->findEdgePointAttribute("thickness");
    auto mean = [&](int e) {
        float sum = 0.0f;
        for (int p = 0; t && p < g->getNumEdgePoints(e); ++p) {
            sum += t->getFloatDataAtPoint(e, p);
        }
        return sum / static_cast<float>(g->getNumEdgePoints(e));
    };
    return *std::min_element(loop.begin(), loop.end(), [&](int a, int b) { return mean(a) < mean(b); });
}

inline Lines loopGeneratingLines(const KxSpatialGraph* g) {
    LineSets found;
    Lines loopy, lines;
    loops(g, found, loopy, Lines());
    for (int i = 0; i < loopy.size(); ++i) {
        bool twin = false;
        for (int j = i + 1; j < loopy.size(); ++j) {
            twin = twin || GraphUtils::checkIfSameVertexes(g, loopy[i], loopy[j]);
        }
        if (isSelfLoop(g, loopy[i]) || twin) {
            lines.append(loopy[i]);
        }
    }
    for (const Lines& loop : found) {
        int line = loop.size() > 2 ? thinnest(g, loop) : -1;
        if (line >= 0 && lines.find(line) < 0) {
            lines.append(line);
        }
    }
    return lines;
}

}  // namespace QuadraticLineAnalysis
