#include "kxspatialgraph/analysis/LoopSearch.h"

#include "kxspatialgraph/analysis/LineEnds.h"

namespace {

DArray<int> allLines(int n) {
    DArray<int> lines(n);
    for (int i = 0; i < n; ++i) {
        lines[i] = i;
    }
    return lines;
}

}  // namespace

LoopSearch::LoopSearch(const LineEnds& ends, DArray<int>& pending, DArray<int>& loopyLines)
    : ends_(ends),
      pending_(pending),
      loopy_(loopyLines),
      pendingLines_(ends, allLines(ends.numLines())),
      isLoopy_(ends.numLines(), 0),
      depthOnPath_(ends.numLines(), -1) {
    for (int line = 0; line < ends.numLines(); ++line) {
        if (pending_[line] == -1) {
            pendingLines_.withdraw(line);
        }
    }
    for (int line : loopy_) {
        if (line >= 0 && line < ends.numLines()) {
            isLoopy_[line] = 1;
        }
    }
}

int LoopSearch::walk(int prevLine, int line) {
    return run(prevLine, line, false);
}

void LoopSearch::walkWithRestarts(int line) {
    run(-1, line, true);
}

void LoopSearch::addLoopy(int line) {
    if (!isLoopy_[line]) {
        isLoopy_[line] = 1;
        loopy_.append(line);
    }
}

void LoopSearch::finishLine(int line) {
    pending_[line] = -1;
    pendingLines_.withdraw(line);
}

bool LoopSearch::enter(int prevLine, int line) {
    if (ends_.isSelfLoop(line)) {
        addLoopy(line);
    }
    if (depthOnPath_[line] >= 0) {
        closeCycle(prevLine, line);
        return false;
    }
    Frame frame{line, prevLine, -1, -1, 0, 0};
    if (!ends_.isSelfLoop(line)) {
        int s = ends_.source(line);
        int t = ends_.target(line);
        // The end that touches the previous line does not count.
        if (prevLine >= 0 && ends_.touches(prevLine, s)) {
            frame.positionA = t;
        } else if (prevLine >= 0 && ends_.touches(prevLine, t)) {
            frame.positionA = s;
        } else {
            frame.positionA = s;
            frame.positionB = t != s ? t : -1;
        }
        frame.slotA = pendingLines_.first(frame.positionA);
        frame.slotB = frame.positionB >= 0 ? pendingLines_.first(frame.positionB) : 0;
    }
    depthOnPath_[line] = path_.size();
    skipDown_.resize(path_.size() + 1);
    skipDown_[path_.size()] = path_.size();
    path_.append(frame);
    return true;
}

int LoopSearch::unmarkedDepthAtOrBelow(int depth) {
    while (depth >= 0 && skipDown_[depth] != depth) {
        int next = skipDown_[depth];
        if (next >= 0) {
            skipDown_[depth] = skipDown_[next];
        }
        depth = next;
    }
    return depth;
}

void LoopSearch::closeCycle(int prevLine, int line) {
    addLoopy(prevLine);
    finishLine(prevLine);
    // Walking back from the deepest frame to the cycle's first line, each
    // frame on the way adds its line; the first line itself is not added.
    int stop = depthOnPath_[line];
    for (int d = unmarkedDepthAtOrBelow(path_.size() - 1); d > stop; d = unmarkedDepthAtOrBelow(d - 1)) {
        addLoopy(path_[d].line);
        skipDown_[d] = d - 1;
    }
}

int LoopSearch::nextNeighbour(Frame& frame) {
    if (frame.positionA < 0) {
        return -1;
    }
    while (true) {
        int sa = pendingLines_.nextListed(frame.slotA);
        int sb = frame.positionB >= 0 ? pendingLines_.nextListed(frame.slotB) : -1;
        int ia = pendingLines_.itemAt(sa);
        int ib = sb >= 0 ? pendingLines_.itemAt(sb) : -1;
        if (ia < 0 && ib < 0) {
            return -1;
        }
        int j = ia < 0 ? ib : (ib < 0 ? ia : (ia < ib ? ia : ib));
        if (ia == j) {
            frame.slotA = sa + 1;
        }
        if (ib == j) {
            frame.slotB = sb + 1;
        }
        if (j != frame.line && j != frame.prev) {
            return j;
        }
    }
}

void LoopSearch::popFrame() {
    depthOnPath_[path_.last().line] = -1;
    path_.remove(path_.size() - 1);
}

int LoopSearch::run(int prevLine, int line, bool restart) {
    if (!enter(prevLine, line)) {
        return -2;
    }
    while (!path_.isEmpty()) {
        int current = path_.last().line;
        int next = nextNeighbour(path_.last());
        if (next >= 0) {
            if (!enter(current, next)) {
                if (!restart) {
                    while (!path_.isEmpty()) {
                        popFrame();
                    }
                    return -2;
                }
                popFrame();  // the line that closed the cycle is done with it
            }
            continue;
        }
        popFrame();
        finishLine(current);
        if (!path_.isEmpty()) {
            int parent = path_.last().line;
            if (!ends_.isSelfLoop(parent) && ends_.sameEnds(parent, current)) {
                addLoopy(parent);
                addLoopy(current);
            }
        }
    }
    return -1;
}
