#include "korva/modules/KxCompModule.h"

#include <cctype>
#include <cstring>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxData.h"
#include "korva/core/KxObjectPool.h"
#include "korva/modules/KxPortButtonList.h"

KxCompModule::KxCompModule(std::vector<std::string> dataTypes) : KxModule(std::move(dataTypes)) {}

bool KxCompModule::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxCompModule") == 0 || KxModule::isOfType(typeName);
}

KxData* KxCompModule::getResult(int slot) const {
    if (slot < 0 || slot >= static_cast<int>(results_.size())) {
        return nullptr;
    }
    const Slot& s = results_[static_cast<size_t>(slot)];
    return s.alive.expired() ? nullptr : s.data;
}

void KxCompModule::setResult(int slot, KxData* data) {
    if (slot < 0) {
        return;
    }
    if (slot >= static_cast<int>(results_.size())) {
        results_.resize(static_cast<size_t>(slot) + 1);
    }
    Slot& s = results_[static_cast<size_t>(slot)];
    s.data = data;
    s.alive = data ? data->lifetime() : std::weak_ptr<const void>();
    if (data && !theObjectPool->contains(data)) {
        theObjectPool->add(data);
    }
}

KxData* KxCompModule::getReusableResult(const char* typeName, int slot) const {
    KxData* result = getResult(slot);
    return result && result->isOfType(typeName) ? result : nullptr;
}

bool KxCompModule::isResult(const KxData* data) const {
    for (int i = 0; i < static_cast<int>(results_.size()); ++i) {
        if (data && getResult(i) == data) {
            return true;
        }
    }
    return false;
}

std::string KxCompModule::makeResultLabel(const char* suffix) const {
    KxObject* input = portData.getSource();
    return input ? composeLabel(input->getLabel(), suffix) : std::string(suffix);
}

std::string KxCompModule::composeLabel(const char* label, const char* suffix) {
    std::string base = label;
    size_t dot = base.rfind('.');
    if (dot != std::string::npos && dot > 0) {
        base.erase(dot);
    }
    bool word = std::isalnum(static_cast<unsigned char>(suffix[0])) != 0;
    return base + (word ? "." : "") + suffix;
}

bool KxCompModule::canCreateData(const KxData* /*data*/, std::string& command) const {
    if (!createButton_) {
        return false;
    }
    command = std::string("{") + getLabel() + "} create;\n";
    return true;
}

int KxCompModule::parse(Tcl_Interp* interp, int argc, char** argv) {
    if (createButton_ && argc == 2 && std::strcmp(argv[1], "create") == 0) {
        createButton_->hit();
        fire();
        KxData* result = getResult(0);
        Tcl_SetObjResult(interp, Tcl_NewStringObj(result ? result->getLabel() : "", -1));
        return TCL_OK;
    }
    return KxModule::parse(interp, argc, argv);
}

void KxCompModule::registerCreatingClass(const char* className, const char* package, KxObject* (*factory)()) {
    theClassRegistry->registerClass(className, package, factory);
    theClassRegistry->registerCommand(className, "create", "create (computes; answers the result's label)");
}
