#include "KorvaGui.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <Inventor/Qt/SoQt.h>
#include <tcl.h>

#include "KorvaSession.h"
#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/viewer/KxViewerWindow.h"

namespace {

bool isScript(const char* path) {
    size_t n = std::strlen(path);
    return n > 4 && std::strcmp(path + n - 4, ".tcl") == 0;
}

// Console input from standard input as it arrives, without blocking the window.
class ConsoleReader {
public:
    explicit ConsoleReader(KorvaSession& session)
        : session_(session),
          terminal_(isatty(STDIN_FILENO) != 0),
          notifier_(STDIN_FILENO, QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { readSome(); });
    }

    void prompt() const {
        if (terminal_) {
            std::fputs(command_.empty() ? "korva> " : "> ", stdout);
            std::fflush(stdout);
        }
    }

private:
    void readSome() {
        char buffer[4096];
        ssize_t n = read(STDIN_FILENO, buffer, sizeof(buffer));
        if (n <= 0) {
            notifier_.setEnabled(false);  // end of input: the window stays
            return;
        }
        pending_.append(buffer, static_cast<size_t>(n));
        size_t end;
        while ((end = pending_.find('\n')) != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            session_.feedConsole(line, command_, true);
        }
        prompt();
    }

    KorvaSession& session_;
    bool terminal_;
    QSocketNotifier notifier_;
    std::string pending_;
    std::string command_;
};

// Loads the files and shows each graph they hold by a graph view.
void loadAndShow(KorvaSession& session, int argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
        std::vector<KxObject*> created;
        if (!theFileFormats->load(argv[i], created, *theObjectPool)) {
            continue;
        }
        for (KxObject* object : created) {
            if (object->isOfType("KxSpatialGraph") && theClassRegistry->isRegistered("KxSpatialGraphView")) {
                std::string label = object->getLabel();
                std::string script =
                    "[create KxSpatialGraphView {" + label + ".view}] data connect {" + label + "}";
                if (session.tcl().eval(script.c_str()) != TCL_OK) {
                    session.reportError();
                }
            }
        }
    }
}

}  // namespace

int runGui(KorvaSession& session, const char* argv0, int argc, char** argv) {
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) {
        theMsg->printf(
            "Error: korva --gui needs an X display (DISPLAY is not set); \"viewer snapshot\" draws "
            "without one.");
        return 1;
    }
    int qtArgc = 1;
    char* qtArgv[] = {const_cast<char*>(argv0), nullptr};
    QWidget* mainWindow = SoQt::init(qtArgc, qtArgv, "korva");
    if (!mainWindow) {
        theMsg->printf("Error: Cannot open the viewer window.");
        return 1;
    }
    KxViewerWindow window(mainWindow);
    SoQt::show(mainWindow);
    ConsoleReader console(session);
    // The input comes once the window is up, so a script can look at it.
    QTimer::singleShot(0, [&] {
        if (argc > 0 && isScript(argv[0])) {
            window.viewAll();
            session.runScript(argv[0], argc - 1, argv + 1);
        } else {
            loadAndShow(session, argc, argv);
            window.viewAll();
        }
        console.prompt();
    });
    SoQt::mainLoop();
    return 0;
}
