#include "python/PyPrimTypes.h"

namespace py = pybind11;

namespace {

// Indexed by PrimType::Type.
const char* const kDtypeNames[PrimType::NUM_TYPES] = {"int8",   "uint8", "int16",  "uint16",  "int32",
                                                      "uint32", "int64", "uint64", "float32", "float64"};

}  // namespace

py::dtype dtypeOf(PrimType type) {
    return py::dtype(kDtypeNames[type.getType()]);
}

bool primTypeOf(const py::dtype& dtype, PrimType& type) {
    for (int t = 0; t < PrimType::NUM_TYPES; ++t) {
        if (dtype.equal(py::dtype(kDtypeNames[t]))) {
            type = PrimType(static_cast<PrimType::Type>(t));
            return true;
        }
    }
    return false;
}
