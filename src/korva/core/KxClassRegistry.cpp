#include "korva/core/KxClassRegistry.h"

#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxSpatialData.h"

KxClassRegistry::KxClassRegistry() {
    // The commands that KxObject::parse, KxData::parse and KxSpatialData::parse answer.
    registerClass("KxObject", "korva", nullptr);
    for (const char* usage : {"getLabel", "getTypeName", "info", "help"}) {
        registerCommand("KxObject", usage, usage);
    }
    registerClass("KxData", "korva", []() -> KxObject* { return new KxData; });
    registerCommand("KxData", "parameters", "parameters");
    registerCommand("KxData", "setParameters", "setParameters text");
    registerCommand("KxData", "isModified", "isModified");
    registerClass("KxSpatialData", "korva", []() -> KxObject* { return new KxSpatialData; });
    registerCommand("KxSpatialData", "getTransform", "getTransform");
    registerCommand("KxSpatialData", "setTransform", "setTransform m00 m01 ... m33");
}

KxClassRegistry& KxClassRegistry::instance() {
    static KxClassRegistry registry;
    return registry;
}

bool KxClassRegistry::registerClass(const char* name, const char* package, Factory factory) {
    if (!classes_.insert(name, Entry{package ? package : "", std::move(factory), {}})) {
        theMsg->printf("Warning: Class %s is registered already.", name);
        return false;
    }
    return true;
}

bool KxClassRegistry::unregisterClass(const char* name) {
    return classes_.remove(name);
}

const char* KxClassRegistry::getPackage(const char* name) const {
    const Entry* e = classes_.lookup(name);
    return e ? e->package.c_str() : nullptr;
}

bool KxClassRegistry::isCreatable(const char* name) const {
    const Entry* e = classes_.lookup(name);
    return e && e->factory;
}

KxObject* KxClassRegistry::createInstance(const char* name) const {
    const Entry* e = classes_.lookup(name);
    if (!e) {
        theMsg->printf("Error: Unknown class \"%s\".", name);
        return nullptr;
    }
    KxObject* object = e->factory ? e->factory() : nullptr;
    if (!object) {
        theMsg->printf("Error: Class \"%s\" cannot be created.", name);
    }
    return object;
}

bool KxClassRegistry::registerCommand(const char* className, const char* word, const char* usage) {
    Entry* e = classes_.lookup(className);
    if (!e) {
        return false;
    }
    for (auto& command : e->commands) {
        if (command.first == word) {
            command.second = usage;
            return true;
        }
    }
    e->commands.emplace_back(word, usage);
    return true;
}

std::vector<std::string> KxClassRegistry::commandUsages(const char* className) const {
    std::vector<std::string> usages;
    if (const Entry* e = classes_.lookup(className)) {
        for (const auto& command : e->commands) {
            usages.push_back(command.second);
        }
    }
    return usages;
}

std::vector<std::string> KxClassRegistry::commandUsages(const KxObject& object) const {
    std::vector<std::string> usages;
    for (const std::string& name : classNames()) {
        if (object.isOfType(name.c_str())) {
            std::vector<std::string> own = commandUsages(name.c_str());
            usages.insert(usages.end(), own.begin(), own.end());
        }
    }
    return usages;
}
