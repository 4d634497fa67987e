// Editing from Python: each edit is the graph's console command `edit`, run
// in the module's session, so it is checked, carried out and put on the
// session's undo stack exactly as in korva; undo() and redo() are the
// console's. The bindings only turn arguments into the command's words and
// its answer (the selection highlighted afterwards) into index arrays.

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <tcl.h>

#include <pybind11/numpy.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/core/KxUndoCommands.h"
#include "korva/core/KxUndoStack.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PyIndices.h"
#include "python/PySession.h"

namespace py = pybind11;

namespace {

std::string number(double value) {
    char text[32];
    auto end = std::to_chars(text, text + sizeof(text), value).ptr;
    return std::string(text, end);
}

std::string number(int64_t value) {
    return std::to_string(value);
}

// The numbers of value, flattened, as a Tcl list.
std::string numberList(const py::handle& value) {
    auto numbers = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(value);
    if (!numbers) {
        throw py::type_error("expected numbers");
    }
    std::string list;
    for (py::ssize_t i = 0; i < numbers.size(); ++i) {
        list += (i ? " " : "") + number(numbers.data()[i]);
    }
    return list;
}

// A positional argument: a number is one word, a 1-D sequence (a position)
// one word per number, a 2-D array (a polyline) one list word.
void addWords(const py::handle& value, std::vector<std::string>& words) {
    if (py::isinstance<py::str>(value)) {
        words.push_back(value.cast<std::string>());
        return;
    }
    py::array a = py::array::ensure(value);
    if (!a) {
        throw py::type_error("edit arguments are numbers, positions or N x 3 point arrays");
    }
    if (a.ndim() == 0 && a.dtype().kind() != 'f') {
        words.push_back(number(castArgument<int64_t>(value, "a number")));
    } else if (a.ndim() == 0) {
        words.push_back(number(castArgument<double>(value, "a number")));
    } else if (a.ndim() == 1) {
        for (auto item : a) {
            addWords(item, words);
        }
    } else {
        words.push_back(numberList(a));
    }
}

// Index arrays of the selection, checked against the graph: an index that
// does not exist is an IndexError before anything runs.
std::string indexList(const py::handle& value, int count, const char* what) {
    std::string list;
    for (int index : checkedIndices(value, count, what)) {
        list += (list.empty() ? "" : " ") + number(int64_t{index});
    }
    return list;
}

std::string pointList(const KxSpatialGraph& g, const py::handle& value) {
    auto pairs = py::array_t<int64_t, py::array::c_style | py::array::forcecast>::ensure(value);
    if (!pairs || pairs.size() % 2 != 0) {
        throw py::type_error("points takes K x 2 (edge, point) pairs");
    }
    std::string list;
    for (py::ssize_t i = 0; i + 1 < pairs.size(); i += 2) {
        const int64_t e = pairs.data()[i], p = pairs.data()[i + 1];
        if (e < 0 || e >= g.getNumEdges() || p < 0 || p >= g.getNumEdgePoints(static_cast<int>(e))) {
            throw py::index_error("edge point (" + std::to_string(e) + ", " + std::to_string(p) +
                                  ") does not exist");
        }
        list += (i ? " {" : "{") + number(e) + " " + number(p) + "}";
    }
    return list;
}

void addOption(std::vector<std::string>& words, const char* option, std::string value) {
    words.emplace_back(option);
    words.push_back(std::move(value));
}

std::vector<std::string> editWords(const PyGraph& self, const std::string& operation, const py::args& args,
                                   const py::kwargs& options) {
    const KxSpatialGraph& g = self.graph();
    std::vector<std::string> words{g.getLabel(), "edit", operation};
    for (auto arg : args) {
        addWords(arg, words);
    }
    for (auto item : options) {
        const std::string key = py::str(item.first);
        const py::handle value = item.second;
        if (value.is_none()) {
            continue;
        }
        if (key == "vertices") {
            addOption(words, "-vertices", indexList(value, g.getNumVertices(), "vertex"));
        } else if (key == "edges" || key == "all_points") {
            addOption(words, key == "edges" ? "-edges" : "-allPoints",
                      indexList(value, g.getNumEdges(), "edge"));
        } else if (key == "points") {
            addOption(words, "-points", pointList(g, value));
        } else if (key == "polyline" || key == "radii" || key == "start" || key == "direction") {
            addOption(words, ("-" + key).c_str(), numberList(value));
        } else if (key == "n") {
            addOption(words, "-n", number(castArgument<int64_t>(value, "an integer n")));
        } else if (key == "remove_intermediate") {
            if (value.cast<bool>()) {
                words.emplace_back("-removeIntermediate");
            }
        } else {
            throw py::type_error("edit() got an unexpected keyword argument '" + key + "'");
        }
    }
    return words;
}

// Runs the words as one command; on failure prints its result as the error
// line unless the command printed one.
bool evaluate(const std::vector<std::string>& words, std::string& result) {
    Tcl_Interp* interp = PySession::tcl().interp();
    std::vector<Tcl_Obj*> objv;
    for (const std::string& word : words) {
        objv.push_back(Tcl_NewStringObj(word.c_str(), static_cast<int>(word.size())));
        Tcl_IncrRefCount(objv.back());
    }
    const int errorsBefore = theMsg->numErrorLines();
    const int code = Tcl_EvalObjv(interp, static_cast<int>(objv.size()), objv.data(), TCL_EVAL_GLOBAL);
    for (Tcl_Obj* obj : objv) {
        Tcl_DecrRefCount(obj);
    }
    result = Tcl_GetStringResult(interp);
    if (code != TCL_OK && theMsg->numErrorLines() == errorsBefore) {
        theMsg->printf("%s%s", result.compare(0, 7, "Error: ") == 0 ? "" : "Error: ", result.c_str());
    }
    return code == TCL_OK;
}

// The answer "-vertices {..} -edges {..} -points {{e p} ..} -allPoints {..}"
// as lists of numbers per option.
struct SelectionAnswer {
    std::vector<int32_t> lists[4];
};
const char* const kAnswerKeys[] = {"vertices", "edges", "points", "all_points"};

bool parseAnswer(const std::string& text, SelectionAnswer& answer) {
    Tcl_Interp* interp = PySession::tcl().interp();
    Tcl_Obj* list = Tcl_NewStringObj(text.c_str(), static_cast<int>(text.size()));
    Tcl_IncrRefCount(list);
    Tcl_Obj** items = nullptr;
    int count = 0;
    bool ok = Tcl_ListObjGetElements(interp, list, &count, &items) == TCL_OK && count == 8;
    for (int k = 0; ok && k < 4; ++k) {
        Tcl_Obj** values = nullptr;
        int numValues = 0;
        ok = Tcl_ListObjGetElements(interp, items[2 * k + 1], &numValues, &values) == TCL_OK;
        for (int i = 0; ok && i < numValues; ++i) {
            Tcl_Obj** pair = nullptr;
            int numInPair = 0;
            ok = Tcl_ListObjGetElements(interp, values[i], &numInPair, &pair) == TCL_OK;
            for (int j = 0; ok && j < numInPair; ++j) {
                int index = 0;
                ok = Tcl_GetIntFromObj(interp, pair[j], &index) == TCL_OK;
                answer.lists[k].push_back(index);
            }
        }
    }
    Tcl_DecrRefCount(list);
    return ok;
}

py::dict edit(PyGraph& self, const std::string& operation, const py::args& args, const py::kwargs& options) {
    PyGraph::Change change(self, "edit");
    std::vector<std::string> words;
    PySession::locked([&] { words = editWords(self, operation, args, options); });
    SelectionAnswer answer;
    PySession::runCommand([&] {
        std::string result;
        if (!evaluate(words, result)) {
            return false;
        }
        if (!parseAnswer(result, answer)) {
            theMsg->printf("Error: Unexpected answer of the edit: %s", result.c_str());
            return false;
        }
        return true;
    });
    py::dict selection;
    for (int k = 0; k < 4; ++k) {
        py::array_t<int32_t> values(static_cast<py::ssize_t>(answer.lists[k].size()), answer.lists[k].data());
        selection[kAnswerKeys[k]] = k == 2 ? values.reshape({values.size() / 2, py::ssize_t(2)}) : values;
    }
    return selection;
}

// The console's undo or redo. The graph it would change must have no views.
std::string undoOrRedo(bool undo) {
    KxUndoStack* stack = findUndoStack(PySession::tcl().interp());
    const KxUndoableCommand* next = undo ? stack->nextUndo() : stack->nextRedo();
    PyGraph* graph = next ? PyGraph::find(next->target()) : nullptr;
    std::optional<PyGraph::Change> change;
    if (graph) {
        change.emplace(*graph, undo ? "undo" : "redo");
    }
    std::string description;
    PySession::runCommand([&] { return evaluate({undo ? "undo" : "redo"}, description); });
    return description;
}

}  // namespace

