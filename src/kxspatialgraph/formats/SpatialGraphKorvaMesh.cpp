#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <Inventor/SbMatrix.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

// Deliberate: the traditional text gets the "Error: " prefix, so that the
// failure reads like every other one and the host adds no second line.
void printExpectingAtLeast(const char* filename) {
    theMsg->printf(
        "Error: KxSpatialGraph::readKorvaMesh: expecting at least  vertex coordinates, edge connectivity, "
        "edge "
        "points in %s.",
        filename);
}

// The arrays every graph file needs, in either layout.
struct GraphArrays {
    const KorvaMesh::Data* vertices = nullptr;
    const KorvaMesh::Data* connectivity = nullptr;
    const KorvaMesh::Data* pointCounts = nullptr;
    const KorvaMesh::Data* points = nullptr;

    GraphArrays(const KorvaMesh& mesh, const char* vertex, const char* edge, const char* point) {
        vertices = mesh.findData(vertex, PrimType::FLOAT32, 3, "VertexCoordinates");
        connectivity = mesh.findData(edge, PrimType::INT32, 2, "EdgeConnectivity");
        pointCounts = mesh.findData(edge, PrimType::INT32, 1, "NumEdgePoints");
        points = mesh.findData(point, PrimType::FLOAT32, 3, "EdgePointCoordinates");
    }
    bool complete() const { return vertices && connectivity && pointCounts && points; }
    const int* edgeEnds() const { return static_cast<const int*>(connectivity->getValues()); }
    const int* counts() const { return static_cast<const int*>(pointCounts->getValues()); }
    const Vec3f* pointCoords() const { return static_cast<const Vec3f*>(points->getValues()); }
    int numPoints() const { return static_cast<int>(points->getLocation()->getSize()); }
};

// Takes the file's parameters. Deliberate: "ContentType" and
// "TransformationMatrix" describe the file, not the graph; they are taken out
// of the graph's bundle (the matrix into the transformation), so that a
// round trip gives back the same bundle and a later identity transformation
// is not overridden by a stale matrix when the graph is saved again.
void takeParameters(KxSpatialGraph* graph, const KorvaMesh& mesh) {
    KxParamBundle& params = graph->parameters();
    params.copyContentsFrom(mesh.getParameters());
    float m[16];
    if (params.findReals("TransformationMatrix", 16, m)) {
        SbMat mat;
        std::memcpy(mat, m, sizeof(mat));
        graph->setTransform(SbMatrix(mat));
    }
    params.removeParam("TransformationMatrix");
    params.removeParam("ContentType");
}

void addVertices(KxSpatialGraph* graph, const KorvaMesh::Data* coords) {
    graph->appendMultipleVertices(static_cast<const Vec3f*>(coords->getValues()),
                                  static_cast<int>(coords->getLocation()->getSize()));
}

// Deliberate: both layouts refuse an edge whose end is not a vertex, rather
// than load a graph that every later operation would index out of bounds.
bool edgeEndsFit(const GraphArrays& a, const char* filename) {
    const int numVertices = static_cast<int>(a.vertices->getLocation()->getSize());
    const int64_t numEnds = a.connectivity->getNumValues();
    for (int64_t i = 0; i < numEnds; ++i) {
        if (a.edgeEnds()[i] < 0 || a.edgeEnds()[i] >= numVertices) {
            theMsg->printf("Error: %s: edge %d refers to vertex %d, but there are %d vertices.", filename,
                           static_cast<int>(i / 2), a.edgeEnds()[i], numVertices);
            return false;
        }
    }
    return true;
}

// The edges' point counts must stay inside the stored points: a forged count
// would otherwise make the reader run past the array.
bool pointCountsFit(const GraphArrays& a, const char* filename) {
    int64_t position = 0;
    const int numEdges = static_cast<int>(a.pointCounts->getLocation()->getSize());
    for (int e = 0; e < numEdges; ++e) {
        int n = a.counts()[e];
        if (n < 0 || n > a.numPoints() - position) {
            theMsg->printf("Error: %s: edge %d has %d points, more than the %d stored edge points leave.",
                           filename, e, n, a.numPoints());
            return false;
        }
        position += n;
    }
    return true;
}

// Copies as many bytes of src as both the attribute and the array hold.
void copyValues(GraphAttribute* attribute, const void* src, size_t srcBytes) {
    size_t bytes = static_cast<size_t>(attribute->size()) * attribute->getElementSize();
    if (attribute->size() > 0 && srcBytes > 0) {
        std::memcpy(attribute->dataPtr(), src, std::min(bytes, srcBytes));
    }
}

