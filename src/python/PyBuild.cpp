// Building a graph from NumPy arrays in one call. The arrays are handed, without
// copying, to an in-memory KorvaMesh of the graph file's layout, and the graph
// file's reader builds the graph from it: one implementation, with the reader's
// checks (edge ends, point counts, label trees, consistency).

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PyIndices.h"
#include "python/PyPrimTypes.h"
#include "python/PySession.h"

namespace py = pybind11;

namespace {

template <typename T>
using Rows = py::array_t<T, py::array::c_style | py::array::forcecast>;

// values as a C-contiguous array of count rows: int32 for integers (which
// must fit), float32 for floats, the type it has otherwise.
py::array attributeArray(const std::string& name, const py::handle& values, py::ssize_t count) {
    py::array a = py::array::ensure(values, py::array::c_style);
    if (!a || a.ndim() < 1 || a.ndim() > 2 || a.shape(0) != count) {
        throw py::value_error("attribute \"" + name + "\" needs " + std::to_string(count) +
                              " rows (one per element), one or two dimensions");
    }
    const char kind = a.dtype().kind();
    if (kind == 'b' || kind == 'i' || kind == 'u') {
        if (a.size() > 0 && (py::int_(a.attr("min")()) < py::int_(INT_MIN) ||
                             py::int_(a.attr("max")()) > py::int_(INT_MAX))) {
            throw py::value_error("attribute \"" + name + "\" holds integers beyond 32 bits");
        }
        return Rows<int32_t>::ensure(a);
    }
    if (kind == 'f') {
        return Rows<float>::ensure(a);
    }
    throw py::type_error("attribute \"" + name + "\" must hold integers or floats");
}

// An attribute's values, typed while the GIL is held.
struct Attribute {
    std::string name;
    py::array values;
    PrimType type;
    int components;
};

// The arrays a graph is made of, converted and checked for shape.
struct GraphArrays {
    Rows<float> vertices;
    Rows<int32_t> edges;
    Rows<float> points;
    std::vector<int32_t> pointCounts;
    std::vector<Attribute> attributes[3];
};

void takeAttributes(GraphArrays& a, KxSpatialGraph::Location location, const py::object& dict,
                    py::ssize_t count) {
    if (dict.is_none()) {
        return;
    }
    for (auto item : dict.cast<py::dict>()) {
        std::string name = py::str(item.first);
        py::array values = attributeArray(name, item.second, count);
        PrimType type;
        primTypeOf(values.dtype(), type);
        const int components = values.ndim() == 2 ? static_cast<int>(values.shape(1)) : 1;
        a.attributes[location].push_back(Attribute{name, values, type, components});
    }
}

// Straight edges: each edge's points are its two end vertices.
void straightEdges(GraphArrays& a) {
    const py::ssize_t numEdges = a.edges.shape(0);
    a.points = Rows<float>({numEdges * 2, py::ssize_t(3)});
    auto ends = a.edges.unchecked<2>();
    auto out = a.points.mutable_unchecked<2>();
    auto coords = a.vertices.unchecked<2>();
    for (py::ssize_t e = 0; e < numEdges; ++e) {
        for (int end = 0; end < 2; ++end) {
            const int v = ends(e, end);
            if (v < 0 || v >= coords.shape(0)) {
                throw py::index_error("edge " + std::to_string(e) + " refers to vertex " + std::to_string(v) +
                                      ", but there are " + std::to_string(coords.shape(0)) + " vertices");
            }
            for (int k = 0; k < 3; ++k) {
                out(2 * e + end, k) = coords(v, k);
            }
        }
    }
    a.pointCounts.assign(static_cast<size_t>(numEdges), 2);
}

void pointCountsFromOffsets(GraphArrays& a, const py::object& offsetsArg) {
    Rows<int64_t> offsets = Rows<int64_t>::ensure(offsetsArg);
    const py::ssize_t numEdges = a.edges.shape(0);
    if (!offsets || offsets.ndim() != 1 || offsets.shape(0) != numEdges + 1) {
        throw py::value_error("offsets needs one entry per edge and one more (" +
                              std::to_string(numEdges + 1) + ")");
    }
    auto o = offsets.unchecked<1>();
    if (o(0) != 0 || o(numEdges) != a.points.shape(0)) {
        throw py::value_error("offsets must start at 0 and end at the number of points");
    }
    a.pointCounts.resize(static_cast<size_t>(numEdges));
    for (py::ssize_t e = 0; e < numEdges; ++e) {
        if (o(e + 1) < o(e)) {
            throw py::value_error("offsets must not decrease (edge " + std::to_string(e) + ")");
        }
        a.pointCounts[static_cast<size_t>(e)] = static_cast<int32_t>(o(e + 1) - o(e));
    }
}

GraphArrays takeArrays(const py::object& vertices, const py::object& edges, const py::object& points,
                       const py::object& offsets) {
    GraphArrays a;
    a.vertices = Rows<float>::ensure(vertices);
    a.edges = Rows<int32_t>::ensure(edges);
    if (!a.vertices || a.vertices.ndim() != 2 || a.vertices.shape(1) != 3) {
        throw py::value_error("vertices must be an N x 3 array");
    }
    if (!a.edges || a.edges.ndim() != 2 || a.edges.shape(1) != 2) {
        throw py::value_error("edges must be an E x 2 array");
    }
    if (points.is_none() != offsets.is_none()) {
        throw py::value_error("points and offsets come together");
    }
    if (points.is_none()) {
        straightEdges(a);
        return a;
    }
    a.points = Rows<float>::ensure(points);
    if (!a.points || a.points.ndim() != 2 || a.points.shape(1) != 3) {
        throw py::value_error("points must be a P x 3 array");
    }
    pointCountsFromOffsets(a, offsets);
    return a;
}

void addLabel(KxParamBundle& bundle, const py::dict& label) {
    bundle.setInt("Id", castArgument<int>(label["id"], "an integer label id"));
    if (label.contains("color") && !label["color"].is_none()) {
        auto rgb = castArgument<std::vector<float>>(label["color"], "a label colour (r, g, b)");
        if (rgb.size() != 3) {
            throw py::value_error("a label colour is (r, g, b)");
        }
        bundle.setColor(Color(rgb.data()));
    }
    if (label.contains("children")) {
        for (auto child : label["children"].cast<py::list>()) {
            py::dict c = child.cast<py::dict>();
            addLabel(*bundle.addBundle(c["name"].cast<std::string>().c_str()), c);
        }
    }
}

// Label groups in the nested form Graph.label_groups gives, as the parameter
// bundles the graph file keeps them in.
void addLabelGroups(KxParamBundle& parameters, const py::object& groups) {
    if (groups.is_none()) {
        return;
    }
    for (auto item : groups.cast<py::dict>()) {
        std::string name = py::str(item.first);
        addLabel(*parameters.addBundle(name.c_str()), item.second.cast<py::dict>());
    }
}

// A label group's label ids live in the integer attribute of its name.
void requireGroupAttributes(const GraphArrays& a, const py::object& groups) {
    if (groups.is_none()) {
        return;
    }
    for (auto item : groups.cast<py::dict>()) {
        std::string name = py::str(item.first);
        bool found = false;
        for (const auto& list : a.attributes) {
            for (const auto& attribute : list) {
                found = found || (attribute.name == name && attribute.type == PrimType::INT32);
            }
        }
        if (!found) {
            throw py::value_error("label group \"" + name + "\" needs an integer attribute of its name");
        }
    }
}

bool fillMesh(KorvaMesh& mesh, const GraphArrays& a) {
    const KorvaMesh::Location* locations[3] = {mesh.createLocation("VERTEX", a.vertices.shape(0)),
                                               mesh.createLocation("EDGE", a.edges.shape(0)),
                                               mesh.createLocation("POINT", a.points.shape(0))};
    if (!locations[0] || !locations[1] || !locations[2]) {
        return false;
    }
    mesh.createData("VertexCoordinates", locations[0], PrimType::FLOAT32, 3, a.vertices.data());
    mesh.createData("EdgeConnectivity", locations[1], PrimType::INT32, 2, a.edges.data());
    mesh.createData("NumEdgePoints", locations[1], PrimType::INT32, 1, a.pointCounts.data());
    mesh.createData("EdgePointCoordinates", locations[2], PrimType::FLOAT32, 3, a.points.data());
    for (int loc = 0; loc < 3; ++loc) {
        for (const Attribute& attribute : a.attributes[loc]) {
            if (!mesh.createData(attribute.name.c_str(), locations[loc], attribute.type, attribute.components,
                                 attribute.values.data())) {
                return false;
            }
        }
    }
    return true;
}

std::unique_ptr<PyGraph> fromArrays(const py::object& vertices, const py::object& edges,
                                    const py::object& points, const py::object& offsets,
                                    const py::object& vertexAttributes, const py::object& edgeAttributes,
                                    const py::object& pointAttributes, const py::object& labelGroups,
                                    const std::string& label) {
    GraphArrays a = takeArrays(vertices, edges, points, offsets);
    takeAttributes(a, KxSpatialGraph::VERTEX, vertexAttributes, a.vertices.shape(0));
    takeAttributes(a, KxSpatialGraph::EDGE, edgeAttributes, a.edges.shape(0));
    takeAttributes(a, KxSpatialGraph::POINT, pointAttributes, a.points.shape(0));
    requireGroupAttributes(a, labelGroups);
    KorvaMesh mesh;
    addLabelGroups(mesh.getParameters(), labelGroups);
    KxSpatialGraph* graph = nullptr;
    PySession::run([&] {
        const int errorsBefore = theMsg->numErrorLines();
        if (!fillMesh(mesh, a)) {
            return false;
        }
        graph = readKorvaMeshToSpatialGraph(mesh, label.c_str());
        if (graph && theMsg->numErrorLines() != errorsBefore) {
            delete graph;
            graph = nullptr;
        }
        if (graph) {
            graph->setLoadCmd("");
            theObjectPool->add(graph, label.c_str());
        }
        return graph != nullptr;
    });
    return std::make_unique<PyGraph>(graph);
}

// Registers a new graph made from self's under self's label and "suffix".
std::unique_ptr<PyGraph> derived(const PyGraph& self, const char* suffix,
                                 const std::function<KxSpatialGraph*(const KxSpatialGraph&)>& make) {
    KxSpatialGraph* graph = nullptr;
    PySession::run([&] {
        graph = make(self.graph());
        if (graph) {
            theObjectPool->add(graph, (std::string(self.graph().getLabel()) + suffix).c_str());
        }
        return graph != nullptr;
    });
    return std::make_unique<PyGraph>(graph);
}

// The indices are checked in the same locked call that copies: between two
// calls another thread may edit the graph.
std::unique_ptr<PyGraph> subgraph(const PyGraph& self, const py::object& vertices, const py::object& edges) {
    const std::vector<long long> wantedVertices = indexValues(vertices, "vertex");
    const std::vector<long long> wantedEdges = indexValues(edges, "edge");
    return derived(self, "-subgraph", [&](const KxSpatialGraph& graph) {
        SpatialGraphSelection selection;
        selection.resize(graph.getNumVertices(), graph.getNumEdges());
        for (int v : checkedIndices(wantedVertices, graph.getNumVertices(), "vertex")) {
            selection.selectVertex(v);
        }
        for (int e : checkedIndices(wantedEdges, graph.getNumEdges(), "edge")) {
            selection.selectEdge(e);
        }
        return graph.getSubgraph(selection);
    });
}

}  // namespace

