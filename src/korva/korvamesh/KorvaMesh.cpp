#include "korva/korvamesh/KorvaMesh.h"

#include <cstring>

#include "korva/core/KxMessageConsole.h"
#include "korva/korvamesh/KorvaMeshReader.h"
#include "korva/korvamesh/KorvaMeshWriter.h"

KorvaMesh::KorvaMesh() = default;
KorvaMesh::~KorvaMesh() = default;

KorvaMesh::Location* KorvaMesh::createLocation(const char* name, int64_t size) {
    if (findLocation(name)) {
        theMsg->printf("Error: KorvaMesh: location \"%s\" exists already.", name);
        return nullptr;
    }
    if (size < 0 || size > kMaxLocationSize) {
        theMsg->printf("Error: KorvaMesh: size %lld of location \"%s\" is out of range.",
                       static_cast<long long>(size), name);
        return nullptr;
    }
    locations_.emplace_back(new Location(name, size));
    return locations_.back().get();
}

const KorvaMesh::Location* KorvaMesh::findLocation(const char* name) const {
    for (const auto& location : locations_) {
        if (std::strcmp(location->getName(), name) == 0) {
            return location.get();
        }
    }
    return nullptr;
}

bool KorvaMesh::checkNewData(const char* name, const Location* location, int components) const {
    bool ours = false;
    for (const auto& l : locations_) {
        ours = ours || l.get() == location;
    }
    if (!ours) {
        theMsg->printf("Error: KorvaMesh: array \"%s\" refers to a location of another mesh.", name);
        return false;
    }
    if (components < 1 || components > kMaxComponents) {
        theMsg->printf("Error: KorvaMesh: array \"%s\" has %d components (allowed: 1 to %d).", name,
                       components, kMaxComponents);
        return false;
    }
    for (const auto& d : data_) {
        if (d->location_ == location && std::strcmp(d->getName(), name) == 0) {
            theMsg->printf("Error: KorvaMesh: location \"%s\" holds an array \"%s\" already.",
                           location->getName(), name);
            return false;
        }
    }
    return true;
}

KorvaMesh::Data* KorvaMesh::addData(std::unique_ptr<Data> data) {
    data_.push_back(std::move(data));
    return data_.back().get();
}

KorvaMesh::Data* KorvaMesh::createData(const char* name, const Location* location, PrimType type,
                                       int components, const void* values) {
    if (!checkNewData(name, location, components)) {
        return nullptr;
    }
    return addData(std::unique_ptr<Data>(new Data(name, location, type, components, values)));
}

KorvaMesh::Data* KorvaMesh::createOwnedData(const char* name, const Location* location, PrimType type,
                                            int components, std::shared_ptr<char> values) {
    Data* data = createData(name, location, type, components, values.get());
    if (data) {
        data->owned_ = std::move(values);
    }
    return data;
}

const KorvaMesh::Data* KorvaMesh::findData(const char* location, PrimType type, int components,
                                           const char* name) const {
    for (const auto& d : data_) {
        if (d->getPrimType() == type && d->getNumComponents() == components &&
            std::strcmp(d->getName(), name) == 0 && std::strcmp(d->getLocationName(), location) == 0) {
            return d.get();
        }
    }
    return nullptr;
}

int KorvaMesh::write(const char* filename, int ascii, int compress) const {
    KorvaMeshWriter writer(*this);
    writer.setCompressAll(compress != 0);
    return writer.write(filename, ascii != 0) ? 1 : 0;
}

std::unique_ptr<KorvaMesh> KorvaMesh::read(const char* filename) {
    return KorvaMeshReader::readFile(filename);
}

std::unique_ptr<KorvaMesh> KorvaMesh::readFromMemory(const char* bytes, size_t size, const char* name) {
    return KorvaMeshReader::readMemory(bytes, size, name);
}

bool KorvaMesh::hasSignature(const char* bytes, size_t size) {
    return KorvaMeshReader::hasSignature(bytes, size);
}

bool KorvaMesh::probeContentType(const char* header, int length, std::string& contentType) {
    return length > 0 && KorvaMeshReader::probeContentType(header, static_cast<size_t>(length), contentType);
}
