#pragma once

#include <string>
#include <vector>

#include "korva/core/KxFileFormat.h"

class KxData;

// How the host's data classes live in KorvaMesh files: a file's "ContentType"
// parameter is the class name, a format of that content type reads and
// writes the class, and a reader puts what it read into the session's pool
// under the file's name.
class KxKorvaMeshContent {
public:
    // Registers format name for class T (its content type), which provides
    // static int readKorvaMesh(const char*) and int saveKorvaMesh(const char*) const.
    template <class T>
    static void registerFormat(const char* name, const char* className, std::vector<std::string> extensions) {
        addFormat(name, className, std::move(extensions), &T::readKorvaMesh,
                  [](KxData* data, const char* filename) {
                      return static_cast<T*>(data)->saveKorvaMesh(filename);
                  });
    }
    // Adds data to the session's pool under the file's name without its
    // folder, noting that it was loaded from filename; answers 1.
    static int addLoaded(KxData* data, const char* filename);

private:
    static void addFormat(const char* name, const char* className, std::vector<std::string> extensions,
                          KxFileFormat::ReadFunc read, KxFileFormat::WriteFunc write);
};
