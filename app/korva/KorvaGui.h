#pragma once

class KorvaSession;

// korva --gui [FILE ... | SCRIPT.tcl [ARGS]]: the viewer window (KxViewerWindow)
// with the Tcl console still reading the terminal. Data files are loaded and
// each graph among them is shown by a graph view; a script runs once the
// window is up. Ends by `quit` or when the window is closed; answers the exit
// status (1 without a display to open the window on).
int runGui(KorvaSession& session, const char* argv0, int argc, char** argv);
