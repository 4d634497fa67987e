#pragma once

#include <functional>
#include <string>

#include <pybind11/pybind11.h>

class KxTclInterpreter;

// The library behind the Python module: one korva session (the object pool,
// a Tcl interpreter with the console commands and the undo stack, the
// kxspatialgraph package and its file formats), made when the module is
// imported and kept until the process ends. The library runs on one thread at
// a time: every call into it goes through run().
class PySession {
public:
    // Creates the session and adds the exception class `Error` to the module.
    static void init(pybind11::module_& module);
    static KxTclInterpreter& tcl();

    // Runs work with the GIL released and the library lock held, collecting the
    // message console's lines. When work answers false, or an "Error: " line
    // was printed, raises kxspatialgraph.Error with those lines (fallback when
    // there were none); otherwise warnings become Python warnings and plain
    // lines go to sys.stdout.
    static void run(const std::function<bool()>& work, const char* fallback = "Error: The call failed.");
    // The same for a console command that decides its own success: only its
    // answer false raises; "Error: " lines of a command that succeeded (an
    // edit that changed the graph and is on the undo stack) become warnings.
    static void runCommand(const std::function<bool()>& command);
    // Runs work under the library lock, the caller keeping the GIL: for short
    // reads that hand data to Python and print nothing.
    static void locked(const std::function<void()>& work);
};