// The array's values go straight into the new attribute when the array holds
// a value for every element (a point array may hold more points than the
// edges use); otherwise the attribute starts at zero and takes what there is.
GraphAttribute* addAttributeWithValues(KxSpatialGraph* graph, const KorvaMesh::Data* d,
                                       KxSpatialGraph::Location loc) {
    const int elements = loc == KxSpatialGraph::VERTEX ? graph->getNumVertices()
                         : loc == KxSpatialGraph::EDGE ? graph->getNumEdges()
                                                       : graph->getTotalNumEdgePoints();
    const bool complete = d->getNumBytes() >= static_cast<size_t>(elements) *
                                                  static_cast<size_t>(d->getNumComponents()) *
                                                  d->getPrimType().getSize();
    GraphAttribute* a = graph->addAttribute(d->getName(), loc, d->getPrimType(), d->getNumComponents(),
                                            complete ? d->getValues() : nullptr);
    if (a && !complete) {
        copyValues(a, d->getValues(), d->getNumBytes());
    }
    return a;
}

// Turns every other mesh array of the three locations into an attribute and
// ties it to the label group of its name. False if a label tree is broken.
bool addAttributes(KxSpatialGraph* graph, const KorvaMesh& mesh) {
    bool labelsOk = true;
    for (int i = 0; i < mesh.getNumData(); ++i) {
        const KorvaMesh::Data* d = mesh.getData(i);
        const char* location = d->getLocationName();
        KxSpatialGraph::Location loc = std::strcmp(location, "VERTEX") == 0 ? KxSpatialGraph::VERTEX
                                       : std::strcmp(location, "EDGE") == 0 ? KxSpatialGraph::EDGE
                                                                            : KxSpatialGraph::POINT;
        if (KxSpatialGraph::isKorvaMeshArrayName(d->getName()) ||
            (loc == KxSpatialGraph::POINT && std::strcmp(location, "POINT") != 0)) {
            continue;
        }
        if (!addAttributeWithValues(graph, d, loc)) {
            continue;
        }
        if (KxParamBundle* bundle = graph->parameters().getBundle(d->getName())) {
            labelsOk = HierarchicalLabels::isConsistent(bundle) && labelsOk;
            graph->addExistingLabelGroup(bundle);
        }
    }
    return labelsOk;
}

// ---- Legacy label groups

// A legacy group's undefined label becomes the group itself: its colour moves
// to the group bundle, the child goes and the group gets id 0. Null if the
// group or its undefined child is missing.
KxParamBundle* foldUndefinedLabel(KxSpatialGraph* graph, const char* group, const char* undefined) {
    KxParamBundle* bundle = graph->parameters().getBundle(group);
    KxParamBundle* child = bundle ? bundle->getBundle(undefined) : nullptr;
    if (!child) {
        return nullptr;
    }
    Color color;
    if (child->findColor(color)) {
        bundle->setColor(color);
    }
    bundle->removeBundle(child);
    bundle->setInt("Id", 0);
    return bundle;
}

void numberChildren(KxParamBundle* bundle) {
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        bundle->getBundle(i)->setInt("Id", i + 1);
    }
}

// The fixed ids of the legacy neuron and landmark labels.
struct FixedLabel {
    const char* name;
    int id;
    std::vector<FixedLabel> children;
};

std::vector<FixedLabel> row(const char* rowName, int rowId, std::vector<const char*> names) {
    std::vector<FixedLabel> children;
    for (size_t i = 0; i < names.size(); ++i) {
        children.push_back({names[i], rowId + 1 + static_cast<int>(i), {}});
    }
    return {{rowName, rowId, children}};
}

const std::vector<FixedLabel>& fixedLabels() {
    static const std::vector<FixedLabel> table = [] {
        std::vector<FixedLabel> barrel;
        for (auto r : {row("aRow", 12, {"A1", "A2", "A3", "A4"}), row("bRow", 17, {"B1", "B2", "B3", "B4"}),
                       row("cRow", 22, {"C1", "C2", "C3", "C4", "C5", "C6"}),
                       row("dRow", 29, {"D1", "D2", "D3", "D4", "D5", "D6"}),
                       row("eRow", 36, {"E1", "E2", "E3", "E4", "E5", "E6"}),
                       row("greekRow", 43, {"Alpha", "Beta", "Gamma", "Delta"})}) {
            barrel.push_back(r[0]);
        }
        return std::vector<FixedLabel>{
            {"Neuron",
             2,
             {{"Dendrite", 3, {{"ApicalDendrite", 4, {}}, {"BasalDendrite", 5, {}}}},
              {"Axon", 6, {}},
              {"Soma", 7, {}}}},
            {"Landmark", 8, {{"Pia", 9, {}}, {"Vessel", 10, {}}, {"Barrel", 11, barrel}}},
        };
    }();
    return table;
}

