#pragma once

struct Tcl_Interp;
class KxTclInterpreter;
class KxUndoStack;

// Gives the interpreter's session one undo stack and installs its console commands:
//   undo    takes back the newest edit; answers its description
//   redo    repeats the newest undone edit; answers its description
// Both fail with an "Error: " line when there is nothing to take back or
// repeat. The stack is shared by every object of the session, like an
// editor's Edit menu, and forgets the edits of an object that leaves the pool.
void installUndoCommands(KxTclInterpreter& tcl);

// The session's undo stack, or null when installUndoCommands was not called
// for this interpreter.
KxUndoStack* findUndoStack(Tcl_Interp* interp);
