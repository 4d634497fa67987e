#pragma once

#include <pybind11/pybind11.h>

class PyGraph;

// The parts of the module `kxspatialgraph`, one file each; PyModule.cpp calls
// them in this order.
using PyGraphClass = pybind11::class_<PyGraph>;

void bindFiles(pybind11::module_& module, PyGraphClass& graph);
void bindArrays(PyGraphClass& graph);
void bindBuilding(pybind11::module_& module);
void bindGraphCopies(PyGraphClass& graph);
void bindMeasuring(PyGraphClass& graph);
void bindAnalysisModules(PyGraphClass& graph);
void bindEditing(pybind11::module_& module, PyGraphClass& graph);
void bindRendering(PyGraphClass& graph);
