#pragma once

#include <string>

class KxObjectPool;
class KxTclInterpreter;

// A session saved as a Tcl script that recreates it when sourced into a
// fresh session: a load line for every data object read from a file (a
// create line, with a warning, for one that was not), a create line for
// every module, then per module, after the modules whose results it uses,
// its port and connection lines and the lines with which it recreates its
// results ("{module} create;").
class KxSessionState {
public:
    static std::string write(const KxObjectPool& pool);
    // Writes the script to filename (an existing file survives a failure);
    // false after an "Error: " line.
    static bool save(const KxObjectPool& pool, const char* filename);
    // Installs the console command `saveState FILE` and registers the module
    // classes; `source FILE` (Tcl's own) restores the state.
    static void installCommands(KxTclInterpreter& tcl);
};
