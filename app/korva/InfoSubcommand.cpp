// korva info FILE ...: loads each file and prints the info report of what it
// holds; exits 1 when a file cannot be read or its reader reported an error.

#include "KorvaSession.h"
#include "KorvaSubcommand.h"

namespace {

int runInfo(KorvaSession& session, int argc, char** argv) {
    if (argc < 1) {
        return KorvaSubcommand::find("info")->usage();
    }
    return session.loadAndDescribe(argc, argv);
}

KorvaSubcommand::Registrar registrar{"info", "FILE ...", "load files and print what they hold", runInfo};

}  // namespace
