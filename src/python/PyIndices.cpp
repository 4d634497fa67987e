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

std::vector<long long> indexValues(const py::handle& value, const char* what) {
    auto indices = py::array_t<int64_t, py::array::c_style | py::array::forcecast>::ensure(value);
    if (!indices || indices.ndim() > 1) {
        throw py::type_error(std::string(what) + " indices must be a 1-D array of integers");
    }
    return std::vector<long long>(indices.data(), indices.data() + indices.size());
}

std::vector<int> checkedIndices(const std::vector<long long>& values, int count, const char* what) {
    std::vector<int> result(values.size());
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i] < 0 || values[i] >= count) {
            outOfRange(values[i], count, what);
        }
        result[i] = static_cast<int>(values[i]);
    }
    return result;
}

std::vector<int> checkedIndices(const py::handle& value, int count, const char* what) {
    return checkedIndices(indexValues(value, what), count, what);
}

int checkedIndex(long long index, int count, const char* what) {
    if (index < -count || index >= count) {
        outOfRange(index, count, what);
    }
    return static_cast<int>(index < 0 ? index + count : index);
}
