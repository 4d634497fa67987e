#include "kxspatialgraph/operations/OperationUndoCommand.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/operations/Operation.h"

OperationUndoCommand::OperationUndoCommand(KxSpatialGraph* graph, Operation* operation, const char* name)
    : graph_(graph), operation_(operation), name_(name) {}

OperationUndoCommand::~OperationUndoCommand() = default;

void OperationUndoCommand::exec() {
    operation_->exec();
    changed();
}

void OperationUndoCommand::undo() {
    operation_->undo();
    changed();
}

std::string OperationUndoCommand::description() const {
    return name_ + " on " + graph_->getLabel();
}

KxData* OperationUndoCommand::target() const {
    return graph_;
}

void OperationUndoCommand::changed() {
    graph_->touch(KxData::NEW_DATA);
    graph_->fire();
}
