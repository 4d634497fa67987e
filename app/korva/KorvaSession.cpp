#include "KorvaSession.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include <tcl.h>

#include "korva/core/KxApplication.h"
#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxPackageLoader.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/data/KxColormap.h"
#include "korva/data/KxLineSet.h"
#include "korva/data/KxSpreadSheet.h"
#include "korva/data/KxUniformLabelField3.h"
#include "korva/modules/KxSessionState.h"
#include "korva/viewer/KxViewer.h"

namespace {

void loadPackages() {
    std::string names = "kxspatialgraph";
    if (const char* extra = std::getenv("KORVA_PACKAGES")) {
        names += std::string(":") + extra;
    }
    size_t start = 0;
    while (start < names.size()) {
        size_t end = names.find_first_of(":,", start);
        if (end == std::string::npos) {
            end = names.size();
        }
        if (end > start) {
            thePackageLoader->load(names.substr(start, end - start).c_str());
        }
        start = end + 1;
    }
}

void flushTclOutput() {
    for (int type : {TCL_STDOUT, TCL_STDERR}) {
        if (Tcl_Channel channel = Tcl_GetStdChannel(type)) {
            Tcl_Flush(channel);
        }
    }
    std::fflush(stdout);
    std::fflush(stderr);
}

}  // namespace

KorvaSession::KorvaSession(const char* argv0) {
    // Deliberate: the command line speaks of vertices and edges, as the graph's
    // console commands do, so its reports do not use the "Korva" skin's nodes and segments.
    KxApplication::setSkinName("Korva command line");
    Tcl_FindExecutable(argv0);
    tcl_.reset(new KxTclInterpreter(*theObjectPool));
    installConsoleCommands(*tcl_);
    KxSessionState::installCommands(*tcl_);
    KxViewer::installCommands(*tcl_);
    KxSpreadSheet::registerClass();
    KxColormap::registerClass();
    KxLineSet::registerClass();
    KxUniformLabelField3::registerClass();
    // Lines from `puts` and from the message console must come out in the
    // order they were written, also into a pipe.
    tcl_->eval("fconfigure stdout -buffering line");
    tcl_->setQuitHandler(&KorvaSession::finish);
    tapId_ = theMsg->addTap([this](const std::string& line) {
        if (line.compare(0, 7, "Error: ") == 0 || line.compare(0, 7, "USAGE: ") == 0) {
            lastError_ = line;
        }
    });
    loadPackages();
}

KorvaSession::~KorvaSession() {
    theMsg->removeTap(tapId_);
    theObjectPool->clear();
    flushTclOutput();
    tcl_.reset();
    Tcl_Finalize();
}

void KorvaSession::finish(int code) {
    theObjectPool->clear();
    flushTclOutput();
    Tcl_Exit(code);
}

void KorvaSession::printErrorMessage() {
    std::string message = tcl_->result();
    // A command that failed through KxCommandReply printed its line already.
    if (message != lastError_) {
        bool worded = message.compare(0, 7, "Error: ") == 0 || message.compare(0, 7, "USAGE: ") == 0;
        theMsg->print(worded ? message : "Error: " + message);
    }
    lastError_.clear();
}

void KorvaSession::reportError() {
    std::string message = tcl_->result();
    printErrorMessage();
    // errorInfo starts with the message; the rest says where it happened.
    std::string trace = tcl_->errorInfo();
    if (trace.compare(0, message.size(), message) == 0) {
        trace.erase(0, message.size());
    }
    while (!trace.empty() && trace[0] == '\n') {
        trace.erase(0, 1);
    }
    if (!trace.empty()) {
        std::fprintf(stderr, "%s\n", trace.c_str());
    }
}

int KorvaSession::loadAndDescribe(int count, char** paths) {
    int status = 0;
    for (int i = 0; i < count; ++i) {
        int errors = 0;
        int tap = theMsg->addTap(
            [&errors](const std::string& line) { errors += line.compare(0, 7, "Error: ") == 0; });
        std::vector<KxObject*> created;
        bool loaded = theFileFormats->load(paths[i], created, tcl_->pool());
        theMsg->removeTap(tap);
        if (!loaded || errors > 0) {
            status = 1;
        }
        for (KxObject* object : created) {
            KxInfoTags tags;
            tags.add("File:", "%s", paths[i]);
            tags.add("Label:", "%s", object->getLabel());
            object->info(tags);
            std::fputs(tags.toText().c_str(), stdout);
        }
    }
    std::fflush(stdout);
    return status;
}

int KorvaSession::runScript(const char* path, int argc, char** argv) {
    tcl_->setScriptArgs(path, argc, argv);
    if (tcl_->evalFile(path) != TCL_OK) {
        reportError();
        return 1;
    }
    return 0;
}

int KorvaSession::runCommands(const char* commands) {
    tcl_->setScriptArgs("korva", 0, nullptr);
    if (tcl_->eval(commands) != TCL_OK) {
        reportError();
        return 1;
    }
    std::string result = tcl_->result();
    if (!result.empty()) {
        std::printf("%s\n", result.c_str());
    }
    return 0;
}

int KorvaSession::runConsole() {
    const bool terminal = isatty(STDIN_FILENO);
    tcl_->setScriptArgs("korva", 0, nullptr);
    if (terminal) {
        Tcl_SetVar(tcl_->interp(), "tcl_interactive", "1", TCL_GLOBAL_ONLY);
        std::printf("Korva console. Type \"help\" for the commands, \"quit\" to leave.\n");
    }
    // Each command runs as soon as it is complete, so a program driving korva
    // through a pipe sees its output at once. Off a terminal the first error
    // ends the run like a failing script; on a terminal the console goes on.
    std::string command, line;
    while (true) {
        if (terminal) {
            std::fputs(command.empty() ? "korva> " : "> ", stdout);
            std::fflush(stdout);
        }
        if (!std::getline(std::cin, line)) {
            if (terminal) {
                std::fputc('\n', stdout);
                return 0;
            }
            // An unfinished command at the end fails as it would in a script.
            if (!command.empty() && tcl_->eval(command.c_str()) != TCL_OK) {
                reportError();
                return 1;
            }
            return 0;
        }
        if (!feedConsole(line, command, terminal)) {
            return 1;
        }
    }
}

bool KorvaSession::feedConsole(const std::string& line, std::string& command, bool keepGoing) {
    command += line;
    command += '\n';
    if (!Tcl_CommandComplete(command.c_str())) {
        return true;
    }
    int code = tcl_->eval(command.c_str());
    command.clear();
    if (code == TCL_OK) {
        std::string result = tcl_->result();
        if (keepGoing && !result.empty()) {
            std::printf("%s\n", result.c_str());
        }
        return true;
    }
    if (keepGoing) {
        printErrorMessage();
        return true;
    }
    reportError();
    return false;
}

KxData* KorvaSession::loadFirst(const char* file, const char* className, const char* what) {
    std::vector<KxObject*> created;
    if (!theFileFormats->load(file, created, *theObjectPool)) {
        return nullptr;
    }
    for (KxObject* object : created) {
        if (object->isOfType(className)) {
            return static_cast<KxData*>(object);
        }
    }
    theMsg->printf("Error: %s holds no %s.", file, what);
    return nullptr;
}
