#include "python/PySession.h"

#include <mutex>
#include <stdexcept>
#include <vector>

#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxPackageLoader.h"
#include "korva/core/KxTclInterpreter.h"

namespace py = pybind11;

namespace {

// Deliberate: never deleted. Python may free graphs during its shutdown in
// any order, and each of them leaves the pool through the interpreter's
// observer; the process's end reclaims the session.
KxTclInterpreter* theSession = nullptr;
std::mutex theLibraryLock;
py::object theErrorClass;

bool startsWith(const std::string& line, const char* prefix) {
    return line.compare(0, std::char_traits<char>::length(prefix), prefix) == 0;
}

void forwardLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        if (startsWith(line, "Warning: ") || startsWith(line, "Error: ")) {
            // Raises when warnings are turned into errors.
            if (PyErr_WarnEx(PyExc_UserWarning, line.c_str(), 1) != 0) {
                throw py::error_already_set();
            }
        } else {
            py::module_::import("sys").attr("stdout").attr("write")(line + "\n");
        }
    }
}

// Runs work without the GIL under the library lock; answers its answer and
// whether it printed "Error: " lines, and its lines.
bool runLocked(const std::function<bool()>& work, bool& printedErrors, std::vector<std::string>& lines) {
    py::gil_scoped_release release;
    std::lock_guard<std::mutex> lock(theLibraryLock);
    KxMessageCapture capture;
    const bool ok = work();
    printedErrors = capture.numErrors() > 0;
    lines = capture.lines();
    return ok;
}

[[noreturn]] void raiseErrors(const std::vector<std::string>& lines, const char* fallback) {
    std::string errors;
    for (const std::string& line : lines) {
        if (startsWith(line, "Error: ")) {
            errors += errors.empty() ? line : "\n" + line;
        }
    }
    PyErr_SetString(theErrorClass.ptr(), errors.empty() ? fallback : errors.c_str());
    throw py::error_already_set();
}

}  // namespace

void PySession::init(py::module_& module) {
    theErrorClass = py::reinterpret_steal<py::object>(
        PyErr_NewException("kxspatialgraph.Error", PyExc_RuntimeError, nullptr));
    theErrorClass.attr("__doc__") = "A failure of the library; the message holds its \"Error: ...\" lines.";
    module.attr("Error") = theErrorClass;
    theSession = new KxTclInterpreter(*theObjectPool);
    installConsoleCommands(*theSession);
    KxMessageCapture capture;
    if (!thePackageLoader->load("kxspatialgraph")) {
        throw std::runtime_error("kxspatialgraph: " + capture.text());
    }
}

KxTclInterpreter& PySession::tcl() {
    return *theSession;
}

void PySession::run(const std::function<bool()>& work, const char* fallback) {
    std::vector<std::string> lines;
    bool printedErrors = false;
    if (!runLocked(work, printedErrors, lines) || printedErrors) {
        raiseErrors(lines, fallback);
    }
    forwardLines(lines);
}

void PySession::runCommand(const std::function<bool()>& command) {
    std::vector<std::string> lines;
    bool printedErrors = false;
    if (!runLocked(command, printedErrors, lines)) {
        raiseErrors(lines, "Error: The call failed.");
    }
    forwardLines(lines);
}

void PySession::locked(const std::function<void()>& work) {
    std::unique_lock<std::mutex> lock(theLibraryLock, std::defer_lock);
    {
        // Waits without the GIL, so a thread inside run() can finish.
        py::gil_scoped_release release;
        lock.lock();
    }
    work();
}
