#pragma once

#include <utility>

#include "korva/base/BitField.h"
#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

class KxSpatialGraph;

// An undoable edit of a graph. Constructed with the graph (not owned), the
// highlighted selection (what the edit acts on) and the visible selection
// (what the display shows), both copied whole. exec() applies the edit,
// undo() reverts it, and exec() after undo() repeats it from the stored data.
// The four getters tell the editor which selections to show afterwards.
// Operations never announce changes; the editor touches and fires the graph.
class Operation {
public:
    Operation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
              const SpatialGraphSelection& visible);
    virtual ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    virtual void exec() = 0;
    virtual void undo() = 0;

    // Default: nothing highlighted, sized to the graph's current counts.
    virtual SpatialGraphSelection getHighlightSelectionAfterOperation() const;
    // Default: the highlighted selection given at construction.
    virtual SpatialGraphSelection getHighlightSelectionAfterUndo() const;
    // Default: every vertex, edge and edge point, sized to the graph's current counts.
    virtual SpatialGraphSelection getVisibleSelectionAfterOperation() const;
    // Default: the visible selection given at construction.
    virtual SpatialGraphSelection getVisibleSelectionAfterUndo() const;

    // Coordinates of vertex v of the graph.
    Vec3f getVertex(int v) const;

    KxSpatialGraph* getGraph() const { return graph_; }

protected:
    // Walks the set bits of its own copy of a bit set in ascending order:
    // next() yields each set index once, then -1.
    class Cursor {
    public:
        Cursor() = default;
        explicit Cursor(BitField bits) : bits_(std::move(bits)) {}
        int next();
        // The set indices after the current one, ascending; the cursor ends exhausted.
        DArray<int> remaining();

    private:
        BitField bits_;
        int current_ = -1;
    };

    // False after an "Error: " line naming the operation when v (e) is not a
    // vertex (edge) of the graph. Operations refuse such indices instead of
    // handing them to the primitives, which do not check them.
    bool checkVertex(const char* operation, int v) const;
    bool checkEdge(const char* operation, int e) const;

    // Restarts the vertex, edge and all-points cursors on the highlighted
    // selection as it is now (the constructor starts them once).
    void startCursors();

    KxSpatialGraph* graph_;
    SpatialGraphSelection highlighted_;
    SpatialGraphSelection visible_;
    Cursor vertexCursor_;
    Cursor edgeCursor_;
    Cursor allPointsCursor_;
};
