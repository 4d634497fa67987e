#include "korva/modules/KxModule.h"

#include <algorithm>
#include <cstring>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/modules/KxPort.h"

KxModule::KxModule(std::vector<std::string> dataTypes)
    : portData(this, "data", "Data", std::move(dataTypes)) {}

KxModule::~KxModule() = default;

bool KxModule::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxModule") == 0 || KxObject::isOfType(typeName);
}

KxPort* KxModule::findPort(const char* name) const {
    for (KxPort* port : ports_) {
        if (std::strcmp(port->getName(), name) == 0) {
            return port;
        }
    }
    return nullptr;
}

void KxModule::removePort(KxPort* port) {
    ports_.erase(std::remove(ports_.begin(), ports_.end(), port), ports_.end());
}

bool KxModule::anyPortNew() const {
    return std::any_of(ports_.begin(), ports_.end(), [](const KxPort* port) { return port->isNew(); });
}

void KxModule::fire() {
    if (firing_) {
        return;
    }
    firing_ = true;
    update();
    compute();
    for (KxPort* port : ports_) {
        port->untouch();
    }
    firing_ = false;
}

int KxModule::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "fire") == 0 && argc == 2) {
        fire();
        return TCL_OK;
    }
    if (std::strcmp(cmd, "help") == 0 && argc == 2) {
        // The class's commands, then those of each port.
        KxObject::parse(interp, argc, argv);
        std::string text = Tcl_GetStringResult(interp);
        for (const KxPort* port : ports_) {
            text += port->usage() + "\n";
        }
        Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
        return TCL_OK;
    }
    if (KxPort* port = argc >= 2 ? findPort(cmd) : nullptr) {
        int result = port->parse(interp, argc - 1, argv + 1);
        if (result == TCL_OK && anyPortNew()) {
            // The reply of the port command (a getValue, say) survives the computation.
            Tcl_Obj* reply = Tcl_GetObjResult(interp);
            Tcl_IncrRefCount(reply);
            fire();
            Tcl_SetObjResult(interp, reply);
            Tcl_DecrRefCount(reply);
        }
        return result;
    }
    return KxObject::parse(interp, argc, argv);
}

void KxModule::savePorts(std::string& out) const {
    for (bool connections : {true, false}) {
        for (const KxPort* port : ports_) {
            if ((dynamic_cast<const KxConnection*>(port) != nullptr) == connections) {
                port->save(out, getLabel());
            }
        }
    }
}

void KxModule::registerClasses() {
    if (theClassRegistry->isRegistered("KxModule")) {
        return;
    }
    theClassRegistry->registerClass("KxModule", "korva", nullptr);
    theClassRegistry->registerCommand("KxModule", "fire", "fire");
    theClassRegistry->registerClass("KxCompModule", "korva", nullptr);
}
