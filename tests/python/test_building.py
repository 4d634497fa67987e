"""Graphs built from arrays in one call."""
import numpy as np
import pytest

import kxspatialgraph
from test_files_and_arrays import arrays_of, assert_same_arrays

# A Y: vertex 1 branches to 2 and 3; edge 0 has one inner point, edge 2 two.
VERTICES = np.array([[0, 0, 0], [10, 0, 0], [20, 5, 0], [20, -5, 0]], np.float32)
EDGES = np.array([[0, 1], [1, 2], [1, 3]], np.int32)
POINTS = np.array([[0, 0, 0], [5, 1, 0], [10, 0, 0], [10, 0, 0], [20, 5, 0],
                   [10, 0, 0], [14, -2, 0], [17, -4, 0], [20, -5, 0]], np.float32)
OFFSETS = np.array([0, 3, 5, 9], np.int32)
THICKNESS = np.linspace(1, 2, 9, dtype=np.float32)
REGION = np.array([1, 1, 1, 2, 2, 1, 1, 1, 2], np.int32)
GROUPS = {"Region": {"name": "Region", "id": 0, "color": (0.0, 0.0, 0.0), "children": [
    {"name": "A", "id": 1, "color": (1.0, 0.0, 0.0), "children": []},
    {"name": "B", "id": 2, "color": (0.0, 1.0, 0.0), "children": []}]}}


def build_y(**changes):
    arguments = dict(vertices=VERTICES, edges=EDGES, points=POINTS, offsets=OFFSETS,
                     vertex_attributes={"size": np.arange(4) * 10},
                     point_attributes={"thickness": THICKNESS, "Region": REGION}, label_groups=GROUPS)
    arguments.update(changes)
    return kxspatialgraph.from_arrays(**arguments)


def test_arrays_graph_file_graph_arrays(tmp_path):
    built = build_y()
    built.save(str(tmp_path / "y.kxm"))
    again = arrays_of(kxspatialgraph.load(str(tmp_path / "y.kxm")))
    for name, given in [("vertices", VERTICES), ("edges", EDGES), ("points", POINTS), ("offsets", OFFSETS),
                        ("point:thickness", THICKNESS), ("point:Region", REGION),
                        ("vertex:size", np.arange(4) * 10)]:
        np.testing.assert_array_equal(again[name], given, err_msg=name)
    assert kxspatialgraph.load(str(tmp_path / "y.kxm")).label_groups == GROUPS


def test_straight_edges_run_between_their_vertices():
    graph = kxspatialgraph.from_arrays(VERTICES.astype(np.float64), EDGES.tolist())
    np.testing.assert_array_equal(graph.offsets, [0, 2, 4, 6])
    np.testing.assert_array_equal(graph.points.reshape(3, 2, 3), VERTICES[EDGES])
    with pytest.raises(IndexError):  # a straight edge to a missing vertex
        kxspatialgraph.from_arrays(VERTICES, [[0, 4]])


@pytest.mark.parametrize("changes, error, message", [
    (dict(edges=[[0, 1], [1, 2], [1, 9]]), kxspatialgraph.Error, "edge 2 refers to vertex 9"),
    (dict(points=POINTS[::-1].copy()), kxspatialgraph.Error, "do not equal point coords"),
    (dict(offsets=[0, 3, 2, 9]), ValueError, "must not decrease"),
    (dict(offsets=[0, 3, 9]), ValueError, "one entry per edge"),
    (dict(vertices=VERTICES[:, :2]), ValueError, "N x 3"),
    (dict(point_attributes={"Region": REGION[:4]}), ValueError, "needs 9 rows"),
    (dict(point_attributes={"thickness": THICKNESS}), ValueError, "label group \"Region\""),
    (dict(vertex_attributes={"size": np.full(4, 2**40)}), ValueError, "beyond 32 bits"),
    (dict(vertex_attributes={"size": np.full(4, 2**63, np.uint64)}), ValueError, "beyond 32 bits"),
    (dict(vertex_attributes={"name": np.array(list("abcd"))}), TypeError, "integers or floats"),
])
def test_bad_arrays_are_refused(changes, error, message):
    with pytest.raises(error, match=message):
        build_y(**changes)


def test_a_copy_holds_everything_and_is_independent():
    y = build_y()
    copy = y.copy()
    assert_same_arrays(arrays_of(copy), arrays_of(y))
    assert copy.label_groups == y.label_groups and copy.label != y.label
    copy.edit("delete", edges=[0])
    assert (copy.num_edges, y.num_edges) == (2, 3)
    kxspatialgraph.undo()
