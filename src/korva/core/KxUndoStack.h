#pragma once

#include <deque>
#include <memory>
#include <unordered_map>

#include "korva/core/KxUndoableCommand.h"

class KxData;

// The undo and redo lists of a session. push() runs a command and puts it on
// top of the undo list; undo() and redo() move the top command between the
// lists. A push clears the redo list. At most maxDepth commands are kept for
// undo; the oldest are deleted first.
//
// A command's undo is exact only while its data object is in the state the
// command left it in, so the stack forgets (deletes) every command of a data
// object that announces new data through a fire() the stack did not cause, and
// whoever removes a data object calls forget() before it is deleted.
class KxUndoStack {
public:
    explicit KxUndoStack(int maxDepth = 100);
    ~KxUndoStack();
    KxUndoStack(const KxUndoStack&) = delete;
    KxUndoStack& operator=(const KxUndoStack&) = delete;

    void push(std::unique_ptr<KxUndoableCommand> command);
    // Undoes the newest command; null if there is none. The command stays
    // valid until the next change of the stack.
    const KxUndoableCommand* undo();
    // Repeats the newest undone command; null if there is none.
    const KxUndoableCommand* redo();

    int undoCount() const { return static_cast<int>(undo_.size()); }
    int redoCount() const { return static_cast<int>(redo_.size()); }
    const KxUndoableCommand* nextUndo() const { return undo_.empty() ? nullptr : undo_.back().get(); }
    const KxUndoableCommand* nextRedo() const { return redo_.empty() ? nullptr : redo_.back().get(); }

    int getMaxDepth() const { return maxDepth_; }
    // A depth below 1 counts as 1; drops the oldest commands beyond it.
    void setMaxDepth(int maxDepth);

    // Deletes every undo and redo command that edits data.
    void forget(const KxData* data);
    void clear();

private:
    using Entry = std::unique_ptr<KxUndoableCommand>;

    // Moves the newest command of from onto to, running it forward or back.
    const KxUndoableCommand* step(std::deque<Entry>& from, std::deque<Entry>& to, bool forward);
    // Runs exec or undo with the stack's own change notifications ignored.
    void run(KxUndoableCommand& command, bool forward);
    void trim();
    void watch(KxData* data);
    void unwatchUnused();

    std::deque<Entry> undo_;
    std::deque<Entry> redo_;
    int maxDepth_;
    bool running_ = false;
    // Listener ids on the data objects that commands edit.
    std::unordered_map<KxData*, int> watched_;
};
