#include "korva/core/KxTclInterpreter.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

#include <tcl.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"

namespace {

int objectCommand(ClientData clientData, Tcl_Interp* interp, int argc, const char* argv[]) {
    KxObject* object = static_cast<KxObject*>(clientData);
    // Deliberate: parse takes char** as the host's objects always have; they
    // must not write into the arguments.
    return KxTclInterpreter::guard(interp,
                                   [&] { return object->parse(interp, argc, const_cast<char**>(argv)); });
}

}  // namespace

KxTclInterpreter::KxTclInterpreter(KxObjectPool& pool) : pool_(pool), interp_(Tcl_CreateInterp()) {
    if (Tcl_Init(interp_) != TCL_OK) {
        // Without its script library Tcl still evaluates commands; only a few
        // library procedures (e.g. auto-loading) are missing.
        theMsg->printf("Warning: Tcl library not found: %s", Tcl_GetStringResult(interp_));
    }
    observerId_ =
        pool_.addObserver([this](KxObjectPool::Event event, KxObject* object, const char* oldLabel) {
            if (event == KxObjectPool::ADDED) {
                createObjectCommand(object);
            } else if (event == KxObjectPool::REMOVED) {
                deleteObjectCommand(object->getLabel());
            } else {
                deleteObjectCommand(oldLabel);
                createObjectCommand(object);
            }
        });
    pool_.setReservedCheck([this](const char* label) {
        Tcl_CmdInfo info;
        return Tcl_GetCommandInfo(interp_, label, &info) != 0;
    });
    for (int i = 0; i < pool_.size(); ++i) {
        createObjectCommand(pool_.get(i));
    }
    quit_ = [this](int code) {
        pool_.clear();
        std::fflush(stdout);
        std::exit(code);
    };
}

KxTclInterpreter::~KxTclInterpreter() {
    pool_.removeObserver(observerId_);
    pool_.setReservedCheck(nullptr);
    for (int i = 0; i < pool_.size(); ++i) {
        deleteObjectCommand(pool_.get(i)->getLabel());
    }
    Tcl_DeleteInterp(interp_);
}

void KxTclInterpreter::createObjectCommand(KxObject* object) {
    Tcl_CreateCommand(interp_, object->getLabel(), objectCommand, object, nullptr);
}

void KxTclInterpreter::deleteObjectCommand(const char* label) {
    Tcl_DeleteCommand(interp_, label);
}

int KxTclInterpreter::eval(const char* script) {
    return Tcl_EvalEx(interp_, script, -1, TCL_EVAL_GLOBAL);
}

int KxTclInterpreter::evalFile(const char* path) {
    return Tcl_EvalFile(interp_, path);
}

std::string KxTclInterpreter::result() const {
    return Tcl_GetStringResult(interp_);
}

std::string KxTclInterpreter::errorInfo() const {
    const char* info = Tcl_GetVar(interp_, "errorInfo", TCL_GLOBAL_ONLY);
    return info ? info : result();
}

void KxTclInterpreter::setScriptArgs(const char* argv0, int argc, char** argv) {
    Tcl_SetVar(interp_, "argv0", argv0, TCL_GLOBAL_ONLY);
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (int i = 0; i < argc; ++i) {
        Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj(argv[i], -1));
    }
    Tcl_SetVar2Ex(interp_, "argv", nullptr, list, TCL_GLOBAL_ONLY);
    Tcl_SetVar2Ex(interp_, "argc", nullptr, Tcl_NewIntObj(argc), TCL_GLOBAL_ONLY);
}

int KxTclInterpreter::guard(Tcl_Interp* interp, const std::function<int()>& command) {
    std::string line;
    try {
        return command();
    } catch (...) {
        line = currentExceptionLine();
    }
    theMsg->print(line);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(line.c_str(), -1));
    return TCL_ERROR;
}

std::string KxTclInterpreter::currentExceptionLine() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "Error: out of memory";
    } catch (const std::length_error&) {
        return "Error: out of memory (a size beyond what can be allocated)";
    } catch (const std::exception& e) {
        return std::string("Error: internal failure: ") + e.what();
    } catch (...) {
        return "Error: internal failure";
    }
}

void KxTclInterpreter::quit(int code) {
    quit_(code);
}
