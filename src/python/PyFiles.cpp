// Reading and writing graphs through the host's format registry: every format
// korva reads and writes, chosen the way korva chooses it.

#include <string>
#include <vector>

#include <pybind11/stl.h>

#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PyIndices.h"
#include "python/PySession.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace py = pybind11;

namespace {

// The first graph among what a reader made; the rest leaves the pool.
KxSpatialGraph* keepFirstGraph(const std::vector<KxObject*>& created) {
    KxSpatialGraph* graph = nullptr;
    for (KxObject* object : created) {
        if (!graph && object->isOfType("KxSpatialGraph")) {
            graph = static_cast<KxSpatialGraph*>(object);
        } else {
            theObjectPool->remove(object);
        }
    }
    return graph;
}

std::unique_ptr<PyGraph> load(const std::string& path) {
    KxSpatialGraph* graph = nullptr;
    PySession::run([&] {
        std::vector<KxObject*> created;
        const int errorsBefore = theMsg->numErrorLines();
        bool loaded = theFileFormats->load(path.c_str(), created, *theObjectPool);
        graph = keepFirstGraph(created);
        if (loaded && !graph) {
            theMsg->printf("Error: %s holds no spatial graph.", path.c_str());
        }
        // Deliberate: a damaged file that still loads (its reader printed an
        // "Error: " line) fails here, as it does for `korva FILE`.
        if (graph && theMsg->numErrorLines() != errorsBefore) {
            theObjectPool->remove(graph);
            graph = nullptr;
        }
        return graph != nullptr;
    });
    return std::make_unique<PyGraph>(graph);
}

void save(PyGraph& self, const std::string& path, const py::object& formatName) {
    KxSpatialGraph* graph = &self.graph();
    // Read while the GIL is held: run() releases it.
    const bool byPath = formatName.is_none();
    const std::string name = byPath ? std::string() : castArgument<std::string>(formatName, "a format name");
    PySession::run([&] {
        const KxFileFormat* format = nullptr;
        if (byPath) {
            format = theFileFormats->findWriter(path.c_str(), graph);
            if (!format) {
                theMsg->printf("Error: No format writes %s to files named like %s.", graph->getTypeName(),
                               path.c_str());
                return false;
            }
        } else {
            format = theFileFormats->find(name.c_str());
            if (!format) {
                theMsg->printf("Error: Unknown file format \"%s\".", name.c_str());
                return false;
            }
        }
        return theFileFormats->save(*format, graph, path.c_str());
    });
}

py::list formats() {
    py::list names;
    PySession::locked([&] {
        for (int i = 0; i < theFileFormats->size(); ++i) {
            const KxFileFormat& format = theFileFormats->get(i);
            names.append(py::make_tuple(format.name, format.extensions, static_cast<bool>(format.read),
                                        static_cast<bool>(format.write)));
        }
    });
    return names;
}

}  // namespace

void bindFiles(py::module_& module, PyGraphClass& graph) {
    module.def("load", &load, py::arg("path"),
               "Reads a file through korva's format registry (KorvaMesh, SWC, HOC, ... by content or "
               "extension) and returns its spatial graph. Raises Error with the reader's \"Error: ...\" "
               "lines when the file cannot be read, is damaged or holds no graph.");
    module.def("formats", &formats,
               "The file formats korva knows: (name, extensions, can read, can write) tuples.");
    graph.def("save", &save, py::arg("path"), py::arg("format") = py::none(),
              "Writes the graph. The format is a format's name or extension (see formats()); by "
              "default the one path's extension names. A failed save leaves an existing file as it "
              "was and raises Error.");
    graph.def_property_readonly(
        "label", [](const PyGraph& self) { return std::string(self.graph().getLabel()); },
        "The graph's name in the session (a loaded file's name).");
}
