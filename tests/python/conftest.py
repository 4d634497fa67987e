"""Shared fixtures of the Python module's tests (run by ctest as python_tests)."""
import pathlib

import pytest

import kxspatialgraph

ROOT = pathlib.Path(__file__).resolve().parents[2]


@pytest.fixture
def neuron_path():
    return ROOT / "examples" / "data" / "CA1.swc"


@pytest.fixture
def neuron(neuron_path):
    return kxspatialgraph.load(str(neuron_path))
