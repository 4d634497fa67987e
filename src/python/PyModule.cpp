// The Python module `kxspatialgraph`: spatial graphs for analysis in Python,
// through the same libraries and the same session machinery korva uses.

#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PySession.h"

namespace py = pybind11;

PYBIND11_MODULE(kxspatialgraph, module) {
    module.doc() =
        "Spatial graphs (vertices, edges carrying polylines of points, attributes and label groups) "
        "from Python with NumPy arrays, read, built, edited, measured and rendered by korva's libraries.";
    PySession::init(module);
    PyGraphClass graph(module, "Graph",
                       "A spatial graph: vertices with coordinates, edges carrying polylines of points, "
                       "attributes on vertices, edges and points, label groups. Made by load() and "
                       "from_arrays().");
    bindFiles(module, graph);
    bindArrays(graph);
    bindBuilding(module);
    bindGraphCopies(graph);
    bindMeasuring(graph);
    bindAnalysisModules(graph);
    bindEditing(module, graph);
    bindRendering(graph);
}
