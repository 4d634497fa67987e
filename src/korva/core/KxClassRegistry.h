#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "korva/base/HashTable.h"

class KxObject;

// Class name -> factory. Packages register their classes in their init
// function; readers, the console's `create` command and saved sessions create
// objects by name:
//
//     theClassRegistry->registerClass("KxSpatialGraph", "kxspatialgraph",
//                                     [] () -> KxObject* { return new KxSpatialGraph; });
//
// Classes that cannot be created on their own (interfaces) are registered
// with an empty factory, so that the host still knows the name.
class KxClassRegistry {
public:
    using Factory = std::function<KxObject*()>;

    // Knows the host's own classes: KxObject (not creatable), KxData and
    // KxSpatialData, with the console commands their objects answer.
    KxClassRegistry();

    static KxClassRegistry& instance();

    // False (with a warning) if the name is registered already; the first
    // registration stays.
    bool registerClass(const char* name, const char* package, Factory factory);
    // Forgets a class (when a test or a package unloads it).
    bool unregisterClass(const char* name);
    bool isRegistered(const char* name) const { return classes_.contains(name); }
    // Whether `create` can make an object of the class (it has a factory).
    bool isCreatable(const char* name) const;
    // The package that registered the class, or null.
    const char* getPackage(const char* name) const;

    // A new object of the class, or null with an "Error: " line when the class
    // is unknown or cannot be created. The caller owns the object.
    KxObject* createInstance(const char* name) const;

    // Class names in registration order.
    std::vector<std::string> classNames() const { return classes_.keys(); }

    // Makes a console command of the class's objects known to the console's
    // help ("{label} word ..."); false if the class is not registered.
    bool registerCommand(const char* className, const char* word, const char* usage);
    // Usage lines of the class's registered commands, in registration order.
    std::vector<std::string> commandUsages(const char* className) const;
    // Usage lines of every command the object answers: those of each
    // registered class it is of, base classes (registered first) first.
    std::vector<std::string> commandUsages(const KxObject& object) const;

private:
    struct Entry {
        std::string package;
        Factory factory;
        std::vector<std::pair<std::string, std::string>> commands;  // word, usage
    };
    HashTable<std::string, Entry> classes_;
};

#define theClassRegistry (&KxClassRegistry::instance())
