#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "korva/base/PrimType.h"
#include "korva/base/String.h"
#include "korva/core/KxParamBundle.h"

// The in-memory form of a KorvaMesh file (docs/korvamesh.md): named locations
// with sizes, typed data arrays attached to locations, and a parameter bundle.
//
// A mesh built for writing only references the callers' value buffers: they
// must stay alive and unchanged until write() has returned. A mesh returned by
// read() owns all of its values. Nothing here throws; failures print one
// "Error: " line on the message console and answer 0 or null.
class KorvaMesh {
public:
    // Locations and arrays are unbounded in count but each location holds at
    // most kMaxLocationSize elements and an array at most kMaxComponents
    // components per element, so every element index fits a 32-bit int.
    static constexpr int64_t kMaxLocationSize = INT32_MAX;
    static constexpr int kMaxComponents = 65536;

    class Location {
    public:
        const char* getName() const { return name_.getString(); }
        int64_t getSize() const { return size_; }

    private:
        friend class KorvaMesh;
        Location(const char* name, int64_t size) : name_(name), size_(size) {}
        String name_;
        int64_t size_;
    };

    class Data {
    public:
        const char* getName() const { return name_.getString(); }
        const Location* getLocation() const { return location_; }
        const char* getLocationName() const { return location_->getName(); }
        PrimType getPrimType() const { return type_; }
        int getNumComponents() const { return components_; }
        // Location size times components.
        int64_t getNumValues() const { return location_->getSize() * components_; }
        size_t getNumBytes() const { return static_cast<size_t>(getNumValues()) * type_.getSize(); }
        // The values, location size times components of the primitive type,
        // element after element.
        const void* getValues() const { return values_; }

        // Asks the binary writer to store this array zlib-compressed.
        void setCompressed(bool compressed) { compressed_ = compressed; }
        bool isCompressed() const { return compressed_; }

    private:
        friend class KorvaMesh;
        Data(const char* name, const Location* location, PrimType type, int components, const void* values)
            : name_(name), location_(location), type_(type), components_(components), values_(values) {}
        String name_;
        const Location* location_;
        PrimType type_;
        int components_;
        const void* values_;
        std::shared_ptr<char> owned_;
        bool compressed_ = false;
    };

    KorvaMesh();
    ~KorvaMesh();
    KorvaMesh(const KorvaMesh&) = delete;
    KorvaMesh& operator=(const KorvaMesh&) = delete;

    // Adds a location. Null (with an error line) if the name is taken or the
    // size is outside 0 .. kMaxLocationSize.
    Location* createLocation(const char* name, int64_t size);
    const Location* findLocation(const char* name) const;
    int getNumLocations() const { return static_cast<int>(locations_.size()); }
    const Location* getLocation(int i) const { return locations_[static_cast<size_t>(i)].get(); }

    // Adds an array that references values (location size times components
    // values of the type; the caller keeps the buffer alive until the write).
    // Null (with an error line) if the location is not one of this mesh, the
    // component count is outside 1 .. kMaxComponents, or the location already
    // holds an array of that name.
    Data* createData(const char* name, const Location* location, PrimType type, int components,
                     const void* values);
    // As above, but the mesh takes a buffer of getNumBytes() bytes, which it owns.
    Data* createOwnedData(const char* name, const Location* location, PrimType type, int components,
                          std::shared_ptr<char> values);

    // The array of that name in that location with that type and component
    // count, or null.
    const Data* findData(const char* location, PrimType type, int components, const char* name) const;
    // Iteration over all arrays in the order they were created (or read).
    int getNumData() const { return static_cast<int>(data_.size()); }
    const Data* getData(int i) const { return data_[static_cast<size_t>(i)].get(); }
    Data* getData(int i) { return data_[static_cast<size_t>(i)].get(); }

    KxParamBundle& getParameters() { return parameters_; }
    const KxParamBundle& getParameters() const { return parameters_; }

    // Writes the mesh to filename in the ASCII (ascii non-zero) or binary
    // encoding; with compress non-zero every binary array is zlib-compressed
    // (as if setCompressed(true) had been called on each). The file is written
    // to a temporary file beside it and renamed over it only when complete, so
    // on failure the old file is untouched. Returns 1 on success, 0 with an
    // error line on failure.
    int write(const char* filename, int ascii, int compress = 0) const;

    // Reads a KorvaMesh file. Null, with an error line naming the file and the
    // fault, if it cannot be read or is malformed in any way.
    static std::unique_ptr<KorvaMesh> read(const char* filename);
    // Parses a file's contents already in memory; name is used in messages.
    // The result owns copies of the values and does not refer to bytes.
    static std::unique_ptr<KorvaMesh> readFromMemory(const char* bytes, size_t size, const char* name);
    // True if bytes start like a KorvaMesh file (cheap test for format detection).
    static bool hasSignature(const char* bytes, size_t size);
    // The "ContentType" string parameter, found in the start of a file (as
    // much of it as is given) without reading the rest; false if the bytes are
    // not of a KorvaMesh file or the parameter is not among them. The host's
    // file-format registry uses this to choose a reader.
    static bool probeContentType(const char* header, int length, std::string& contentType);

private:
    friend class KorvaMeshReader;
    bool checkNewData(const char* name, const Location* location, int components) const;
    Data* addData(std::unique_ptr<Data> data);

    std::vector<std::unique_ptr<Location>> locations_;
    std::vector<std::unique_ptr<Data>> data_;
    KxParamBundle parameters_;
    // The file contents when read from a file: uncompressed binary arrays
    // point straight into it, so they are never copied a second time.
    std::shared_ptr<char> fileContents_;
};
