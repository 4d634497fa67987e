#include "python/PyGraph.h"

#include <string>
#include <unordered_map>

#include "python/PySession.h"
#include "korva/core/KxObjectPool.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace py = pybind11;

namespace {

// Touched only with the GIL held: PyGraphs are made and deleted by Python.
std::unordered_map<const KxData*, PyGraph*> theGraphs;

// The base object of a view: holds the Python graph and counts the view.
struct ViewKeeper {
    py::object owner;
    int* numViews;
};

}  // namespace

PyGraph::PyGraph(KxSpatialGraph* graph) : graph_(graph) {
    theGraphs[graph] = this;
}

PyGraph::~PyGraph() {
    theGraphs.erase(graph_);
    // During Python's shutdown the process is about to end; the pool goes with it.
    if (!_Py_IsFinalizing()) {
        PySession::locked([this] { theObjectPool->remove(graph_); });
    }
}

py::array PyGraph::view(py::handle self, const py::dtype& dtype, const std::vector<py::ssize_t>& shape,
                        const void* data) {
    PyGraph& graph = self.cast<PyGraph&>();
    if (graph.numChanges_ > 0) {
        throw py::buffer_error("The graph is being changed in another thread; no view of it now.");
    }
    auto* keeper = new ViewKeeper{py::reinterpret_borrow<py::object>(self), &graph.numViews_};
    ++graph.numViews_;
    py::capsule base(keeper, [](void* p) {
        auto* k = static_cast<ViewKeeper*>(p);
        --*k->numViews;
        delete k;
    });
    py::array array(dtype, shape, data, base);
    array.attr("flags").attr("writeable") = false;
    return array;
}

PyGraph::Change::Change(PyGraph& graph, const char* what) : graph_(graph) {
    if (graph.numViews_ > 0) {
        throw py::buffer_error(std::string("Cannot ") + what + ": " + std::to_string(graph.numViews_) +
                               " NumPy view(s) of this graph still exist; delete them or take copies "
                               "(numpy.array(view)) first.");
    }
    ++graph.numChanges_;
}

PyGraph* PyGraph::find(const KxData* data) {
    auto it = theGraphs.find(data);
    return it == theGraphs.end() ? nullptr : it->second;
}
