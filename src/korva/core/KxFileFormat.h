#pragma once

#include <functional>
#include <string>
#include <vector>

class KxData;

// One entry of the file-format registry: a format's name, the extensions its
// files carry, and its reader, writer and content check. Formats come from a
// package's resource file (functions resolved by name in the package library)
// or are added from C++.
struct KxFileFormat {
    // Reads a file, registers what it read in the object pool (under the file
    // name) and answers 1; answers 0 after an "Error: " line otherwise.
    using ReadFunc = std::function<int(const char* filename)>;
    // Writes data to a file; 1 on success, 0 after an "Error: " line.
    using WriteFunc = std::function<int(KxData* data, const char* filename)>;
    // Answers non-zero when the first bytes of a file (up to
    // KxFileFormatRegistry::kHeaderSize) look like this format.
    using CheckFunc = std::function<int(const char* header, int length)>;

    std::string name;
    std::string package;                  // the package it came from; empty for the host
    std::vector<std::string> extensions;  // lower case, without the dot
    // When set, the format reads only files whose content type (as a content
    // probe reports it from the header, e.g. a KorvaMesh file's) is this one;
    // extensions then serve only for choosing a writer.
    std::string contentType;
    std::string className;  // data class the writer accepts (isOfType); empty: any
    ReadFunc read;
    WriteFunc write;
    CheckFunc check;

    bool hasExtension(const std::string& extension) const;
};
