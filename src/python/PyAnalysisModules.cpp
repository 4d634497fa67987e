// The analysis modules from Python: segment statistics as tables and the
// distance along the graph to a reference point. The numbers come from the
// modules' own static computations, so Python and the console agree.

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include "korva/base/Vec3f.h"
#include "korva/data/KxSpreadSheet.h"
#include "kxspatialgraph/analysis/KxComputeDistanceToPoint.h"
#include "kxspatialgraph/analysis/KxSpatialGraphStats.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PyIndices.h"
#include "python/PySession.h"
#include "python/PyTable.h"

namespace py = pybind11;

namespace {

py::object column(const KxSpreadSheet::Table& t, int c) {
    const auto rows = static_cast<size_t>(t.getNumRows());
    switch (t.getColumnType(c)) {
        case KxSpreadSheet::INT: {
            py::array_t<int32_t> values(static_cast<py::ssize_t>(rows));
            for (size_t r = 0; r < rows; ++r) {
                values.mutable_data()[r] = t.getInt(c, static_cast<int>(r));
            }
            return std::move(values);
        }
        case KxSpreadSheet::FLOAT: {
            py::array_t<float> values(static_cast<py::ssize_t>(rows));
            for (size_t r = 0; r < rows; ++r) {
                values.mutable_data()[r] = t.getFloat(c, static_cast<int>(r));
            }
            return std::move(values);
        }
        case KxSpreadSheet::STRING:
            break;
    }
    py::list values;
    for (size_t r = 0; r < rows; ++r) {
        values.append(t.getString(c, static_cast<int>(r)));
    }
    return std::move(values);
}

// The graph is read in one locked call: between two calls another thread
// may edit it.
py::dict statistics(const PyGraph& self, const py::object& edges) {
    const KxSpatialGraph& g = self.graph();
    const std::vector<long long> wanted =
        edges.is_none() ? std::vector<long long>() : indexValues(edges, "edge");
    KxSpreadSheet sheet;
    PySession::run([&] {
        SpatialGraphSelection selection;
        selection.resize(g.getNumVertices(), g.getNumEdges());
        for (int e : checkedIndices(wanted, g.getNumEdges(), "edge")) {
            selection.selectEdge(e);
        }
        KxSpatialGraphStats::computeTables(&g, &selection, sheet);
        return true;
    });
    py::dict tables;
    for (int i = 0; i < sheet.getNumTables(); ++i) {
        const KxSpreadSheet::Table& t = *sheet.getTable(i);
        py::dict columns;
        for (int c = 0; c < t.getNumColumns(); ++c) {
            columns[t.getColumnName(c)] = column(t, c);
        }
        tables[t.getName()] = table(columns);
    }
    return tables;
}

py::array_t<float> distanceToPoint(const PyGraph& self, const py::object& edge, const py::object& point,
                                   const py::object& position) {
    const KxSpatialGraph& g = self.graph();
    const bool byPosition = !position.is_none();
    Vec3f at;
    long long edgeArg = 0;
    long long pointArg = 0;
    if (byPosition) {
        if (!edge.is_none() || !point.is_none()) {
            throw py::type_error("give either position or edge and point, not both");
        }
        const auto p = castArgument<std::vector<float>>(position, "a position (x, y, z)");
        if (p.size() != 3) {
            throw py::value_error("position must have 3 coordinates");
        }
        // No edge point is nearest to a NaN: the search would keep its first point.
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) {
            throw py::value_error("position must have finite coordinates");
        }
        at = Vec3f(p[0], p[1], p[2]);
    } else {
        if (edge.is_none() || point.is_none()) {
            throw py::type_error("give position, or edge and point");
        }
        edgeArg = castArgument<long long>(edge, "an edge index");
        pointArg = castArgument<long long>(point, "a point index");
    }
    std::vector<float> values;
    PySession::run([&] {
        int refEdge = -1;
        int refPoint = -1;
        if (byPosition) {
            KxComputeDistanceToPoint::findClosestPoint(&g, at, refEdge, refPoint);
            if (refEdge < 0) {
                throw py::value_error("the graph has no edge points to measure from");
            }
        } else {
            refEdge = checkedIndex(edgeArg, g.getNumEdges(), "edge");
            refPoint = checkedIndex(pointArg, g.getNumEdgePoints(refEdge), "point");
        }
        values.assign(static_cast<size_t>(g.getTotalNumEdgePoints()), std::numeric_limits<float>::max());
        KxComputeDistanceToPoint::computeDistances(&g, refEdge, refPoint, values.data());
        return true;
    });
    return py::array_t<float>(static_cast<py::ssize_t>(values.size()), values.data());
}

}  // namespace

void bindAnalysisModules(PyGraphClass& graph) {
    graph.def("statistics", &statistics, py::arg("edges") = py::none(),
              "Segment statistics of the given edges (an index array; all edges when None or empty): "
              "a dict from table name to table, \"Segment Statistics\" (length, mean radius and "
              "truncated-cone volume from the point attribute \"thickness\") and one table per "
              "labelled edge attribute. Tables are pandas DataFrames when pandas is installed, else "
              "dicts of arrays.");
    graph.def("distance_to_point", &distanceToPoint, py::arg("edge") = py::none(),
              py::arg("point") = py::none(), py::arg("position") = py::none(),
              "Distance along the graph from edge point (edge, point), or from the edge point nearest "
              "to position (x, y, z), to every edge point, as a float32 array aligned with "
              "graph.points. Points of other components hold the largest float32.");
}
