#pragma once

#include <vector>

class KorvaSession;

// A batch subcommand of the korva executable: `korva NAME ARGS...`. Each lives
// in its own source file and registers itself with a static registrar, so a
// new subcommand is one new file:
//
//     static int runRender(KorvaSession& session, int argc, char** argv) { ... }
//     static KorvaSubcommand::Registrar reg{"render", "FILE OUT.png", "render a data file", runRender};
//
// run receives the arguments after the subcommand's name, with the packages
// loaded and the console commands installed, and answers the exit status
// (a wrong call: return find("render")->usage()).
struct KorvaSubcommand {
    using Run = int (*)(KorvaSession& session, int argc, char** argv);

    const char* name;
    const char* arguments;
    const char* summary;
    Run run;

    struct Registrar {
        Registrar(const char* name, const char* arguments, const char* summary, Run run);
    };

    // Prints "USAGE: korva NAME ARGUMENTS" as a wrong call's report and
    // answers 2, the exit status of a wrong call.
    int usage() const;

    // Null if there is no subcommand of that name.
    static const KorvaSubcommand* find(const char* name);
    // In the order of their names.
    static std::vector<const KorvaSubcommand*> all();
};
