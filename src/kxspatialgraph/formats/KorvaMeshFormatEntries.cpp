#include "kxspatialgraph/formats/KorvaMeshFormatEntries.h"

#include <memory>
#include <string>

#include "korva/core/KxMessageConsole.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/formats/SkeletonGraphKorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

bool isSkeleton(const KorvaMesh& mesh) {
    return mesh.findData("Vertices", PrimType::FLOAT32, 3, "Coordinates") &&
           mesh.findData("Vertices", PrimType::INT32, 1, "NeighbourCount");
}

bool isGraph(const KorvaMesh& mesh) {
    return mesh.findData("VERTEX", PrimType::FLOAT32, 3, "VertexCoordinates") ||
           mesh.findData("Vertices", PrimType::FLOAT32, 3, "VertexCoordinates");
}

int write(KxData* data, const char* filename, KxSpatialGraph::KorvaMeshEncoding encoding) {
    KxSpatialGraph* graph = dynamic_cast<KxSpatialGraph*>(data);
    if (!graph) {
        theMsg->printf("Error: KorvaMesh files hold spatial graphs, not %s.", data->getTypeName());
        return 0;
    }
    return graph->saveKorvaMesh(filename, encoding);
}

}  // namespace

int kxspatialgraphReadKorvaMesh(const char* filename) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(filename);
    if (!mesh) {
        return 0;
    }
    String contentType;
    mesh->getParameters().findString("ContentType", contentType);
    if (contentType == "KxSpatialGraph" || (contentType.isEmpty() && isGraph(*mesh))) {
        return readKorvaMesh(*mesh, filename);
    }
    if (contentType.isEmpty() && isSkeleton(*mesh)) {
        return loadSkeletonGraphToKorva(*mesh, filename);
    }
    theMsg->printf("Error: KorvaMesh file %s holds %s%s%s, which no reader of this package reads.", filename,
                   contentType.isEmpty() ? "no known layout" : "content type \"", contentType.getString(),
                   contentType.isEmpty() ? "" : "\"");
    return 0;
}

int kxspatialgraphCheckKorvaMesh(const char* header, int length) {
    return length > 0 && KorvaMesh::hasSignature(header, static_cast<size_t>(length)) ? 1 : 0;
}

int kxspatialgraphWriteKorvaMesh(KxData* data, const char* filename) {
    return write(data, filename, KxSpatialGraph::KorvaMeshEncoding::Binary);
}

int kxspatialgraphWriteKorvaMeshCompressed(KxData* data, const char* filename) {
    return write(data, filename, KxSpatialGraph::KorvaMeshEncoding::BinaryCompressed);
}

int kxspatialgraphWriteKorvaMeshASCII(KxData* data, const char* filename) {
    return write(data, filename, KxSpatialGraph::KorvaMeshEncoding::Ascii);
}
