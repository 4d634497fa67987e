#pragma once

#include <pybind11/numpy.h>

#include "korva/base/PrimType.h"

// NumPy's dtype of an attribute's primitive type, and back. primTypeOf
// answers false for a dtype no attribute can hold (bool, complex, strings...).
pybind11::dtype dtypeOf(PrimType type);
bool primTypeOf(const pybind11::dtype& dtype, PrimType& type);
