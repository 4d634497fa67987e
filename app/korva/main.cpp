// The korva executable: the Tcl console, script runner and batch subcommands.
//
//   korva                      interactive console (stdin read as a script when it is not a terminal)
//   korva SCRIPT.tcl [ARGS]    run a script with argv set
//   korva -c 'COMMANDS'        run commands
//   korva SUBCOMMAND ARGS      batch work, e.g. korva info FILE

#include <cstdio>
#include <cstring>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxTclInterpreter.h"

namespace {

void printUsage(FILE* out) {
    std::fprintf(out,
                 "usage: korva                    interactive console\n"
                 "       korva SCRIPT.tcl [ARGS]  run a script\n"
                 "       korva -c 'COMMANDS'      run commands\n");
    for (const KorvaSubcommand* s : KorvaSubcommand::all()) {
        std::fprintf(out, "       korva %s %s\n           %s\n", s->name, s->arguments, s->summary);
    }
}

int run(int argc, char** argv) {
    if (argc >= 2 && (std::strcmp(argv[1], "-h") == 0 || std::strcmp(argv[1], "--help") == 0)) {
        printUsage(stdout);
        return 0;
    }
    if (argc >= 2 && std::strcmp(argv[1], "-c") == 0 && argc != 3) {
        printUsage(stderr);
        return 2;
    }
    KorvaSession session(argv[0]);
    if (argc == 1) {
        return session.runConsole();
    }
    if (std::strcmp(argv[1], "-c") == 0) {
        return session.runCommands(argv[2]);
    }
    if (const KorvaSubcommand* subcommand = KorvaSubcommand::find(argv[1])) {
        return subcommand->run(session, argc - 2, argv + 2);
    }
    return session.runScript(argv[1], argc - 2, argv + 2);
}

}  // namespace

// A C++ exception that no command caught (e.g. out of memory in a batch
// subcommand) ends the run with an error line instead of an abort.
int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (...) {
        theMsg->print(KxTclInterpreter::currentExceptionLine());
        return 1;
    }
}