// Parent first; a child list is visited only when its parent was found.
void assignFixedIds(KxParamBundle* parent, const std::vector<FixedLabel>& labels) {
    for (const FixedLabel& label : labels) {
        if (KxSpatialGraph::assignChildLabelId(parent, label.name, label.id)) {
            assignFixedIds(parent->getBundle(label.name), label.children);
        }
    }
}

// The legacy "Graph" arrays hold the vertex values, then the edge values; a
// shorter array would leave values silently zero.
bool graphArraysFit(const KorvaMesh& mesh, int64_t needed, const char* filename) {
    for (const char* name : {"GraphLabel", "GraphIntData"}) {
        const KorvaMesh::Data* d = mesh.findData("Graph", PrimType::INT32, 1, name);
        if (d && d->getNumValues() < needed) {
            theMsg->printf("Error: %s: \"%s\" holds %lld values, fewer than the %lld vertices and edges.",
                           filename, name, static_cast<long long>(d->getNumValues()),
                           static_cast<long long>(needed));
            return false;
        }
    }
    return true;
}

// A vertex attribute and an edge attribute of that name from one array that
// holds the vertex values first, then the edge values.
void addSplitAttribute(KxSpatialGraph* graph, const KorvaMesh::Data* d, const char* name,
                       GraphAttribute*& onVertices, GraphAttribute*& onEdges) {
    onVertices = graph->addAttribute(name, KxSpatialGraph::VERTEX, d->getPrimType(), d->getNumComponents());
    onEdges = graph->addAttribute(name, KxSpatialGraph::EDGE, d->getPrimType(), d->getNumComponents());
    const char* src = static_cast<const char*>(d->getValues());
    size_t vertexBytes = static_cast<size_t>(onVertices->size()) * onVertices->getElementSize();
    copyValues(onVertices, src, d->getNumBytes());
    if (d->getNumBytes() > vertexBytes) {
        copyValues(onEdges, src + vertexBytes, d->getNumBytes() - vertexBytes);
    }
}

void replaceValue(GraphAttribute* a, int from, int to) {
    int* v = static_cast<int*>(a->dataPtr());
    std::replace(v, v + a->size(), from, to);
}

void convertLegacyLabels(KxSpatialGraph* graph, const KorvaMesh& mesh, KxSpatialGraph::Location loc,
                         const char* location, const char* array, const char* group, const char* undefined) {
    const KorvaMesh::Data* d = mesh.findData(location, PrimType::INT32, 1, array);
    if (!d) {
        return;
    }
    copyValues(graph->addAttribute(group, loc, d->getPrimType(), d->getNumComponents()), d->getValues(),
               d->getNumBytes());
    if (KxParamBundle* bundle = foldUndefinedLabel(graph, group, undefined)) {
        numberChildren(bundle);
        graph->addExistingLabelGroup(bundle);
    }
}

void convertLegacyGraphLabels(KxSpatialGraph* graph, const KorvaMesh& mesh) {
    const KorvaMesh::Data* d = mesh.findData("Graph", PrimType::INT32, 1, "GraphLabel");
    if (!d) {
        return;
    }
    GraphAttribute *onVertices, *onEdges;
    addSplitAttribute(graph, d, "GraphLabels", onVertices, onEdges);
    KxParamBundle* bundle = graph->parameters().getBundle("GraphLabels");
    if (!bundle) {
        return;
    }
    if (foldUndefinedLabel(graph, "GraphLabels", "UndefinedGraphLabel")) {
        // The old undefined label had id 1; it is the group's own id 0 now.
        replaceValue(onVertices, 1, 0);
        replaceValue(onEdges, 1, 0);
    }
    if (bundle->getBundle("Neuron") && bundle->getBundle("Landmark")) {
        assignFixedIds(bundle, fixedLabels());
    } else {
        numberChildren(bundle);
    }
    graph->addExistingLabelGroup(bundle);
}

void finishReading(KxSpatialGraph* graph, const char* filename) {
    graph->setLoadCmd(filename);
    graph->setSaveInfoParam("KorvaMesh");
    graph->isConsistent();
}

}  // namespace

