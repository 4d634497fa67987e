#include "korva/modules/KxConnection.h"

#include <cstring>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"
#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/modules/KxModule.h"

KxConnection::KxConnection(KxModule* owner, const char* name, const char* label,
                           std::vector<std::string> accepted)
    : KxPort(owner, name, label), accepted_(std::move(accepted)) {
    poolObserverId_ =
        theObjectPool->addObserver([this](KxObjectPool::Event event, KxObject* object, const char*) {
            if (event == KxObjectPool::REMOVED && object == getSource()) {
                disconnect();
                sourceChanged();
            }
        });
}

KxConnection::~KxConnection() {
    theObjectPool->removeObserver(poolObserverId_);
    detach();
}

bool KxConnection::accepts(const KxObject* object) const {
    if (!object) {
        return false;
    }
    if (accepted_.empty()) {
        return object->isOfType("KxData");
    }
    for (const std::string& name : accepted_) {
        if (object->isOfType(name.c_str()) || object->getInterface(name.c_str())) {
            return true;
        }
    }
    return false;
}

std::string KxConnection::acceptedText() const {
    std::string text;
    for (const std::string& name : accepted_) {
        text += (text.empty() ? "" : " or ") + name;
    }
    return text.empty() ? "KxData" : text;
}

bool KxConnection::connect(KxObject* source) {
    if (source && !accepts(source)) {
        theMsg->printf("Error: Port %s accepts %s; %s is a %s.", getName(), acceptedText().c_str(),
                       source->getLabel(), source->getTypeName());
        return false;
    }
    if (source == getSource()) {
        return true;
    }
    detach();
    attach(source);
    newSource_ = true;
    touch();
    return true;
}

void KxConnection::untouch() {
    KxPort::untouch();
    newSource_ = false;
}

KxObject* KxConnection::getSource() const {
    return sourceAlive_.expired() ? nullptr : source_;
}

void* KxConnection::getSourceInterface(const char* name) const {
    KxObject* source = getSource();
    return source ? source->getInterface(name) : nullptr;
}

void KxConnection::attach(KxObject* source) {
    source_ = source;
    sourceAlive_ = source ? source->lifetime() : std::weak_ptr<const void>();
    if (auto* data = dynamic_cast<KxData*>(source)) {
        listenerId_ = data->addListener([this](KxData&, unsigned int) { sourceChanged(); });
    }
}

void KxConnection::detach() {
    if (auto* data = dynamic_cast<KxData*>(getSource())) {
        data->removeListener(listenerId_);
    }
    listenerId_ = -1;
    source_ = nullptr;
    sourceAlive_.reset();
}

void KxConnection::sourceChanged() {
    touch();
    if (getOwner()) {
        getOwner()->fire();
    }
}

int KxConnection::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "connect") == 0) {
        return parseSetValue(interp, argc - 2, argv + 2);
    }
    if (std::strcmp(cmd, "disconnect") == 0 && argc == 2) {
        disconnect();
        return TCL_OK;
    }
    if (std::strcmp(cmd, "source") == 0 && argc == 2) {
        return parseGetValue(interp, 0, nullptr);
    }
    if (std::strcmp(cmd, "setValue") != 0 && std::strcmp(cmd, "getValue") != 0) {
        return KxCommandReply::usage(interp, usage().c_str());
    }
    return KxPort::parse(interp, argc, argv);
}

std::string KxConnection::usage() const {
    return std::string(getName()) + " connect object | disconnect | source";
}

void KxConnection::save(std::string& out, const char* moduleLabel) const {
    if (KxObject* source = getSource()) {
        out +=
            std::string("{") + moduleLabel + "} {" + getName() + "} connect {" + source->getLabel() + "}\n";
    }
}

int KxConnection::parseSetValue(Tcl_Interp* interp, int argc, char** argv) {
    if (argc != 1) {
        return KxCommandReply::usage(interp, (std::string(getName()) + " connect object").c_str());
    }
    KxObject* source = theObjectPool->find(argv[0]);
    if (!source && argv[0][0] != '\0') {
        return KxCommandReply::failf(interp, "Error: No object \"%s\".", argv[0]);
    }
    KxCommandReply::ErrorTap tap;
    if (!connect(source)) {
        return KxCommandReply::failWith(interp, tap, "Error: Cannot connect.");
    }
    return TCL_OK;
}

int KxConnection::parseGetValue(Tcl_Interp* interp, int /*argc*/, char** /*argv*/) const {
    KxObject* source = getSource();
    Tcl_SetObjResult(interp, Tcl_NewStringObj(source ? source->getLabel() : "", -1));
    return TCL_OK;
}
