#pragma once

#include <string>

class KxData;

// One edit that a KxUndoStack can take back and repeat. exec() applies the
// edit, undo() reverts it exactly; the stack calls them alternately, exec()
// first. Implementations keep what their undo needs, never pointers into the
// data they edit.
class KxUndoableCommand {
public:
    virtual ~KxUndoableCommand() = default;
    virtual void exec() = 0;
    virtual void undo() = 0;
    // One line naming the edit for the user, e.g. "delete on tree.swc".
    virtual std::string description() const = 0;
    // The data object the edit changes (not owned); null if it changes none.
    virtual KxData* target() const = 0;
};
