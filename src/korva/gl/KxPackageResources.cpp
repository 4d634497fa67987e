#include "korva/gl/KxPackageResources.h"

#include <dlfcn.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

std::string shareDirectory() {
    if (const char* dir = std::getenv("KORVA_RESOURCE_DIR")) {
        if (*dir) {
            return dir;
        }
    }
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&shareDirectory), &info) || !info.dli_fname) {
        return "share";
    }
    std::string library = info.dli_fname;
    std::string::size_type slash = library.rfind('/');
    std::string libDir = slash == std::string::npos ? std::string(".") : library.substr(0, slash);
    return libDir + "/../share";
}

}  // namespace

std::string KxPackageResources::directory(const char* package) {
    return shareDirectory() + "/" + package;
}

std::string KxPackageResources::path(const char* package, const char* file) {
    return directory(package) + "/" + file;
}

bool KxPackageResources::read(const char* package, const char* file, std::string& contents) {
    std::ifstream in(path(package, file), std::ios::binary);
    if (!in) {
        return false;
    }
    std::ostringstream buffer;
    buffer << in.rdbuf();
    contents = buffer.str();
    return true;
}
