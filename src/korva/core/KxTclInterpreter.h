#pragma once

#include <functional>
#include <string>

struct Tcl_Interp;
class KxObject;
class KxObjectPool;

// The Tcl interpreter of a session, tied to an object pool: every object in
// the pool is a Tcl command named by its label, and `{label} command args`
// calls the object's parse(interp, argc, argv). Commands appear and disappear
// as objects are added, renamed and removed; while the interpreter lives, the
// pool treats existing Tcl command names as taken, so an object never hides a
// command ("load" gets the label "load2"). The console commands (load, save,
// ...) are installed by installConsoleCommands (KxConsoleCommands.h).
// One interpreter per pool at a time.
class KxTclInterpreter {
public:
    explicit KxTclInterpreter(KxObjectPool& pool);
    // Deletes the object commands and the interpreter; the pool keeps its objects.
    ~KxTclInterpreter();
    KxTclInterpreter(const KxTclInterpreter&) = delete;
    KxTclInterpreter& operator=(const KxTclInterpreter&) = delete;

    Tcl_Interp* interp() const { return interp_; }
    KxObjectPool& pool() const { return pool_; }

    // Evaluates a script at global level; TCL_OK, TCL_ERROR, ...
    int eval(const char* script);
    // Evaluates a script file at global level.
    int evalFile(const char* path);
    // The interpreter's result as text.
    std::string result() const;
    // The message of a failed evaluation followed by Tcl's trace of where it happened.
    std::string errorInfo() const;

    // Sets argv0, argv (a list) and argc for a script.
    void setScriptArgs(const char* argv0, int argc, char** argv);

    // Runs a command's body. A C++ exception escaping it must not unwind
    // through Tcl: it becomes an "Error: ..." line on the console and the
    // command's Tcl error.
    static int guard(Tcl_Interp* interp, const std::function<int()>& command);
    // The "Error: ..." line for the exception being handled; call only in a catch block.
    static std::string currentExceptionLine();

    // What `quit ?code?` does. The default handler clears the pool and exits the process.
    using QuitHandler = std::function<void(int code)>;
    void setQuitHandler(QuitHandler handler) { quit_ = std::move(handler); }
    void quit(int code);

private:
    void createObjectCommand(KxObject* object);
    void deleteObjectCommand(const char* label);

    KxObjectPool& pool_;
    Tcl_Interp* interp_;
    int observerId_;
    QuitHandler quit_;
};
