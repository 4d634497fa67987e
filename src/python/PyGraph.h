#pragma once

#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

class KxData;
class KxSpatialGraph;

// A spatial graph held by Python. The graph lives in the session's object
// pool, where the console's edit commands and undo stack reach it by its
// label, until the Python object goes. NumPy views of its storage keep the
// Python object alive; while one exists, changes of the graph are refused
// (BufferError, as for a resized bytearray), since a change may move the
// storage the view reads.
class PyGraph {
public:
    // Takes a graph that is in the pool.
    explicit PyGraph(KxSpatialGraph* graph);
    ~PyGraph();
    PyGraph(const PyGraph&) = delete;
    PyGraph& operator=(const PyGraph&) = delete;

    KxSpatialGraph& graph() const { return *graph_; }

    // A read-only array over count rows of the given shape's trailing
    // dimensions at data, which belongs to self's graph: no copy. The array
    // keeps self alive and counts as a view until it and every array made
    // from it are gone.
    static pybind11::array view(pybind11::handle self, const pybind11::dtype& dtype,
                                const std::vector<pybind11::ssize_t>& shape, const void* data);
    // Taken with the GIL held around a change of the graph, before the GIL is
    // released for it: raises BufferError while views exist (`what` names the
    // refused change), and while it lives view() refuses, so that no thread
    // takes a view of storage the change may move.
    class Change {
    public:
        Change(PyGraph& graph, const char* what);
        ~Change() { --graph_.numChanges_; }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

    private:
        PyGraph& graph_;
    };

    // The graph Python holds for data, or null.
    static PyGraph* find(const KxData* data);

private:
    KxSpatialGraph* graph_;
    int numViews_ = 0;
    int numChanges_ = 0;
};