void bindGraphCopies(PyGraphClass& graph) {
    graph.def(
        "copy",
        [](const PyGraph& self) {
            return derived(self, "-copy", [](const KxSpatialGraph& g) {
                return static_cast<KxSpatialGraph*>(g.duplicate());
            });
        },
        "A new graph with everything this one holds (attributes, label groups, transformation).");
    graph.def("subgraph", &subgraph, py::arg("vertices") = py::list(), py::arg("edges") = py::list(),
              "A new graph of the given vertices and edges (index arrays) with their attributes and "
              "label groups; an edge keeps its two vertices. The answer of shortest_path() can be passed "
              "as **path. IndexError for elements that do not exist.");
}

void bindBuilding(py::module_& module) {
    module.def("from_arrays", &fromArrays, py::arg("vertices"), py::arg("edges"),
               py::arg("points") = py::none(), py::arg("offsets") = py::none(),
               py::arg("vertex_attributes") = py::none(), py::arg("edge_attributes") = py::none(),
               py::arg("point_attributes") = py::none(), py::arg("label_groups") = py::none(),
               py::arg("label") = "graph",
               "A new graph from arrays, in one pass over them: vertices N x 3, edges E x 2 (source, "
               "target), and either no points (straight edges) or points P x 3 with offsets E + 1 "
               "(edge e's points are points[offsets[e]:offsets[e + 1]], from its source vertex to its "
               "target). Attributes are dicts name -> array with one row per vertex, edge or point "
               "(integers become int32, floats float32); label_groups takes the nested form of "
               "Graph.label_groups, each group with an int attribute of its name. Raises Error with "
               "the check's lines for a graph that is not consistent (an edge end outside the "
               "vertices, a polyline not ending at its vertices, ...).");
}
