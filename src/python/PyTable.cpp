#include "python/PyTable.h"

namespace py = pybind11;

py::object table(const py::dict& columns) {
    try {
        return py::module_::import("pandas").attr("DataFrame")(columns);
    } catch (py::error_already_set& e) {
        if (!e.matches(PyExc_ImportError)) {
            throw;
        }
        return columns;
    }
}
