#pragma once

#include <memory>
#include <string>

class KxData;
class KxTclInterpreter;

// One run of the korva executable: the Tcl interpreter on the session's
// object pool with the console commands, and the packages loaded (the
// kxspatialgraph package and those named in KORVA_PACKAGES, separated by
// colons or commas). Ends by emptying the pool and flushing Tcl's output.
class KorvaSession {
public:
    explicit KorvaSession(const char* argv0);
    ~KorvaSession();

    KxTclInterpreter& tcl() { return *tcl_; }

    // Runs a script file with argv/argc set; 0, or 1 after printing the error.
    int runScript(const char* path, int argc, char** argv);
    // Runs commands; prints a non-empty result. 0, or 1 after printing the error.
    int runCommands(const char* commands);
    // The console: commands from stdin, each run when complete; on a terminal
    // with a prompt and results, otherwise silently until the first error,
    // which ends the run with 1.
    int runConsole();
    // One line of console input: appended to command, which runs (and is
    // cleared) once it is complete. With keepGoing (a terminal) results are
    // printed and an error is reported and passed over; otherwise an error
    // is reported and answers false, which ends the run.
    bool feedConsole(const std::string& line, std::string& command, bool keepGoing);

    // Loads each file and prints the info report of every object it holds.
    // 0, or 1 when a file cannot be loaded or its reader printed an "Error: "
    // line (a damaged file that still loads).
    int loadAndDescribe(int count, char** paths);

    // Loads file and answers the first object it holds of class className;
    // null after an "Error: " line (reading failed, or "FILE holds no WHAT.").
    static KxData* loadFirst(const char* file, const char* className, const char* what);

    // Prints a failed evaluation: the message (unless a command printed it
    // already as its "Error: " or "USAGE: " line) and Tcl's trace of where it happened.
    void reportError();
    // Prints the failure's message unless a command printed it already; for
    // commands korva composed itself, whose trace would show its own script.
    void printErrorMessage();

private:
    static void finish(int code);

    std::unique_ptr<KxTclInterpreter> tcl_;
    int tapId_;
    std::string lastError_;
};
