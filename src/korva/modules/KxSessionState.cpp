#include "korva/modules/KxSessionState.h"

#include <set>
#include <vector>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"
#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxSafeFile.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPort.h"

namespace {

// One Tcl word that reads back as text, quoted as Tcl's own list code does.
std::string tclWord(const std::string& text) {
    const char* argv[] = {text.c_str()};
    char* merged = Tcl_Merge(1, argv);
    std::string word = merged;
    Tcl_Free(merged);
    return word;
}

// The module whose results include data and that can recreate it, with the
// line that does; null if none can.
const KxCompModule* creatorOf(const KxObjectPool& pool, const KxData* data, std::string& command) {
    for (int i = 0; i < pool.size(); ++i) {
        auto* module = dynamic_cast<const KxCompModule*>(pool.get(i));
        if (module && module->isResult(data) && module->canCreateData(data, command)) {
            return module;
        }
    }
    return nullptr;
}

class StateWriter {
public:
    explicit StateWriter(const KxObjectPool& pool) : pool_(pool) {}

    std::string write() {
        out_ = "# Korva session state: `source` this file in a new session to restore it.\n";
        for (int i = 0; i < pool_.size(); ++i) {
            writeObject(pool_.get(i));
        }
        for (int i = 0; i < pool_.size(); ++i) {
            if (auto* module = dynamic_cast<const KxModule*>(pool_.get(i))) {
                writeModuleState(module);
            }
        }
        return out_;
    }

private:
    void writeObject(const KxObject* object) {
        std::string label = tclWord(object->getLabel());
        if (dynamic_cast<const KxModule*>(object)) {
            out_ += "create " + std::string(object->getTypeName()) + " " + label + "\n";
            return;
        }
        auto* data = dynamic_cast<const KxData*>(object);
        std::string command;
        if (!data || creatorOf(pool_, data, command)) {
            return;
        }
        if (data->getLoadCmd()[0] != '\0') {
            out_ += "load " + tclWord(data->getLoadCmd()) + "\n";
            return;
        }
        theMsg->printf("Warning: %s was not read from a file; the saved state recreates it empty.",
                       data->getLabel());
        out_ += "create " + std::string(data->getTypeName()) + " " + label + "\n";
    }

    // Ports of the modules producing the module's inputs come first, so that
    // their results exist before the module connects to them.
    void writeModuleState(const KxModule* module) {
        if (!written_.insert(module).second) {
            return;
        }
        for (int p = 0; p < module->getNumPorts(); ++p) {
            auto* connection = dynamic_cast<const KxConnection*>(module->getPort(p));
            auto* input = connection ? dynamic_cast<const KxData*>(connection->getSource()) : nullptr;
            std::string command;
            if (const KxCompModule* creator = input ? creatorOf(pool_, input, command) : nullptr) {
                writeModuleState(creator);
            }
        }
        module->savePorts(out_);
        auto* comp = dynamic_cast<const KxCompModule*>(module);
        std::set<std::string> commands;
        for (int i = 0; i < pool_.size() && comp; ++i) {
            auto* data = dynamic_cast<const KxData*>(pool_.get(i));
            std::string command;
            if (data && comp->isResult(data) && comp->canCreateData(data, command) &&
                commands.insert(command).second) {
                out_ += command;
            }
        }
    }

    const KxObjectPool& pool_;
    std::string out_;
    std::set<const KxModule*> written_;
};

int saveStateCmd(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 2) {
        return KxCommandReply::usage(interp, "saveState FILE");
    }
    KxCommandReply::ErrorTap tap;
    if (!KxSessionState::save(static_cast<KxTclInterpreter*>(cd)->pool(), Tcl_GetString(objv[1]))) {
        return KxCommandReply::failWith(interp, tap, "Error: Cannot save the session state.");
    }
    return TCL_OK;
}

int guardedSaveState(ClientData cd, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    return KxTclInterpreter::guard(interp, [&] { return saveStateCmd(cd, interp, objc, objv); });
}

}  // namespace

std::string KxSessionState::write(const KxObjectPool& pool) {
    return StateWriter(pool).write();
}

bool KxSessionState::save(const KxObjectPool& pool, const char* filename) {
    std::string script = write(pool);
    KxSafeFile file(filename, "session state");
    if (!file.open()) {
        return false;
    }
    file.write(script);
    return file.commit();
}

void KxSessionState::installCommands(KxTclInterpreter& tcl) {
    KxModule::registerClasses();
    Tcl_CreateObjCommand(tcl.interp(), "saveState", guardedSaveState, &tcl, nullptr);
}
