#pragma once

#include <string>
#include <vector>

#include <pybind11/pybind11.h>

// An argument converted to T; a value of the wrong type or range is a
// TypeError that says what was expected and what came.
template <typename T>
T castArgument(const pybind11::handle& value, const char* expected) {
    try {
        return value.cast<T>();
    } catch (const pybind11::cast_error&) {
        throw pybind11::type_error(std::string("expected ") + expected + ", not " +
                                   pybind11::repr(value).cast<std::string>());
    }
}

// Index arguments from Python: a 1-D array-like of integers, each in
// 0 .. count - 1, else IndexError (TypeError for something else); `what`
// names the elements in the message ("vertex").
std::vector<int> checkedIndices(const pybind11::handle& value, int count, const char* what);
// The same in two steps, so that the range is checked where the graph cannot
// change: the integers of the argument (with the GIL), then their range
// (without it, under the library lock).
std::vector<long long> indexValues(const pybind11::handle& value, const char* what);
std::vector<int> checkedIndices(const std::vector<long long>& values, int count, const char* what);
// One index, counted from the end when negative, as Python does.
int checkedIndex(long long index, int count, const char* what);
