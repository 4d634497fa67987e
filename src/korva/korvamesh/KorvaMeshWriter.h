#pragma once

#include <cstddef>
#include <string>
#include <vector>

class KorvaMesh;
class KxSafeFile;

// Writes a KorvaMesh object in the ASCII or binary encoding of
// docs/korvamesh.md through a KxSafeFile: on any failure the old file stays
// as it was and write() answers false after one error line.
class KorvaMeshWriter {
public:
    explicit KorvaMeshWriter(const KorvaMesh& mesh) : mesh_(mesh) {}

    // Compress every binary array, not only those marked with setCompressed.
    void setCompressAll(bool compress) { compressAll_ = compress; }

    bool write(const char* filename, bool ascii);

private:
    // How one array is stored in the binary encoding.
    struct Stored {
        bool compressed = false;
        size_t bytes = 0;
        std::vector<unsigned char> zlib;
    };

    bool checkValues() const;
    bool compressArrays(std::vector<Stored>& stored) const;
    std::string header(bool ascii, const std::vector<Stored>& stored) const;
    void writeBinaryData(KxSafeFile& out, const std::vector<Stored>& stored) const;
    void writeAsciiData(KxSafeFile& out) const;

    const KorvaMesh& mesh_;
    bool compressAll_ = false;
    const char* filename_ = "";
};
