#pragma once

#include <pybind11/pybind11.h>

// A pandas DataFrame of the columns when pandas is installed, else the dict itself.
pybind11::object table(const pybind11::dict& columns);
