// Measuring a graph from Python: lengths, box, components, trees and loops,
// node kinds, resampling, and per-element tables. Every number comes from
// the package's analysis classes; this file only shapes the answers.

#include <cstdint>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include "korva/base/DArray.h"
#include "kxspatialgraph/analysis/GraphUtils.h"
#include "kxspatialgraph/analysis/SpatialGraphFunctions.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PyIndices.h"
#include "python/PySession.h"
#include "python/PyTable.h"

namespace py = pybind11;

namespace {

py::array_t<int32_t> toArray(const DArray<int>& values) {
    return py::array_t<int32_t>(values.size(), values.dataPtr());
}

py::list toArrays(const DArray<DArray<int>>& lists) {
    py::list result;
    for (int i = 0; i < lists.size(); ++i) {
        result.append(toArray(lists[i]));
    }
    return result;
}

double totalLength(const PyGraph& self) {
    double length = 0;
    PySession::run([&] {
        length = SpatialGraphFunctions::getTotalEdgeLength(&self.graph());
        return true;
    });
    return length;
}

std::vector<float> edgeLengths(const KxSpatialGraph& graph) {
    std::vector<float> lengths(static_cast<size_t>(graph.getNumEdges()));
    for (int e = 0; e < graph.getNumEdges(); ++e) {
        lengths[static_cast<size_t>(e)] = SpatialGraphFunctions::getEdgeLength(&graph, e);
    }
    return lengths;
}

py::array_t<float> edgeLengthsArray(const PyGraph& self) {
    std::vector<float> lengths;
    PySession::run([&] {
        lengths = edgeLengths(self.graph());
        return true;
    });
    return py::array_t<float>(static_cast<py::ssize_t>(lengths.size()), lengths.data());
}

py::array_t<float> boundingBox(const PyGraph& self, bool transformed) {
    float box[6];
    PySession::run([&] {
        self.graph().computeBoundingBox(box, transformed);
        return true;
    });
    // Box order is xmin, xmax, ymin, ymax, zmin, zmax.
    py::array_t<float> result({2, 3});
    auto out = result.mutable_unchecked<2>();
    for (int axis = 0; axis < 3; ++axis) {
        out(0, axis) = box[2 * axis];
        out(1, axis) = box[2 * axis + 1];
    }
    return result;
}

// index[i] = k for every bit i set in the k-th selection's bits.
void numberBits(const BitField& bits, int k, std::vector<int32_t>& index) {
    const uint32_t* words = bits.getWords();
    for (int w = 0; w < bits.getNumWords(); ++w) {
        for (uint32_t word = words[w]; word != 0; word &= word - 1) {
            const size_t i = 32 * static_cast<size_t>(w) + static_cast<size_t>(__builtin_ctz(word));
            if (i < index.size()) {
                index[i] = k;
            }
        }
    }
}

py::dict components(const PyGraph& self) {
    const KxSpatialGraph& g = self.graph();
    std::vector<int32_t> vertex(static_cast<size_t>(g.getNumVertices()), -1);
    std::vector<int32_t> edge(static_cast<size_t>(g.getNumEdges()), -1);
    int count = 0;
    PySession::run([&] {
        SpatialGraphSelection all(&g);
        all.selectAllVerticesAndEdges();
        DArray<SpatialGraphSelection> found = g.getAllConnectedComponents(all);
        for (int k = 0; k < found.size(); ++k) {
            numberBits(found[k].getVertexSelection(), k, vertex);
            numberBits(found[k].getEdgeSelection(), k, edge);
        }
        count = found.size();
        return true;
    });
    py::dict result;
    result["count"] = count;
    result["vertex"] = py::array_t<int32_t>(static_cast<py::ssize_t>(vertex.size()), vertex.data());
    result["edge"] = py::array_t<int32_t>(static_cast<py::ssize_t>(edge.size()), edge.data());
    return result;
}

py::dict trees(const PyGraph& self) {
    DArray<DArray<int>> found;
    DArray<int> ranks, computedRanks;
    DArray<GraphUtils::LineLocation> locations;
    PySession::run([&] {
        GraphUtils::identifyTrees(&self.graph(), found, ranks, locations);
        GraphUtils::rankTrees(&self.graph(), found, computedRanks);
        return true;
    });
    DArray<int> treeOfEdge(locations.size());
    for (int e = 0; e < locations.size(); ++e) {
        treeOfEdge[e] = locations[e].tree;
    }
    py::dict result;
    result["trees"] = toArrays(found);
    result["tree"] = toArray(treeOfEdge);
    result["rank"] = toArray(computedRanks);
    return result;
}

py::dict loops(const PyGraph& self) {
    DArray<DArray<int>> found;
    DArray<int> loopyLines, generating;
    PySession::run([&] {
        GraphUtils::identifyLoops(&self.graph(), found, loopyLines);
        GraphUtils::getLoopGeneratingLines(&self.graph(), generating);
        return true;
    });
    py::dict result;
    result["loops"] = toArrays(found);
    result["loopy_lines"] = toArray(loopyLines);
    result["generating_lines"] = toArray(generating);
    return result;
}

py::dict selectionArrays(const SpatialGraphSelection& selection) {
    DArray<int> vertices, edges;
    for (int v = 0; v < selection.getNumVertices(); ++v) {
        if (selection.isSelectedVertex(v)) {
            vertices.append(v);
        }
    }
    for (int e = 0; e < selection.getNumEdges(); ++e) {
        if (selection.isSelectedEdge(e)) {
            edges.append(e);
        }
    }
    py::dict result;
    result["vertices"] = toArray(vertices);
    result["edges"] = toArray(edges);
    return result;
}

py::dict shortestPath(const PyGraph& self, long long from, long long to) {
    const KxSpatialGraph& g = self.graph();
    SpatialGraphSelection path;
    PySession::run([&] {
        path = g.getShortestPath(checkedIndex(from, g.getNumVertices(), "vertex"),
                                 checkedIndex(to, g.getNumVertices(), "vertex"));
        return true;
    });
    return selectionArrays(path);
}

void resample(PyGraph& self, float maxDistance) {
    PyGraph::Change change(self, "resample");
    KxSpatialGraph& g = self.graph();
    PySession::run([&] {
        if (!SpatialGraphFunctions::resampleWithMaximumPointDistance(&g, maxDistance)) {
            return false;
        }
        g.touch(KxData::ALL_PARTS);
        g.fire();
        return true;
    });
}

// Single-component attributes of a location as table columns (views copied).
void addAttributeColumns(const KxSpatialGraph& g, KxSpatialGraph::Location location, py::dict& columns) {
    for (int i = 0; i < g.numAttributes(location); ++i) {
        const GraphAttribute* a = g.attribute(location, i);
        if (a->getNumDataVar() != 1) {
            continue;
        }
        if (a->getPrimType() == PrimType::FLOAT32) {
            columns[a->getName()] = py::array_t<float>(a->size(), static_cast<const float*>(a->dataPtr()));
        } else if (a->getPrimType() == PrimType::INT32) {
            columns[a->getName()] =
                py::array_t<int32_t>(a->size(), static_cast<const int32_t*>(a->dataPtr()));
        }
    }
}

py::object edgeTable(py::handle self) {
    const KxSpatialGraph& g = self.cast<PyGraph&>().graph();
    std::vector<float> lengths;
    std::vector<int32_t> counts(static_cast<size_t>(g.getNumEdges()));
    PySession::run([&] {
        lengths = edgeLengths(g);
        for (int e = 0; e < g.getNumEdges(); ++e) {
            counts[static_cast<size_t>(e)] = g.getNumEdgePoints(e);
        }
        return true;
    });
    py::object ends = self.attr("edges");
    py::dict columns;
    columns["source"] = ends[py::make_tuple(py::slice(0, g.getNumEdges(), 1), 0)];
    columns["target"] = ends[py::make_tuple(py::slice(0, g.getNumEdges(), 1), 1)];
    columns["num_points"] = py::array_t<int32_t>(static_cast<py::ssize_t>(counts.size()), counts.data());
    columns["length"] = py::array_t<float>(static_cast<py::ssize_t>(lengths.size()), lengths.data());
    PySession::locked([&] { addAttributeColumns(g, KxSpatialGraph::EDGE, columns); });
    return table(columns);
}

const char* const kNodeTypeNames[] = {"isolated", "ending", "intermediate", "branching"};

py::object vertexTable(py::handle self) {
    const KxSpatialGraph& g = self.cast<PyGraph&>().graph();
    std::vector<int32_t> degree(static_cast<size_t>(g.getNumVertices()));
    std::vector<int> kind(degree.size());
    PySession::run([&] {
        for (int v = 0; v < g.getNumVertices(); ++v) {
            degree[static_cast<size_t>(v)] = g.getIncidentEdges(v).size();
            kind[static_cast<size_t>(v)] = SpatialGraphFunctions::getNodeType(&g, v);
        }
        return true;
    });
    py::object coords = self.attr("vertices").attr("copy")();
    py::list kinds;
    for (int k : kind) {
        kinds.append(kNodeTypeNames[k]);
    }
    py::dict columns;
    for (int axis = 0; axis < 3; ++axis) {
        columns[py::str(std::string(1, static_cast<char>('x' + axis)))] =
            coords[py::make_tuple(py::slice(0, g.getNumVertices(), 1), axis)];
    }
    columns["degree"] = py::array_t<int32_t>(static_cast<py::ssize_t>(degree.size()), degree.data());
    columns["node_type"] = kinds;
    PySession::locked([&] { addAttributeColumns(g, KxSpatialGraph::VERTEX, columns); });
    return table(columns);
}

}  // namespace

