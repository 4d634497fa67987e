#pragma once

#include <string>

// Where a package's resource files live: share/<package>/ beside the lib/
// folder that holds the host library, found from the loaded library itself,
// so a build tree works like an installation. KORVA_RESOURCE_DIR, when set,
// replaces the share folder (share/<package> is then $KORVA_RESOURCE_DIR/<package>).
class KxPackageResources {
public:
    static std::string directory(const char* package);
    static std::string path(const char* package, const char* file);
    // Reads a whole resource file; false when it cannot be read.
    static bool read(const char* package, const char* file, std::string& contents);
};
