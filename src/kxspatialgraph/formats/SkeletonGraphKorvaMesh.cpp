#include "kxspatialgraph/formats/SkeletonGraphKorvaMesh.h"

#include <map>
#include <vector>

#include "korva/core/KxMessageConsole.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

struct SkeletonPoint {
    Vec3f position;
    const int* neighbours = nullptr;
    int numNeighbours = 0;
    float radius = 0.0f;
    int type = 0;  // the mapped material label id
    bool marked = false;
    int vertex = -1;
};

// The point table and the graph being built.
struct Skeleton {
    std::vector<SkeletonPoint> points;
    KxSpatialGraph* graph = nullptr;
    PointAttribute* thickness = nullptr;
    PointAttribute* materials = nullptr;
    // The run being walked.
    DArray<Vec3f> runPoints;
    std::vector<float> runRadii;
    std::vector<int> runTypes;

    void append(const SkeletonPoint& p) {
        runPoints.append(p.position);
        runRadii.push_back(p.radius);
        runTypes.push_back(p.type);
    }
    int vertexOf(int i) {
        SkeletonPoint& p = points[static_cast<size_t>(i)];
        if (p.vertex < 0) {
            p.vertex = graph->addVertex(p.position);
            p.marked = true;
        }
        return p.vertex;
    }
};

bool fail(const char* filename, const char* problem, int index) {
    theMsg->printf("Error: skeleton graph %s: %s (point %d).", filename, problem, index);
    return false;
}

// Fills the point table, checking every count and index against the arrays.
bool fillPoints(Skeleton& s, const KorvaMesh& mesh, const char* filename) {
    const KorvaMesh::Data* coords = mesh.findData("Vertices", PrimType::FLOAT32, 3, "Coordinates");
    const KorvaMesh::Data* counts = mesh.findData("Vertices", PrimType::INT32, 1, "NeighbourCount");
    const KorvaMesh::Data* lists = mesh.findData("Edges", PrimType::INT32, 1, "NeighbourList");
    if (!coords || !counts || !lists) {
        theMsg->printf(
            "Error: skeleton graph %s: expecting at least Coordinates, NeighbourCount and NeighbourList.",
            filename);
        return false;
    }
    const KorvaMesh::Data* radii = mesh.findData("Vertices", PrimType::FLOAT32, 1, "Radii");
    const KorvaMesh::Data* typeCounts = mesh.findData("Vertices", PrimType::INT32, 1, "vertexTypeCounter");
    const KorvaMesh::Data* types = mesh.findData("vertexTypeList", PrimType::INT32, 1, "vertexTypeList");
    const int n = static_cast<int>(coords->getLocation()->getSize());
    const int64_t numListed = lists->getNumValues();
    const int64_t numTypes = types && typeCounts ? types->getNumValues() : 0;
    int64_t listed = 0, typed = 0;
    s.points.resize(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        SkeletonPoint& p = s.points[static_cast<size_t>(i)];
        p.position = static_cast<const Vec3f*>(coords->getValues())[i];
        p.numNeighbours = static_cast<const int*>(counts->getValues())[i];
        if (p.numNeighbours < 0 || p.numNeighbours > numListed - listed) {
            return fail(filename, "neighbour count past the end of NeighbourList", i);
        }
        p.neighbours = static_cast<const int*>(lists->getValues()) + listed;
        listed += p.numNeighbours;
        for (int k = 0; k < p.numNeighbours; ++k) {
            if (p.neighbours[k] < 0 || p.neighbours[k] >= n) {
                return fail(filename, "neighbour index out of range", i);
            }
        }
        if (radii) {
            p.radius = static_cast<const float*>(radii->getValues())[i];
        }
        if (numTypes > 0) {
            int t = static_cast<const int*>(typeCounts->getValues())[i];
            if (t < 0 || t > numTypes - typed) {
                return fail(filename, "type count past the end of vertexTypeList", i);
            }
            p.type = t < 1 ? 0 : static_cast<const int*>(types->getValues())[typed];
            typed += t;
        }
    }
    return true;
}

// The "Materials" group with one label per material bundle of the file; maps
// each material's file id to its new label id (file id 0 to 0).
std::map<int, int> addMaterials(Skeleton& s, const KorvaMesh& mesh) {
    std::map<int, int> ids{{0, 0}};
    s.graph->addNewLabelGroup("Materials", false, false, true);
    s.graph->parameters().getBundle("Materials")->setColor(Color(0.8f, 0.8f, 0.8f));
    s.materials = s.graph->findEdgePointAttribute("Materials");
    const KxParamBundle* materials = mesh.getParameters().getBundle("Materials");
    for (int i = 0; materials && i < materials->getNumBundles(); ++i) {
        const KxParamBundle* m = materials->getBundle(i);
        Color color;
        m->findColor(color);
        int label = s.graph->addLabel("Materials", 0, m->getName(), color);
        int fileId = 0;
        if (m->findInt("Id", fileId)) {
            ids[fileId] = label;
        }
    }
    return ids;
}

// Adds the walked run as an edge with its radii and materials.
void addRunEdge(Skeleton& s, int startVertex, int endVertex) {
    const int e = s.graph->addEdge(startVertex, endVertex, s.runPoints);
    for (int i = 0; i < s.runPoints.size(); ++i) {
        if (s.thickness) {
            s.thickness->setFloatDataAtPoint(s.runRadii[static_cast<size_t>(i)], e, i);
        }
        if (s.materials) {
            s.materials->setIntDataAtPoint(e, i, s.runTypes[static_cast<size_t>(i)]);
        }
    }
}

