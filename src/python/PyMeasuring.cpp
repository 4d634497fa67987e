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

template <typename T>
py::array_t<T> toArray(const std::vector<T>& values) {
    return py::array_t<T>(static_cast<py::ssize_t>(values.size()), values.data());
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
    return toArray(lengths);
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

// Results are sized inside the same locked call that fills them: until then
// another thread may be editing the graph.
py::dict components(const PyGraph& self) {
    const KxSpatialGraph& g = self.graph();
    std::vector<int32_t> vertex;
    std::vector<int32_t> edge;
    int count = 0;
    PySession::run([&] {
        vertex.assign(static_cast<size_t>(g.getNumVertices()), -1);
        edge.assign(static_cast<size_t>(g.getNumEdges()), -1);
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
    result["vertex"] = toArray(vertex);
    result["edge"] = toArray(edge);
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

// Tables are made in one locked pass, so that all columns describe the same
// graph even when another thread waits to edit it.
py::object edgeTable(const PyGraph& self) {
    const KxSpatialGraph& g = self.graph();
    py::dict columns;
    PySession::locked([&] {
        const auto n = static_cast<size_t>(g.getNumEdges());
        std::vector<int32_t> ends[2] = {std::vector<int32_t>(n), std::vector<int32_t>(n)};
        std::vector<int32_t> counts(n);
        for (size_t e = 0; e < n; ++e) {
            ends[0][e] = g.getEdgeSource(static_cast<int>(e));
            ends[1][e] = g.getEdgeTarget(static_cast<int>(e));
            counts[e] = g.getNumEdgePoints(static_cast<int>(e));
        }
        columns["source"] = toArray(ends[0]);
        columns["target"] = toArray(ends[1]);
        columns["num_points"] = toArray(counts);
        columns["length"] = toArray(edgeLengths(g));
        addAttributeColumns(g, KxSpatialGraph::EDGE, columns);
    });
    return table(columns);
}

const char* const kNodeTypeNames[] = {"isolated", "ending", "intermediate", "branching"};

py::object vertexTable(const PyGraph& self) {
    const KxSpatialGraph& g = self.graph();
    py::dict columns;
    PySession::locked([&] {
        const auto n = static_cast<size_t>(g.getNumVertices());
        std::vector<float> coords[3] = {std::vector<float>(n), std::vector<float>(n), std::vector<float>(n)};
        std::vector<int32_t> degree(n);
        py::list kinds;
        for (size_t v = 0; v < n; ++v) {
            const Vec3f& at = g.getVertexCoords(static_cast<int>(v));
            coords[0][v] = at.x;
            coords[1][v] = at.y;
            coords[2][v] = at.z;
            degree[v] = g.getIncidentEdges(static_cast<int>(v)).size();
            kinds.append(kNodeTypeNames[SpatialGraphFunctions::getNodeType(&g, static_cast<int>(v))]);
        }
        columns["x"] = toArray(coords[0]);
        columns["y"] = toArray(coords[1]);
        columns["z"] = toArray(coords[2]);
        columns["degree"] = toArray(degree);
        columns["node_type"] = kinds;
        addAttributeColumns(g, KxSpatialGraph::VERTEX, columns);
    });
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
