#include "python/PyIndices.h"

#include <cstdint>
#include <string>

#include <pybind11/numpy.h>

namespace py = pybind11;

namespace {

[[noreturn]] void outOfRange(long long index, int count, const char* what) {
    throw py::index_error(std::string(what) + " " + std::to_string(index) + " out of range (" +
                          std::to_string(count) + ")");
}

}  // namespace

std::vector<int> checkedIndices(const py::handle& value, int count, const char* what) {
    auto indices = py::array_t<int64_t, py::array::c_style | py::array::forcecast>::ensure(value);
    if (!indices || indices.ndim() > 1) {
        throw py::type_error(std::string(what) + " indices must be a 1-D array of integers");
    }
    std::vector<int> result(static_cast<size_t>(indices.size()));
    for (py::ssize_t i = 0; i < indices.size(); ++i) {
        const int64_t index = indices.data()[i];
        if (index < 0 || index >= count) {
            outOfRange(index, count, what);
        }
        result[static_cast<size_t>(i)] = static_cast<int>(index);
    }
    return result;
}

int checkedIndex(long long index, int count, const char* what) {
    if (index < -count || index >= count) {
        outOfRange(index, count, what);
    }
    return static_cast<int>(index < 0 ? index + count : index);
}
