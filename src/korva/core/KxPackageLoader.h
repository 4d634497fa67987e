#pragma once

#include <string>
#include <vector>

// Loads packages: shared libraries named lib<name>.so that export
//
//     extern "C" int korvapackage_<name>_init();
//
// The loader looks for the library in the directories of the environment
// variable KORVA_PACKAGE_PATH (colon-separated), then in the directories
// added with addSearchDir, then beside libkorva. It opens it, calls the init
// function once (the init function itself registers the package's classes with
// theClassRegistry and is guarded against a second call), and reads the
// package's resource file share/<name>/<name>.rc beside the library's folder
// (lib/../share/<name>/), adding its formats to theFileFormats with functions
// resolved in the package library. Libraries stay loaded until the process ends.
class KxPackageLoader {
public:
    static KxPackageLoader& instance();

    // Loads the package once; later calls answer true at once. False after an
    // "Error: " line when the library is missing, cannot be opened, lacks the
    // init function or its init fails.
    bool load(const char* name);
    bool isLoaded(const char* name) const;
    void addSearchDir(const char* dir) { searchDirs_.emplace_back(dir); }

    // The folder of the package's resources (shaders, format table), or empty
    // when the package is not loaded.
    std::string getResourceDir(const char* name) const;
    // The library file the package was loaded from, or empty.
    std::string getLibraryPath(const char* name) const;

    std::vector<std::string> loadedPackages() const;

    // The folder that holds libkorva.
    static std::string hostLibraryDir();

private:
    struct Package {
        std::string name;
        std::string libraryPath;
        std::string resourceDir;
        void* handle;
    };
    const Package* findPackage(const char* name) const;
    std::vector<std::string> candidateDirs() const;

    std::vector<Package> packages_;
    std::vector<std::string> searchDirs_;
};

#define thePackageLoader (&KxPackageLoader::instance())
