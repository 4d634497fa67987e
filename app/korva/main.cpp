// The korva executable: the Tcl console, script runner and batch subcommands.
//
//   korva                      interactive console (stdin read as a script when it is not a terminal)
//   korva SCRIPT.tcl [ARGS]    run a script with argv set
//   korva FILE ...             load data files and describe them (then the console, on a terminal)
//   korva -c 'COMMANDS'        run commands
//   korva --gui [FILE ... | SCRIPT.tcl [ARGS]]   the viewer window, console on the terminal
//   korva SUBCOMMAND ARGS      batch work, e.g. korva info FILE
//   korva --help | --version

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "KorvaGui.h"
#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxTclInterpreter.h"

namespace {

void printUsage(FILE* out) {
    std::fprintf(out,
                 "usage: korva                    interactive console\n"
                 "       korva SCRIPT.tcl [ARGS]  run a script\n"
                 "       korva FILE ...           load data files and describe them\n"
                 "       korva -c 'COMMANDS'      run commands\n"
                 "       korva --gui [FILE ... | SCRIPT.tcl [ARGS]]  viewer window, console on the terminal\n"
                 "       korva --help | --version\n");
    for (const KorvaSubcommand* s : KorvaSubcommand::all()) {
        std::fprintf(out, "       korva %s %s\n           %s\n", s->name, s->arguments, s->summary);
    }
}

bool isOneOf(const char* arg, const char* a, const char* b, const char* c = nullptr) {
    return std::strcmp(arg, a) == 0 || std::strcmp(arg, b) == 0 || (c && std::strcmp(arg, c) == 0);
}

bool endsWith(const char* text, const char* suffix) {
    size_t n = std::strlen(text), m = std::strlen(suffix);
    return n >= m && std::strcmp(text + n - m, suffix) == 0;
}

bool exists(const char* path) {
    struct stat info;
    return stat(path, &info) == 0;
}

// Whether a format reads files of path's extension (".kxm", ".swc", ...).
bool namedLikeData(const char* path) {
    const std::string extension = KxFileFormatRegistry::extensionOf(path);
    for (int i = 0; i < theFileFormats->size(); ++i) {
        const KxFileFormat& format = theFileFormats->get(i);
        if (format.read && !extension.empty() && format.hasExtension(extension)) {
            return true;
        }
    }
    return false;
}

// A first argument that is no option or subcommand: a script ends in ".tcl"
// or is a file no format reads; a file a format reads is data. So is a file
// named like data that no reader accepts: it is refused with an error, not
// run as a script.
int runFileArgument(KorvaSession& session, int argc, char** argv) {
    const char* path = argv[1];
    if (!endsWith(path, ".tcl") && !exists(path)) {
        theMsg->printf("Error: No file or subcommand named \"%s\"; \"korva --help\" lists the subcommands.",
                       path);
        return 2;
    }
    if (endsWith(path, ".tcl") || (!namedLikeData(path) && !theFileFormats->findReader(path))) {
        return session.runScript(path, argc - 2, argv + 2);
    }
    int status = session.loadAndDescribe(argc - 1, argv + 1);
    return status == 0 && isatty(STDIN_FILENO) ? session.runConsole() : status;
}

int run(int argc, char** argv) {
    if (argc >= 2 && isOneOf(argv[1], "-h", "--help", "help")) {
        printUsage(stdout);
        return 0;
    }
    if (argc >= 2 && isOneOf(argv[1], "-V", "--version")) {
        std::printf("korva %s\n", KORVA_VERSION);
        return 0;
    }
    if (argc >= 2 && std::strcmp(argv[1], "--gui") == 0) {
        KorvaSession session(argv[0]);
        return runGui(session, argv[0], argc - 2, argv + 2);
    }
    if (argc >= 2 && argv[1][0] == '-' && (std::strcmp(argv[1], "-c") != 0 || argc != 3)) {
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
    return runFileArgument(session, argc, argv);
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
