#include "korva/core/KxConsoleCommands.h"

#include <cstring>
#include <string>
#include <vector>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/core/KxUndoCommands.h"

namespace {

KxTclInterpreter& session(ClientData cd) {
    return *static_cast<KxTclInterpreter*>(cd);
}

// Tcl's own load, renamed aside when the console commands are installed.
constexpr const char* kTclLoad = "::korva::tclLoad";

// Whether a load call is meant for Tcl: its options (-global, -lazy, --), a
// static package (empty file name) or a shared library such as a binary
// extension, e.g. from `package require Tk`.
bool isTclLoad(Tcl_Interp* interp, Tcl_Obj* firstArgument) {
    std::string file = Tcl_GetString(firstArgument);
    if (file.empty() || file[0] == '-') {
        return true;
    }
    std::string ext =
        Tcl_Eval(interp, "info sharedlibextension") == TCL_OK ? Tcl_GetStringResult(interp) : ".so";
    Tcl_ResetResult(interp);
    return file.size() > ext.size() && (file.compare(file.size() - ext.size(), ext.size(), ext) == 0 ||
                                        file.find(ext + ".") != std::string::npos);
}

int loadCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc >= 2 && isTclLoad(interp, objv[1])) {
        std::vector<Tcl_Obj*> call(objv, objv + objc);
        call[0] = Tcl_NewStringObj(kTclLoad, -1);
        Tcl_IncrRefCount(call[0]);
        int result = Tcl_EvalObjv(interp, objc, call.data(), 0);
        Tcl_DecrRefCount(call[0]);
        return result;
    }
    if (objc < 2) {
        return KxCommandReply::usage(interp, "load FILE ?FILE ...?");
    }
    Tcl_Obj* labels = Tcl_NewListObj(0, nullptr);
    Tcl_IncrRefCount(labels);
    for (int i = 1; i < objc; ++i) {
        KxCommandReply::ErrorTap tap;
        std::vector<KxObject*> created;
        const char* filename = Tcl_GetString(objv[i]);
        if (!theFileFormats->load(filename, created, session(cd).pool())) {
            Tcl_DecrRefCount(labels);
            return KxCommandReply::failWith(interp, tap, std::string("Error: Cannot load ") + filename + ".");
        }
        for (KxObject* object : created) {
            Tcl_ListObjAppendElement(nullptr, labels, Tcl_NewStringObj(object->getLabel(), -1));
        }
    }
    Tcl_SetObjResult(interp, labels);
    Tcl_DecrRefCount(labels);
    return TCL_OK;
}

int saveCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 4) {
        return KxCommandReply::usage(interp, "save FORMAT OBJECT FILE");
    }
    const char* formatName = Tcl_GetString(objv[1]);
    const char* label = Tcl_GetString(objv[2]);
    const KxFileFormat* format = theFileFormats->find(formatName);
    if (!format) {
        return KxCommandReply::fail(interp,
                                    std::string("Error: Unknown file format \"") + formatName + "\".");
    }
    KxData* data = session(cd).pool().findData(label);
    if (!data) {
        return KxCommandReply::fail(interp, std::string("Error: No data object \"") + label + "\".");
    }
    KxCommandReply::ErrorTap tap;
    if (!theFileFormats->save(*format, data, Tcl_GetString(objv[3]))) {
        return KxCommandReply::failWith(interp, tap, "Error: Save failed.");
    }
    return TCL_OK;
}

int removeCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc < 2) {
        return KxCommandReply::usage(interp, "remove OBJECT ?OBJECT ...? | remove -all");
    }
    KxObjectPool& pool = session(cd).pool();
    if (objc == 2 && std::strcmp(Tcl_GetString(objv[1]), "-all") == 0) {
        pool.clear();
        return TCL_OK;
    }
    for (int i = 1; i < objc; ++i) {
        const char* label = Tcl_GetString(objv[i]);
        if (!pool.remove(label)) {
            return KxCommandReply::fail(interp, std::string("Error: No object \"") + label + "\".");
        }
    }
    return TCL_OK;
}

int allCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc > 2) {
        return KxCommandReply::usage(interp, "all ?CLASS?");
    }
    const char* typeName = objc == 2 ? Tcl_GetString(objv[1]) : nullptr;
    KxObjectPool& pool = session(cd).pool();
    Tcl_Obj* labels = Tcl_NewListObj(0, nullptr);
    for (int i = 0; i < pool.size(); ++i) {
        KxObject* object = pool.get(i);
        if (!typeName || object->isOfType(typeName)) {
            Tcl_ListObjAppendElement(nullptr, labels, Tcl_NewStringObj(object->getLabel(), -1));
        }
    }
    Tcl_SetObjResult(interp, labels);
    return TCL_OK;
}

int createCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc < 2 || objc > 3) {
        return KxCommandReply::usage(interp, "create CLASS ?LABEL?");
    }
    KxCommandReply::ErrorTap tap;
    const char* className = Tcl_GetString(objv[1]);
    KxObject* object = theClassRegistry->createInstance(className);
    if (!object) {
        return KxCommandReply::failWith(interp, tap, std::string("Error: Cannot create ") + className + ".");
    }
    const char* label = session(cd).pool().add(object, objc == 3 ? Tcl_GetString(objv[2]) : className);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(label, -1));
    return TCL_OK;
}

std::string helpText() {
    std::string text =
        "Commands:\n"
        "  load FILE ?FILE ...?     read files; answers the labels of the new objects\n"
        "  save FORMAT OBJECT FILE  write an object in a format (name or extension)\n"
        "  remove OBJECT ?...?      remove objects (remove -all: every object)\n"
        "  all ?CLASS?              labels of the objects in the pool\n"
        "  create CLASS ?LABEL?     create an object of a registered class\n"
        "  undo, redo               take back or repeat the newest edit of the session\n"
        "  saveState FILE           write a script that recreates the session (source FILE)\n"
        "  help                     this text\n"
        "  quit ?CODE?              end the session\n"
        "  {label} command ?args?   a command of an object ({label} help lists them all)\n";
    text += "Classes (create CLASS) and their own commands:\n";
    for (const std::string& name : theClassRegistry->classNames()) {
        if (!theClassRegistry->isCreatable(name.c_str())) {
            continue;
        }
        text += "  " + name + "\n";
        for (const std::string& usage : theClassRegistry->commandUsages(name.c_str())) {
            text += "      {label} " + usage + "\n";
        }
    }
    text += "File formats:\n";
    for (int i = 0; i < theFileFormats->size(); ++i) {
        const KxFileFormat& f = theFileFormats->get(i);
        text += "  " + f.name + " (";
        for (size_t e = 0; e < f.extensions.size(); ++e) {
            text += (e ? " ." : ".") + f.extensions[e];
        }
        text += std::string(f.read ? " read" : "") + (f.write ? " write" : "") + ")\n";
    }
    return text;
}

int helpCmd(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const[]) {
    Tcl_SetObjResult(interp, Tcl_NewStringObj(helpText().c_str(), -1));
    return TCL_OK;
}

int quitCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    int code = 0;
    if (objc > 2 || (objc == 2 && Tcl_GetIntFromObj(interp, objv[1], &code) != TCL_OK)) {
        return KxCommandReply::usage(interp, "quit ?CODE?");
    }
    session(cd).quit(code);
    return TCL_OK;
}

template <Tcl_ObjCmdProc* Command>
int guarded(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    return KxTclInterpreter::guard(interp, [&] { return Command(cd, interp, objc, objv); });
}

}  // namespace

void installConsoleCommands(KxTclInterpreter& tcl) {
    Tcl_Interp* interp = tcl.interp();
    Tcl_CmdInfo info;
    if (!Tcl_GetCommandInfo(interp, kTclLoad, &info)) {
        Tcl_Eval(interp, "namespace eval ::korva {}");
        Tcl_Eval(interp, (std::string("rename load ") + kTclLoad).c_str());
    }
    Tcl_CreateObjCommand(interp, "load", guarded<loadCmd>, &tcl, nullptr);
    Tcl_CreateObjCommand(interp, "save", guarded<saveCmd>, &tcl, nullptr);
    Tcl_CreateObjCommand(interp, "remove", guarded<removeCmd>, &tcl, nullptr);
    Tcl_CreateObjCommand(interp, "all", guarded<allCmd>, &tcl, nullptr);
    Tcl_CreateObjCommand(interp, "create", guarded<createCmd>, &tcl, nullptr);
    Tcl_CreateObjCommand(interp, "help", guarded<helpCmd>, &tcl, nullptr);
    Tcl_CreateObjCommand(interp, "quit", guarded<quitCmd>, &tcl, nullptr);
    installUndoCommands(tcl);
}
