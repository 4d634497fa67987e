// KxSpatialGraph: writing the graph as a KorvaMesh file. The layout (locations
// "VERTEX", "EDGE", "POINT" and their arrays) is read back by
// formats/SpatialGraphKorvaMesh.cpp.
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "korva/core/KxMessageConsole.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// Adds one array per attribute of a location. The mesh references each
// attribute's own buffer, except when the attribute does not have exactly one
// value per element (an inconsistent graph, written anyway): then a copy cut
// or zero-padded to the location's size keeps the writer inside the buffer.
void addAttributeArrays(KorvaMesh& mesh, const KorvaMesh::Location* location, int numAttributes,
                        GraphAttribute* (*get)(const KxSpatialGraph&, int), const KxSpatialGraph& graph,
                        std::vector<std::unique_ptr<char[]>>& keep) {
    for (int i = 0; i < numAttributes; ++i) {
        const GraphAttribute* a = get(graph, i);
        const void* values = a->dataPtr();
        if (a->size() != location->getSize()) {
            size_t need = static_cast<size_t>(location->getSize()) * a->getElementSize();
            size_t have = static_cast<size_t>(a->size()) * a->getElementSize();
            keep.emplace_back(new char[need + 1]());
            std::memcpy(keep.back().get(), a->dataPtr(), std::min(need, have));
            values = keep.back().get();
        }
        mesh.createData(a->getName(), location, a->getPrimType(), a->getNumDataVar(), values);
    }
}

}  // namespace

bool KxSpatialGraph::isKorvaMeshArrayName(const char* name) {
    for (const char* fixed :
         {"VertexCoordinates", "EdgeConnectivity", "NumEdgePoints", "EdgePointCoordinates"}) {
        if (std::strcmp(name, fixed) == 0) {
            return true;
        }
    }
    return false;
}

int KxSpatialGraph::saveKorvaMesh(const char* filename, KorvaMeshEncoding encoding) {
    for (Location loc : {VERTEX, EDGE, POINT}) {
        for (int i = 0; i < numAttributes(loc); ++i) {
            if (isKorvaMeshArrayName(attribute(loc, i)->getName())) {
                theMsg->printf(
                    "Error: cannot write KorvaMesh file \"%s\": the %s attribute \"%s\" has the "
                    "name of one of the graph's own arrays.",
                    filename, locationName(loc), attribute(loc, i)->getName());
                return 0;
            }
        }
    }
    if (!isConsistent()) {
        theMsg->printf("Error: Inconsistent spatialgraph!!!");
    }
    KorvaMesh mesh;
    KxParamBundle& params = mesh.getParameters();
    params.copyContentsFrom(parameters());
    params.setString("ContentType", "KxSpatialGraph");
    params.removeParam("TransformationMatrix");
    if (!isTransformIdentity()) {
        params.setFloats("TransformationMatrix", getTransform()[0], 16);
    }

    const int numVertices = getNumVertices();
    const int numEdges = getNumEdges();
    const KorvaMesh::Location* vertexLocation = mesh.createLocation("VERTEX", numVertices);
    const KorvaMesh::Location* edgeLocation = mesh.createLocation("EDGE", numEdges);
    const KorvaMesh::Location* pointLocation = mesh.createLocation("POINT", getTotalNumEdgePoints());
    std::vector<std::unique_ptr<char[]>> keep;

    mesh.createData("VertexCoordinates", vertexLocation, PrimType::FLOAT32, 3,
                    numVertices > 0 ? getVertices(0) : nullptr);
    addAttributeArrays(
        mesh, vertexLocation, getNumVertexAttributes(),
        [](const KxSpatialGraph& g, int i) -> GraphAttribute* { return g.getVertexAttribute(i); }, *this,
        keep);

    std::vector<int> connectivity(2 * static_cast<size_t>(numEdges));
    std::vector<int> pointCounts(static_cast<size_t>(numEdges));
    for (int e = 0; e < numEdges; ++e) {
        connectivity[2 * static_cast<size_t>(e)] = getEdgeSource(e);
        connectivity[2 * static_cast<size_t>(e) + 1] = getEdgeTarget(e);
        pointCounts[static_cast<size_t>(e)] = getNumEdgePoints(e);
    }
    mesh.createData("EdgeConnectivity", edgeLocation, PrimType::INT32, 2, connectivity.data());
    mesh.createData("NumEdgePoints", edgeLocation, PrimType::INT32, 1, pointCounts.data());
    addAttributeArrays(
        mesh, edgeLocation, getNumEdgeAttributes(),
        [](const KxSpatialGraph& g, int i) -> GraphAttribute* { return g.getEdgeAttribute(i); }, *this, keep);

    // The point storage is already one flat array, edge after edge.
    mesh.createData("EdgePointCoordinates", pointLocation, PrimType::FLOAT32, 3,
                    getEdgePointsManager().getAllPoints().dataPtr());
    addAttributeArrays(
        mesh, pointLocation, getNumEdgePointAttributes(),
        [](const KxSpatialGraph& g, int i) -> GraphAttribute* { return g.getEdgePointAttribute(i); }, *this,
        keep);

    if (!mesh.write(filename, encoding == KorvaMeshEncoding::Ascii,
                    encoding == KorvaMeshEncoding::BinaryCompressed)) {
        return 0;
    }
    setLoadCmd(filename);
    setModified(false);
    return 1;
}
