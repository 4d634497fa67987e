#pragma once

#include "korva/base/DArray.h"
#include "kxspatialgraph/analysis/LinesAtPositions.h"

class LineEnds;

// The depth-first walk that marks loopy lines, with an explicit stack instead
// of one call per line, so chains of millions of lines cannot exhaust the
// stack. It produces exactly the effects of the recursive definition (see
// GraphUtils::identifyLoopRecur): the same loopy lines in the same order and
// the same pending entries set to -1. Neighbours come from LinesAtPositions,
// the pending lines being its listed items.
class LoopSearch {
public:
    // pending: one entry per line, -1 for lines that take no part; kept up to
    // date. loopyLines may hold lines already; they are not added twice.
    LoopSearch(const LineEnds& ends, DArray<int>& pending, DArray<int>& loopyLines);

    // One call of the recursive walk from (prevLine, line): -1 when the walk
    // ended without closing a cycle, -2 when it closed one and walked back.
    int walk(int prevLine, int line);
    // The walk with its restarts folded in: after a cycle has been walked
    // back, the recursive procedure starts again from the same first line and
    // retraces the same path up to the line before the one that closed the
    // cycle. That line's frame simply goes on here, with the same result and
    // without retracing. Ends when the whole walk from line has finished.
    void walkWithRestarts(int line);

private:
    struct Frame {
        int line;
        int prev;
        int positionA;  // the counted ends of line; -1 for none
        int positionB;
        int slotA;
        int slotB;
    };

    void addLoopy(int line);
    void finishLine(int line);
    // Enters (prevLine, line): pushes a frame, or, when line is already on the
    // path, closes the cycle and walks back. Returns false for a closed cycle.
    bool enter(int prevLine, int line);
    void closeCycle(int prevLine, int line);
    int nextNeighbour(Frame& frame);
    int run(int prevLine, int line, bool restart);
    void popFrame();
    // The highest depth at or below depth whose line may not be loopy yet; -1 if none.
    int unmarkedDepthAtOrBelow(int depth);

    const LineEnds& ends_;
    DArray<int>& pending_;
    DArray<int>& loopy_;
    LinesAtPositions pendingLines_;
    DArray<char> isLoopy_;
    DArray<int> depthOnPath_;  // -1 when the line is not on the path
    DArray<Frame> path_;
    // Walking back after a cycle adds the lines of the frames above the cycle's
    // start; frames whose lines are loopy already are skipped through these
    // links (to a lower depth), so repeated walk-backs stay linear.
    DArray<int> skipDown_;
};
