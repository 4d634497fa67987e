#include "kxspatialgraph/analysis/LinesAtPositions.h"

#include "kxspatialgraph/analysis/LineEnds.h"

LinesAtPositions::LinesAtPositions(const LineEnds& ends, const DArray<int>& lines)
    : lines_(lines), listed_(lines.size(), 1), slotOf_(2 * lines.size(), -1) {
    int numPositions = ends.numPositions();
    start_.resize(numPositions + 1, 0);
    for (int line : lines_) {
        ++start_[ends.source(line)];
        if (ends.target(line) != ends.source(line)) {
            ++start_[ends.target(line)];
        }
    }
    int total = 0;
    for (int p = 0; p <= numPositions; ++p) {
        int count = p < numPositions ? start_[p] + 1 : 0;
        start_[p] = total;
        total += count;
    }
    items_.resize(total, -1);
    skip_.resize(total);
    for (int s = 0; s < total; ++s) {
        skip_[s] = s;
    }
    DArray<int> fill(start_);
    for (int item = 0; item < lines_.size(); ++item) {
        int s = ends.source(lines_[item]);
        int t = ends.target(lines_[item]);
        slotOf_[2 * item] = fill[s];
        items_[fill[s]++] = item;
        if (t != s) {
            slotOf_[2 * item + 1] = fill[t];
            items_[fill[t]++] = item;
        }
    }
}

void LinesAtPositions::withdraw(int item) {
    if (!listed_[item]) {
        return;
    }
    listed_[item] = 0;
    for (int k = 2 * item; k < 2 * item + 2; ++k) {
        if (slotOf_[k] >= 0) {
            skip_[slotOf_[k]] = slotOf_[k] + 1;
        }
    }
}

int LinesAtPositions::nextListed(int slot) {
    while (skip_[slot] != slot) {
        int next = skip_[slot];
        skip_[slot] = skip_[next];
        slot = next;
    }
    return slot;
}

void LinesAtPositions::takeAll(int a, int b, DArray<int>& out) {
    if (b == a) {
        b = -1;
    }
    int sa = nextListed(first(a));
    int sb = b >= 0 ? nextListed(first(b)) : -1;
    while (true) {
        int ia = itemAt(sa);
        int ib = sb >= 0 ? itemAt(sb) : -1;
        if (ia < 0 && ib < 0) {
            return;
        }
        int item = ia < 0 ? ib : (ib < 0 ? ia : (ia < ib ? ia : ib));
        out.append(lines_[item]);
        withdraw(item);
        sa = nextListed(sa);
        if (sb >= 0) {
            sb = nextListed(sb);
        }
    }
}

int LinesAtPositions::findUpToTwo(int a, int b, int found[2]) {
    int count = 0;
    for (int p : {a, b == a ? -1 : b}) {
        if (p < 0) {
            continue;
        }
        for (int s = nextListed(first(p)); s != end(p) && count < 2; s = nextListed(s + 1)) {
            int item = itemAt(s);
            if (count == 0 || found[0] != item) {
                found[count++] = item;
            }
        }
    }
    return count;
}
