#pragma once

class KxTclInterpreter;

// Installs the host's console commands in the interpreter:
//   load FILE ?FILE ...?     reads files through the format registry; answers the new labels
//   save FORMAT OBJECT FILE  writes an object (FORMAT: a format's name or extension)
//   remove OBJECT ?...?      removes objects from the pool ("remove -all": every object)
//   all ?CLASS?              labels of the pool's objects (of the class, if given)
//   create CLASS ?LABEL?     creates an object of a registered class; answers its label
//   help                     lists commands, the classes create can make, and formats
//   quit ?CODE?              ends the session
// Failures print an "Error: " line on the message console and fail the
// command with that line as the Tcl result.
void installConsoleCommands(KxTclInterpreter& tcl);
