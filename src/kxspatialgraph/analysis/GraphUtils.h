#pragma once

#include "korva/base/DArray.h"

class KxSpatialGraph;

// Groups a graph's edges ("lines") into trees and loops and gives the lines of
// one tree branch levels ("ranks"). Two lines touch when an end position of
// one equals an end position of the other exactly (float equality of x, y and
// z), whatever vertices they end in: traced morphologies stored as
// vertex-duplicated pieces are analysed as one structure. A line that starts
// and ends at the same vertex (a self-loop) touches nothing by itself.
//
// Neighbours are found through an index of end positions rather than by
// scanning every line, so a graph of a million lines takes seconds; the
// results (order of trees, loops and lines included) are those of the plain
// scan. Lines and start lines outside the graph are reported and skipped.
class GraphUtils {
public:
    // Where identifyTrees put a line: index of its tree, position in the tree.
    struct LineLocation {
        int tree = -1;
        int position = -1;
    };

    // Trees of touching lines, largest first (equal sizes in the order their
    // first lines come in the graph), each grown level by level from its
    // lowest-numbered line. ranks gets one entry per edge: the edge attribute
    // "Ranks" where it exists, else 0. locations gets one entry per edge; lines
    // left out by a non-empty startLines list keep (-1, -1). With startLines,
    // only those lines take part.
    static void identifyTrees(const KxSpatialGraph* graph, DArray<DArray<int>>& trees, DArray<int>& ranks,
                              DArray<LineLocation>& locations, const DArray<int>& startLines);
    static void identifyTrees(const KxSpatialGraph* graph, DArray<DArray<int>>& trees, DArray<int>& ranks,
                              DArray<LineLocation>& locations);
    // The tree holding startLine, with levels[r] the lines of rank r: the number
    // of branchings between a line and the start line (the start line 0, its
    // unbranched continuation 1). Prints "rank1"/"rank2" lines to stdout.
    static void identifyTree(const KxSpatialGraph* graph, int startLine, DArray<int>& treeLines,
                             DArray<DArray<int>>& levels);

    // The rank of every line, each tree of identifyTrees ranked from its first
    // line as identifyTree does, in the order the trees were found; nothing is
    // printed. Lines in no tree (or beyond the level cap) get 0.
    static void rankTrees(const KxSpatialGraph* graph, const DArray<DArray<int>>& trees, DArray<int>& ranks);

    // Loops: groups of touching loopy lines, largest first (a self-loop is a
    // loop of one line). loopyLines are the lines the walk found on cycles, in
    // the order found. With startLines, only those lines take part.
    static void identifyLoops(const KxSpatialGraph* graph, DArray<DArray<int>>& loops,
                              DArray<int>& loopyLines, const DArray<int>& startLines);
    static void identifyLoops(const KxSpatialGraph* graph, DArray<DArray<int>>& loops,
                              DArray<int>& loopyLines);
    static void identifyLoops(const KxSpatialGraph* graph, DArray<DArray<int>>& loops);
    // Appends the lines whose removal opens the loops: self-loops, the first of
    // each pair of parallel loopy lines, and the thinnest line of every loop of
    // more than two lines (unless listed already).
    static void getLoopGeneratingLines(const KxSpatialGraph* graph, DArray<int>& lines);

    // One step of the loop walk, defined recursively: marks self-loops, closes
    // a cycle when line is already on the current path (prevLine becomes
    // loopy and done), otherwise walks every pending line connected to line
    // (given prevLine) in index order and marks parallel twins; lines walked
    // to the end get pending -1. Returns -1 when the walk ended, -2 after a
    // cycle was closed and walked back (every line from the deepest back to
    // the cycle's first line, exclusive, is then loopy). pending has one entry
    // per edge, -1 for lines that take no part. The recursion runs on an
    // explicit stack and the path is local to the call, so it is reentrant;
    // each call indexes the graph anew (identifyLoops indexes it once).
    static int identifyLoopRecur(const KxSpatialGraph* graph, DArray<int>& loopyLines, DArray<int>& pending,
                                 int prevLine, int line);
    // Appends line unless lines holds it already.
    static void selectLoopyLine(DArray<int>& lines, int line);

    // Whether line b touches line a; with prevLine >= 0 the end of a that
    // touches prevLine does not count (a's target when both do). False when a
    // is a self-loop or a line is outside the graph.
    static bool checkIfLinesAreConnected(const KxSpatialGraph* graph, int a, int b, int prevLine);
    // Whether b's ends lie at a's end positions, in the same or the swapped
    // order: parallel lines forming a loop of two. False when a is a self-loop.
    static bool checkIfSameVertexes(const KxSpatialGraph* graph, int a, int b);
    // The line with the smallest mean thickness, the earliest on ties; -1 for an empty list.
    static int getThinnestLine(const KxSpatialGraph* graph, const DArray<int>& lines);
    // Mean of the float point attribute "thickness" over the line's points; 0
    // without that attribute or without points.
    static float calculateLineThicknes(const KxSpatialGraph* graph, int line);
    // Larger first: -1 if a has more elements than b, 1 if fewer, 0 if as many.
    static int arraySizeCompare(const DArray<int>& a, const DArray<int>& b);
};