void bindEditing(py::module_& module, PyGraphClass& graph) {
    graph.def("edit", &edit, py::arg("operation"),
              "Runs one editing operation of the graph's console command `edit` (see "
              "docs/spatialgraph-commands.md) and puts it on the session's undo stack. Positional "
              "arguments are the command's words: numbers, positions (x, y, z) and polylines (N x 3 "
              "arrays). The selection it acts on: vertices=, edges=, all_points= (index arrays) and "
              "points= (K x 2 edge, point pairs); options: polyline=, radii=, start=, n=, direction=, "
              "remove_intermediate=. Answers the selection highlighted afterwards as a dict of the "
              "same keys, which can be passed on: graph.edit(\"delete\", **selection). Bad indices "
              "raise IndexError, refused edits Error; BufferError while views of the graph exist. An edit "
              "that was carried out but printed \"Error: ...\" lines (the consistency report of a "
              "damaged graph) gives them as warnings. "
              "Example: graph.edit(\"delete\", vertices=[3, 4], edges=[2, 3]).");
    module.def(
        "undo", [] { return undoOrRedo(true); },
        "Takes back the newest edit of the session (of any graph), answering its description "
        "(\"delete on tree\"). Error when there is nothing to undo.");
    module.def(
        "redo", [] { return undoOrRedo(false); }, "Repeats the newest undone edit; see undo().");
}