KxSpatialGraph* readKorvaMeshToSpatialGraph(const KorvaMesh& mesh, const char* filename) {
    if (mesh.findData("Vertices", PrimType::FLOAT32, 3, "VertexCoordinates") &&
        mesh.findData("Edges", PrimType::INT32, 2, "EdgeConnectivity")) {
        return readLegacyKorvaMeshToSpatialGraph(mesh, filename);
    }
    GraphArrays a(mesh, "VERTEX", "EDGE", "POINT");
    if (!a.complete()) {
        printExpectingAtLeast(filename);
        return nullptr;
    }
    if (!edgeEndsFit(a, filename) || !pointCountsFit(a, filename)) {
        return nullptr;
    }
    KxSpatialGraph* graph = new KxSpatialGraph;
    takeParameters(graph, mesh);
    const int numEdges = static_cast<int>(a.connectivity->getLocation()->getSize());
    graph->setSizeHint(static_cast<int>(a.vertices->getLocation()->getSize()), numEdges, a.numPoints());
    addVertices(graph, a.vertices);
    graph->appendMultipleEdges(a.edgeEnds(), a.counts(), a.pointCoords(), numEdges);
    bool labelsOk = addAttributes(graph, mesh);
    finishReading(graph, filename);
    if (!labelsOk) {
        theMsg->printf(
            "Warning: The attributes are inconsistent.  It is unsafe to continue using Korva with the loaded "
            "SpatialGraph.");
    }
    return graph;
}

KxSpatialGraph* readLegacyKorvaMeshToSpatialGraph(const KorvaMesh& mesh, const char* filename) {
    theMsg->printf("Reading legacy spatialGraph");
    GraphArrays a(mesh, "Vertices", "Edges", "EdgePoints");
    if (!a.complete()) {
        printExpectingAtLeast(filename);
        return nullptr;
    }
    const int numVertices = static_cast<int>(a.vertices->getLocation()->getSize());
    const int numEdges = static_cast<int>(a.connectivity->getLocation()->getSize());
    if (!edgeEndsFit(a, filename) || !pointCountsFit(a, filename) ||
        !graphArraysFit(mesh, int64_t{numVertices} + numEdges, filename)) {
        return nullptr;
    }
    KxSpatialGraph* graph = new KxSpatialGraph;
    takeParameters(graph, mesh);
    graph->setSizeHint(numVertices, numEdges, a.numPoints());
    addVertices(graph, a.vertices);
    for (int e = 0; e < numEdges; ++e) {
        graph->addEdge(a.edgeEnds()[2 * e], a.edgeEnds()[2 * e + 1]);
    }
    DArray<Vec3f> edgePoints;
    const Vec3f* points = a.pointCoords();
    for (int e = 0; e < numEdges; ++e) {
        int n = a.counts()[e];
        edgePoints.clear();
        edgePoints.append(n, points);
        graph->setEdgePoints(e, edgePoints);
        points += n;
    }
    convertLegacyLabels(graph, mesh, KxSpatialGraph::VERTEX, "Vertices", "VertexLabel", "VertexLabels",
                        "UndefinedVertexLabel");
    convertLegacyLabels(graph, mesh, KxSpatialGraph::EDGE, "Edges", "EdgeLabel", "EdgeLabels",
                        "UndefinedEdgeLabel");
    convertLegacyGraphLabels(graph, mesh);
    if (const KorvaMesh::Data* d = mesh.findData("Graph", PrimType::INT32, 1, "GraphIntData")) {
        GraphAttribute *onVertices, *onEdges;
        addSplitAttribute(graph, d, "GraphIntData", onVertices, onEdges);
    }
    if (const KorvaMesh::Data* d = mesh.findData("EdgePoints", PrimType::FLOAT32, 1, "EdgePointFloatData")) {
        copyValues(graph->addAttribute("EdgePointFloatData", KxSpatialGraph::POINT, PrimType::FLOAT32, 1),
                   d->getValues(), d->getNumBytes());
    }
    finishReading(graph, filename);
    return graph;
}

const KxSpatialGraphInterface* spatialGraphToWrite(KxData* data, const char* format) {
    KxSpatialGraph* graph = dynamic_cast<KxSpatialGraph*>(data);
    if (!graph) {
        theMsg->printf("Error: %s files hold spatial graphs, not %s.", format, data->getTypeName());
        return nullptr;
    }
    return graph->getSpatialGraphInterface();
}

int registerSpatialGraph(KxSpatialGraph* graph, const char* filename) {
    if (!graph) {
        return 0;
    }
    const char* slash = std::strrchr(filename, '/');
    theObjectPool->add(graph, slash ? slash + 1 : filename);
    return 1;
}

int readKorvaMesh(const KorvaMesh& mesh, const char* filename) {
    return registerSpatialGraph(readKorvaMeshToSpatialGraph(mesh, filename), filename);
}