// Starts a run at point start, creating its vertex.
int startRun(Skeleton& s, int start) {
    s.runPoints.clear();
    s.runRadii.clear();
    s.runTypes.clear();
    s.append(s.points[static_cast<size_t>(start)]);
    return s.vertexOf(start);
}

// Walks the run from point start through its neighbour next and adds it as an
// edge. False when the walk does not end, which only broken neighbour lists
// can cause.
bool walkRun(Skeleton& s, int start, int next, const char* filename) {
    const int startVertex = startRun(s, start);
    int previous = start;
    int current = next;
    for (size_t steps = 0; s.points[static_cast<size_t>(current)].numNeighbours == 2; ++steps) {
        if (steps > s.points.size()) {
            return fail(filename, "a run of two-neighbour points does not end; the neighbour lists disagree",
                        start);
        }
        SkeletonPoint& c = s.points[static_cast<size_t>(current)];
        s.append(c);
        c.marked = true;
        const SkeletonPoint& first = s.points[static_cast<size_t>(c.neighbours[0])];
        const SkeletonPoint& second = s.points[static_cast<size_t>(c.neighbours[1])];
        bool useSecond = first.marked && (!second.marked || first.vertex < 0 || c.neighbours[0] == previous);
        previous = current;
        current = useSecond ? c.neighbours[1] : c.neighbours[0];
    }
    s.append(s.points[static_cast<size_t>(current)]);
    addRunEdge(s, startVertex, s.vertexOf(current));
    return true;
}

// A component whose points all have two neighbours is a closed ring, which no
// walk from an end or branch point reaches. Deliberate: it becomes one loop
// edge on a vertex at its first point instead of vanishing from the import.
bool walkRing(Skeleton& s, int start, const char* filename) {
    const int vertex = startRun(s, start);
    int previous = start;
    int current = s.points[static_cast<size_t>(start)].neighbours[0];
    for (size_t steps = 0; current != start; ++steps) {
        SkeletonPoint& c = s.points[static_cast<size_t>(current)];
        if (steps > s.points.size() || c.numNeighbours != 2 || c.marked) {
            return fail(filename,
                        "a ring of two-neighbour points does not close; the neighbour lists disagree", start);
        }
        s.append(c);
        c.marked = true;
        int next = c.neighbours[0] == previous ? c.neighbours[1] : c.neighbours[0];
        previous = current;
        current = next;
    }
    s.append(s.points[static_cast<size_t>(start)]);
    addRunEdge(s, vertex, vertex);
    return true;
}

// True if an edge already joins the vertices of points a and b.
bool joined(const Skeleton& s, int a, int b) {
    int va = s.points[static_cast<size_t>(a)].vertex;
    int vb = s.points[static_cast<size_t>(b)].vertex;
    if (va < 0 || vb < 0) {
        return false;
    }
    const KxSpatialGraph::IncidenceList& edges = s.graph->getIncidentEdges(vb);
    for (int k = 0; k < edges.size(); ++k) {
        int src = s.graph->getEdgeSource(edges[k]);
        int dst = s.graph->getEdgeTarget(edges[k]);
        if ((src == va && dst == vb) || (src == vb && dst == va)) {
            return true;
        }
    }
    return false;
}

}  // namespace

KxSpatialGraph* loadSkeletonGraph(const KorvaMesh& mesh, const char* filename) {
    Skeleton s;
    if (!fillPoints(s, mesh, filename)) {
        return nullptr;
    }
    s.graph = new KxSpatialGraph;
    if (mesh.findData("Vertices", PrimType::FLOAT32, 1, "Radii")) {
        s.thickness = static_cast<PointAttribute*>(
            s.graph->addAttribute("Thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    }
    const KorvaMesh::Data* types = mesh.findData("vertexTypeList", PrimType::INT32, 1, "vertexTypeList");
    if (types && types->getNumValues() > 0 &&
        mesh.findData("Vertices", PrimType::INT32, 1, "vertexTypeCounter")) {
        std::map<int, int> ids = addMaterials(s, mesh);
        for (SkeletonPoint& p : s.points) {
            auto it = ids.find(p.type);
            p.type = it == ids.end() ? 0 : it->second;
        }
    }
    for (int i = 0; i < static_cast<int>(s.points.size()); ++i) {
        const SkeletonPoint& p = s.points[static_cast<size_t>(i)];
        if (p.numNeighbours == 2) {
            continue;
        }
        for (int k = 0; k < p.numNeighbours; ++k) {
            int q = p.neighbours[k];
            const SkeletonPoint& neighbour = s.points[static_cast<size_t>(q)];
            // A marked neighbour without a vertex lies inside a run already imported.
            if (neighbour.marked && (neighbour.vertex < 0 || joined(s, i, q))) {
                continue;
            }
            if (!walkRun(s, i, q, filename)) {
                delete s.graph;
                return nullptr;
            }
        }
    }
    for (int i = 0; i < static_cast<int>(s.points.size()); ++i) {
        const SkeletonPoint& p = s.points[static_cast<size_t>(i)];
        if (p.marked) {
            continue;
        }
        // A point left unwalked that has not two neighbours has none (or
        // neighbour lists that disagree): it is kept as a vertex of its own.
        if (p.numNeighbours != 2) {
            s.vertexOf(i);
        } else if (!walkRing(s, i, filename)) {
            delete s.graph;
            return nullptr;
        }
    }
    return s.graph;
}

int loadSkeletonGraphToKorva(const KorvaMesh& mesh, const char* filename) {
    return registerSpatialGraph(loadSkeletonGraph(mesh, filename), filename);
}
