// The graph as NumPy arrays: read-only views of the graph's own storage where
// it is one flat array of the right layout, copies where it is not.

#include <functional>

#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PyIndices.h"
#include "python/PyPrimTypes.h"
#include "python/PySession.h"
#include "korva/core/KxParamBundle.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace py = pybind11;

namespace {

// Every view is made under the library lock: a change in another thread
// cannot be moving the storage meanwhile.
py::array lockedView(const std::function<py::array()>& make) {
    py::array result;
    PySession::locked([&] { result = make(); });
    return result;
}

py::array vertices(py::handle self) {
    const KxSpatialGraph& g = self.cast<PyGraph&>().graph();
    return lockedView([&] {
        return PyGraph::view(self, py::dtype("float32"), {g.getNumVertices(), 3}, g.getVertices(0));
    });
}

py::array points(py::handle self) {
    const EdgePointsManager& points = self.cast<PyGraph&>().graph().getEdgePointsManager();
    return lockedView([&] {
        return PyGraph::view(self, py::dtype("float32"), {points.getTotalNumEdgePoints(), 3},
                             points.getAllPoints().dataPtr());
    });
}

py::array offsets(py::handle self) {
    const DArray<int>& offsets = self.cast<PyGraph&>().graph().getEdgePointsManager().getOffsets();
    return lockedView(
        [&] { return PyGraph::view(self, py::dtype("int32"), {offsets.size()}, offsets.dataPtr()); });
}

py::array edgePoints(py::handle self, long long e) {
    const KxSpatialGraph& g = self.cast<PyGraph&>().graph();
    return lockedView([&] {
        int n = 0;
        const Vec3f* first = g.getEdgePoints(checkedIndex(e, g.getNumEdges(), "edge"), n);
        return PyGraph::view(self, py::dtype("float32"), {n, 3}, first);
    });
}

// Deliberate: a copy. An edge stores more than its two ends (it is a class
// of its own), so there is no E x 2 block of ints to view.
py::array_t<int32_t> edges(const PyGraph& self) {
    const KxSpatialGraph& g = self.graph();
    py::array_t<int32_t> result;
    PySession::locked([&] {
        result = py::array_t<int32_t>({g.getNumEdges(), 2});
        auto out = result.mutable_unchecked<2>();
        for (int e = 0; e < g.getNumEdges(); ++e) {
            out(e, 0) = g.getEdgeSource(e);
            out(e, 1) = g.getEdgeTarget(e);
        }
    });
    return result;
}

py::array attributeView(py::handle self, const GraphAttribute* a) {
    std::vector<py::ssize_t> shape{a->size()};
    if (a->getNumDataVar() != 1) {
        shape.push_back(a->getNumDataVar());
    }
    return PyGraph::view(self, dtypeOf(a->getPrimType()), shape, a->dataPtr());
}

py::dict attributes(py::handle self, KxSpatialGraph::Location location) {
    const KxSpatialGraph& g = self.cast<PyGraph&>().graph();
    py::dict result;
    PySession::locked([&] {
        for (int i = 0; i < g.numAttributes(location); ++i) {
            const GraphAttribute* a = g.attribute(location, i);
            result[a->getName()] = attributeView(self, a);
        }
    });
    return result;
}

py::dict label(const KxParamBundle& bundle) {
    py::dict node;
    node["name"] = bundle.getName();
    int id = -1;
    node["id"] = bundle.findInt("Id", id) ? id : -1;
    Color color;
    node["color"] =
        bundle.findColor(color) ? py::object(py::make_tuple(color.r, color.g, color.b)) : py::none();
    py::list children;
    for (int i = 0; i < bundle.getNumBundles(); ++i) {
        children.append(label(*bundle.getBundle(i)));
    }
    node["children"] = children;
    return node;
}

// In the order of the graph's parameters, as files keep them.
py::dict labelGroups(const PyGraph& self) {
    const KxSpatialGraph& g = self.graph();
    py::dict result;
    PySession::locked([&] {
        const KxParamBundle& params = g.parameters();
        for (int i = 0; i < params.getNumBundles(); ++i) {
            const KxParamBundle* bundle = params.getBundle(i);
            if (g.getLabelGroup(bundle->getName())) {
                result[bundle->getName()] = label(*bundle);
            }
        }
    });
    return result;
}

const char* const kViewNote =
    " It is a read-only view of the graph's storage, not a copy: it keeps the graph alive, and while it "
    "exists the graph refuses changes (BufferError). numpy.array(...) gives a copy.";

std::string viewDoc(const char* what) {
    return std::string(what) + kViewNote;
}

}  // namespace

void bindArrays(PyGraphClass& graph) {
    graph.def("__repr__", [](const PyGraph& s) {
        const KxSpatialGraph& g = s.graph();
        return "<kxspatialgraph.Graph '" + std::string(g.getLabel()) +
               "': " + std::to_string(g.getNumVertices()) + " vertices, " + std::to_string(g.getNumEdges()) +
               " edges, " + std::to_string(g.getTotalNumEdgePoints()) + " points>";
    });
    graph.def_property_readonly("num_vertices", [](const PyGraph& s) { return s.graph().getNumVertices(); });
    graph.def_property_readonly("num_edges", [](const PyGraph& s) { return s.graph().getNumEdges(); });
    graph.def_property_readonly("num_points",
                                [](const PyGraph& s) { return s.graph().getTotalNumEdgePoints(); });
    graph.def_property_readonly("vertices", &vertices, viewDoc("Vertex coordinates, N x 3 float32.").c_str());
    graph.def_property_readonly(
        "edges", &edges,
        "Source and target vertex of each edge, E x 2 int32. A copy: edits do not show in it.");
    graph.def_property_readonly("points", &points,
                                viewDoc("Every edge's points, edge after edge, P x 3 float32; edge e's are "
                                        "points[offsets[e]:offsets[e + 1]].")
                                    .c_str());
    graph.def_property_readonly("offsets", &offsets,
                                viewDoc("Where each edge's points start in points, E + 1 int32; the "
                                        "last entry is the number of points.")
                                    .c_str());
    graph.def("edge_points", &edgePoints, py::arg("e"),
              viewDoc("The points of edge e (negative e counts from the end), n x 3 float32, from the "
                      "source vertex to the target. IndexError for an edge that does not exist.")
                  .c_str());
    graph.def_property_readonly(
        "vertex_attributes", [](py::handle self) { return attributes(self, KxSpatialGraph::VERTEX); },
        viewDoc("Vertex attributes by name: one value per vertex, shape (N,) for one component, "
                "(N, k) for k, of the attribute's type. The dict is new, each array a view.")
            .c_str());
    graph.def_property_readonly(
        "edge_attributes", [](py::handle self) { return attributes(self, KxSpatialGraph::EDGE); },
        viewDoc("Edge attributes by name, shaped like vertex_attributes, each array a view.").c_str());
    graph.def_property_readonly(
        "point_attributes", [](py::handle self) { return attributes(self, KxSpatialGraph::POINT); },
        viewDoc(
            "Edge point attributes by name, one value per point in the order of points, each array a view.")
            .c_str());
    graph.def_property_readonly("label_groups", &labelGroups,
                                "Label groups by name, each a nested dict: name, id, color (r, g, b in "
                                "0..1) and children (a list of such dicts). The integer attribute of the "
                                "group's name holds label ids. A copy.");
}
