#include "korva/core/KxUndoCommands.h"

#include <string>

#include <tcl.h>

#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/core/KxUndoStack.h"

namespace {

const char* const kAssocKey = "korva::undoStack";

// Lives as long as the interpreter: the stack and the pool observer that
// makes the stack forget removed objects.
struct UndoSession {
    KxUndoStack stack;
    KxObjectPool* pool = nullptr;
    int observerId = 0;
};

void deleteSession(ClientData cd, Tcl_Interp*) {
    auto* session = static_cast<UndoSession*>(cd);
    session->pool->removeObserver(session->observerId);
    delete session;
}

int fail(Tcl_Interp* interp, const char* line) {
    theMsg->printf("%s", line);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(line, -1));
    return TCL_ERROR;
}

// undo / redo: no arguments; the answer is the description of what was done.
int step(ClientData cd, Tcl_Interp* interp, int objc, bool back) {
    if (objc != 1) {
        return fail(interp, back ? "USAGE: undo" : "USAGE: redo");
    }
    KxUndoStack& stack = static_cast<UndoSession*>(cd)->stack;
    const KxUndoableCommand* command = back ? stack.undo() : stack.redo();
    if (!command) {
        return fail(interp, back ? "Error: Nothing to undo." : "Error: Nothing to redo.");
    }
    Tcl_SetObjResult(interp, Tcl_NewStringObj(command->description().c_str(), -1));
    return TCL_OK;
}

int undoCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const[]) {
    return step(cd, interp, objc, true);
}

int redoCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const[]) {
    return step(cd, interp, objc, false);
}

}  // namespace

void installUndoCommands(KxTclInterpreter& tcl) {
    Tcl_Interp* interp = tcl.interp();
    if (findUndoStack(interp)) {
        return;
    }
    auto* session = new UndoSession;
    session->pool = &tcl.pool();
    session->observerId =
        tcl.pool().addObserver([session](KxObjectPool::Event event, KxObject* object, const char*) {
            if (event == KxObjectPool::REMOVED) {
                session->stack.forget(dynamic_cast<KxData*>(object));
            }
        });
    Tcl_SetAssocData(interp, kAssocKey, deleteSession, session);
    Tcl_CreateObjCommand(interp, "undo", undoCmd, session, nullptr);
    Tcl_CreateObjCommand(interp, "redo", redoCmd, session, nullptr);
}

KxUndoStack* findUndoStack(Tcl_Interp* interp) {
    auto* session = static_cast<UndoSession*>(Tcl_GetAssocData(interp, kAssocKey, nullptr));
    return session ? &session->stack : nullptr;
}