void bindMeasuring(PyGraphClass& graph) {
    graph.def("total_length", &totalLength,
              "The sum of all edge lengths, in the graph's own coordinates (no transformation).");
    graph.def("edge_lengths", &edgeLengthsArray,
              "Each edge's length (the sum of the distances between its consecutive points), E float32.");
    graph.def("bounding_box", &boundingBox, py::arg("transformed") = false,
              "((xmin, ymin, zmin), (xmax, ymax, zmax)) of every vertex and edge point, as a 2 x 3 "
              "array; with transformed, after the graph's transformation. A graph without edges "
              "answers its stored box.");
    graph.def("components", &components,
              "Connected components: a dict with their count and the component index of each vertex "
              "(\"vertex\") and edge (\"edge\"), components numbered as the graph's traversal finds "
              "them. Each component costs a pass over the whole graph.");
    graph.def("trees", &trees,
              "Trees of touching edges (edges whose end positions coincide, whatever their "
              "vertices), largest first: \"trees\" a list of edge index arrays, \"tree\" each edge's "
              "tree (-1 for none) and \"rank\" each edge's branch rank in its tree.");
    graph.def("loops", &loops,
              "Loops of touching edges, largest first: \"loops\" a list of edge index arrays, "
              "\"loopy_lines\" the edges found on cycles, \"generating_lines\" the edges whose "
              "removal opens the loops.");
    graph.def("shortest_path", &shortestPath, py::arg("source"), py::arg("target"),
              "The path of fewest edges between two vertices, as ascending index arrays "
              "\"vertices\" and \"edges\"; both empty when target cannot be reached. IndexError for "
              "vertices that do not exist.");
    graph.def("resample", &resample, py::arg("max_distance"),
              "Inserts evenly spaced points wherever consecutive points of an edge lie farther apart "
              "than max_distance (point attributes get zeros there). Not undoable: the undo stack "
              "forgets this graph's edits. BufferError while views of the graph exist.");
    graph.def("edge_table", &edgeTable,
              "One row per edge: source, target, num_points, length and every one-component edge "
              "attribute. A pandas DataFrame when pandas is installed, else a dict of arrays.");
    graph.def("vertex_table", &vertexTable,
              "One row per vertex: x, y, z, degree (a self-loop counts twice), node_type "
              "(isolated, ending, intermediate, branching) and every one-component vertex attribute. "
              "A pandas DataFrame when pandas is installed, else a dict of arrays.");
}
