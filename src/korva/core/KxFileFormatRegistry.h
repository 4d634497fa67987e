#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "korva/core/KxFileFormat.h"

class KxData;
class KxObject;
class KxObjectPool;

// The host's table of file formats: which reader loads a file, which writer
// saves an object. Packages ship their formats in a resource file beside the
// library (share/<package>/<package>.rc); the package loader reads it and
// resolves the named functions in the package library. Its syntax:
//
//     # comment
//     format "SWC" {
//         extensions swc              # one or more, without the dot
//         class      KxSpatialGraph   # the data class the writer accepts
//         read       kxReadSWC        # extern "C" int f(const char* filename)
//         write      kxWriteSWC       # extern "C" int f(KxData* data, const char* filename)
//         check      kxCheckSWC       # extern "C" int f(const char* header, int length)
//         contentType KxSpatialGraph  # read only files whose content probe says so
//     }
//
// Every key but the name is optional; a format needs a reader or a writer.
//
// Choosing a reader for a file: a format whose content type matches the one a
// content probe finds in the header comes first; then a format whose check
// function accepts the header; then a format listing the file's extension,
// unless it has a content type or its check function rejects the header.
class KxFileFormatRegistry {
public:
    // Bytes of a file's start handed to check functions and content probes.
    static constexpr int kHeaderSize = 4096;
    // Finds the content type a file declares in its header (a container
    // format's "ContentType"); false if the header is not of that container.
    using ContentProbe = std::function<bool(const char* header, int length, std::string& contentType)>;
    // Resolves a function name of a resource file; null if there is none.
    using Resolver = std::function<void*(const char* symbol)>;

    static KxFileFormatRegistry& instance();

    // False (with an "Error: " line) if a format of that name exists already
    // or the format has neither reader nor writer.
    bool addFormat(const KxFileFormat& format);
    bool removeFormat(const char* name);
    void addContentProbe(ContentProbe probe) { probes_.push_back(std::move(probe)); }

    // Reads a resource file and adds its formats. Answers the number of formats
    // added, or -1 after an "Error: " line when the file cannot be read or
    // parsed (nothing is added then). A format naming a function that cannot
    // be resolved is skipped with an "Error: " line.
    int loadResourceFile(const char* path, const char* package, const Resolver& resolve);
    int parseResources(const char* text, size_t length, const char* origin, const char* package,
                       const Resolver& resolve);

    int size() const { return static_cast<int>(formats_.size()); }
    const KxFileFormat& get(int i) const { return *formats_[static_cast<size_t>(i)]; }
    // By name (case-insensitive) or, failing that, by extension.
    const KxFileFormat* find(const char* nameOrExtension) const;

    // The content type a probe finds in header, or empty.
    std::string probeContentType(const char* header, int length) const;
    // The format that reads the file, by the rules above; null if none fits.
    // Reports nothing: load() words the errors.
    const KxFileFormat* findReader(const char* filename) const;
    // The writer for filename's extension that accepts data; null if none.
    const KxFileFormat* findWriter(const char* filename, const KxData* data) const;

    // Loads a file into the pool: chooses the reader, runs it, and fills
    // created with the objects the reader added (their load command is set to
    // the file name). On failure answers false after an "Error: " line.
    bool load(const char* filename, std::vector<KxObject*>& created, KxObjectPool& pool);
    // Saves data in format to filename by calling the format's writer with
    // that name; a writer must leave an existing file intact when it fails
    // (docs/host.md). On success the object's save-info becomes the format
    // name and it is unmodified.
    bool save(const KxFileFormat& format, KxData* data, const char* filename);

    // Lower-case extension of filename without the dot, or empty.
    static std::string extensionOf(const char* filename);

private:
    std::vector<std::unique_ptr<KxFileFormat>> formats_;
    std::vector<ContentProbe> probes_;
};

#define theFileFormats (&KxFileFormatRegistry::instance())
