#include "korva/core/KxPackageLoader.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"

KxPackageLoader& KxPackageLoader::instance() {
    static KxPackageLoader loader;
    return loader;
}

std::string KxPackageLoader::hostLibraryDir() {
    Dl_info info;
    if (dladdr(reinterpret_cast<void*>(&KxPackageLoader::hostLibraryDir), &info) == 0 || !info.dli_fname) {
        return ".";
    }
    std::string path = info.dli_fname;
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::vector<std::string> KxPackageLoader::candidateDirs() const {
    std::vector<std::string> dirs;
    if (const char* env = std::getenv("KORVA_PACKAGE_PATH")) {
        std::string list = env;
        size_t start = 0;
        while (start <= list.size()) {
            size_t colon = list.find(':', start);
            if (colon == std::string::npos) {
                colon = list.size();
            }
            if (colon > start) {
                dirs.push_back(list.substr(start, colon - start));
            }
            start = colon + 1;
        }
    }
    dirs.insert(dirs.end(), searchDirs_.begin(), searchDirs_.end());
    dirs.push_back(hostLibraryDir());
    return dirs;
}

const KxPackageLoader::Package* KxPackageLoader::findPackage(const char* name) const {
    for (const Package& p : packages_) {
        if (p.name == name) {
            return &p;
        }
    }
    return nullptr;
}

bool KxPackageLoader::isLoaded(const char* name) const {
    return findPackage(name) != nullptr;
}

std::string KxPackageLoader::getResourceDir(const char* name) const {
    const Package* p = findPackage(name);
    return p ? p->resourceDir : "";
}

std::string KxPackageLoader::getLibraryPath(const char* name) const {
    const Package* p = findPackage(name);
    return p ? p->libraryPath : "";
}

std::vector<std::string> KxPackageLoader::loadedPackages() const {
    std::vector<std::string> names;
    for (const Package& p : packages_) {
        names.push_back(p.name);
    }
    return names;
}

bool KxPackageLoader::load(const char* name) {
    if (isLoaded(name)) {
        return true;
    }
    // The name becomes part of a file name and a symbol: letters, digits, '_'.
    bool valid = *name != '\0';
    for (const char* c = name; *c; ++c) {
        valid = valid && (std::isalnum(static_cast<unsigned char>(*c)) || *c == '_');
    }
    if (!valid) {
        theMsg->printf("Error: \"%s\" is not a package name.", name);
        return false;
    }
    std::string file = std::string("lib") + name + ".so";
    std::string libraryDir, libraryPath;
    for (const std::string& dir : candidateDirs()) {
        std::string path = dir + "/" + file;
        if (access(path.c_str(), R_OK) == 0) {
            libraryDir = dir;
            libraryPath = path;
            break;
        }
    }
    if (libraryPath.empty()) {
        theMsg->printf("Error: Package %s not found (no %s beside libkorva or on KORVA_PACKAGE_PATH).", name,
                       file.c_str());
        return false;
    }
    void* handle = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        theMsg->printf("Error: Cannot load package %s (%s).", name, dlerror());
        return false;
    }
    std::string initName = std::string("korvapackage_") + name + "_init";
    auto init = reinterpret_cast<int (*)()>(dlsym(handle, initName.c_str()));
    if (!init) {
        theMsg->printf("Error: Package %s has no function %s.", name, initName.c_str());
        dlclose(handle);
        return false;
    }
    if (!init()) {
        theMsg->printf("Error: Package %s failed to initialise.", name);
        return false;
    }
    std::string resourceDir = libraryDir + "/../share/" + name;
    packages_.push_back(Package{name, libraryPath, resourceDir, handle});

    std::string resourceFile = resourceDir + "/" + name + ".rc";
    if (access(resourceFile.c_str(), R_OK) == 0) {
        theFileFormats->loadResourceFile(resourceFile.c_str(), name,
                                         [handle](const char* symbol) { return dlsym(handle, symbol); });
    }
    return true;
}
