#pragma once

#include <cstddef>
#include <string>
#include <vector>

class KorvaMesh;

// Writes a KorvaMesh object in the ASCII or binary encoding of
// docs/korvamesh.md. The bytes go to a temporary file in the target's
// directory, which is flushed to disk and renamed over the target only when
// everything was written; on any failure the temporary file is removed, the
// old file stays as it was and write() answers false after one error line.
// The new file gets the old one's permissions; a read-only file is refused.
class KorvaMeshWriter {
public:
    explicit KorvaMeshWriter(const KorvaMesh& mesh) : mesh_(mesh) {}

    // Compress every binary array, not only those marked with setCompressed.
    void setCompressAll(bool compress) { compressAll_ = compress; }

    bool write(const char* filename, bool ascii);

    // Buffered output to the temporary file.
    class Output;

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
    void writeBinaryData(Output& out, const std::vector<Stored>& stored) const;
    void writeAsciiData(Output& out) const;

    const KorvaMesh& mesh_;
    bool compressAll_ = false;
    const char* filename_ = "";
};
