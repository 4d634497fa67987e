#pragma once

#include "korva/base/DArray.h"

class LineEnds;

// For every end position, the lines of a given list that end there, kept in
// the order of the list (item k is lines[k]). Items can be withdrawn; walking
// a position's remaining items skips withdrawn ones in amortised constant time
// (each slot is skipped over once, by path halving), so a search that finds a
// line's neighbours here instead of scanning all lines stays near linear.
class LinesAtPositions {
public:
    // Lists every item; withdraw the ones that must not take part.
    LinesAtPositions(const LineEnds& ends, const DArray<int>& lines);

    bool isListed(int item) const { return listed_[item] != 0; }
    int lineOf(int item) const { return lines_[item]; }
    void withdraw(int item);

    // Slots of a position's list: first(p) .. end(p) - 1, end(p) being a
    // sentinel that is never withdrawn.
    int first(int position) const { return start_[position]; }
    int end(int position) const { return start_[position + 1] - 1; }
    // The first slot at or after slot whose item is still listed (end(p) if none).
    int nextListed(int slot);
    int itemAt(int slot) const { return items_[slot]; }

    // The listed items at positions a and b (b < 0 or b == a: a only) in
    // ascending item order, each once: appended to out as lines and withdrawn.
    void takeAll(int a, int b, DArray<int>& out);
    // Up to two distinct listed items at positions a and b (without
    // withdrawing them); returns how many were found.
    int findUpToTwo(int a, int b, int found[2]);

private:
    DArray<int> lines_;
    DArray<char> listed_;
    DArray<int> start_;   // per position, with one sentinel slot at each list's end
    DArray<int> items_;   // per slot; -1 in sentinels
    DArray<int> skip_;    // per slot: itself while listed, else a later slot
    DArray<int> slotOf_;  // two per item: its slot at the source and at the target position (-1: none)
};
