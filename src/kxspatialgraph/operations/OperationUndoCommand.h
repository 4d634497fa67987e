#pragma once

#include <memory>
#include <string>

#include "korva/core/KxUndoableCommand.h"

class KxSpatialGraph;
class Operation;

// Puts a graph operation on the host's undo stack: exec() and undo() run the
// operation's and then mark the graph's data as changed and fire once, as the
// operations themselves never announce changes.
class OperationUndoCommand : public KxUndoableCommand {
public:
    // Takes ownership of operation, which edits graph; name says what it does ("delete").
    OperationUndoCommand(KxSpatialGraph* graph, Operation* operation, const char* name);
    ~OperationUndoCommand() override;

    void exec() override;
    void undo() override;
    // "NAME on LABEL", with the graph's label as it is now.
    std::string description() const override;
    KxData* target() const override;

    const Operation& operation() const { return *operation_; }

private:
    void changed();

    KxSpatialGraph* graph_;
    std::unique_ptr<Operation> operation_;
    std::string name_;
};
