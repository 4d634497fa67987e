"""Measuring graphs whose answers are known by hand."""
import sys
import threading

import numpy as np
import pandas
import pytest

import kxspatialgraph
from test_building import build_y

# Two components: a triangle 0-1-2 (a loop) and a separate edge 3-4.
TRIANGLE_AND_EDGE = dict(
    vertices=np.array([[0, 0, 0], [3, 0, 0], [0, 4, 0], [10, 10, 10], [10, 10, 12]], np.float32),
    edges=np.array([[0, 1], [1, 2], [2, 0], [3, 4]]))


def test_lengths_and_box_of_the_y():
    y = build_y()
    expected = [np.hypot(5, 1) * 2, np.hypot(10, 5), np.hypot(4, 2) + np.hypot(3, 2) + np.hypot(3, 1)]
    np.testing.assert_allclose(y.edge_lengths(), expected, rtol=1e-6)
    assert y.total_length() == pytest.approx(sum(expected))
    np.testing.assert_array_equal(y.bounding_box(), [[0, -5, 0], [20, 5, 0]])


def test_components_trees_and_loops():
    graph = kxspatialgraph.from_arrays(**TRIANGLE_AND_EDGE)
    found = graph.components()
    assert found["count"] == 2
    np.testing.assert_array_equal(found["vertex"], [0, 0, 0, 1, 1])
    np.testing.assert_array_equal(found["edge"], [0, 0, 0, 1])
    trees = graph.trees()
    assert [list(t) for t in trees["trees"]] == [[0, 1, 2], [3]]
    np.testing.assert_array_equal(trees["tree"], [0, 0, 0, 1])
    loops = graph.loops()
    assert len(loops["loops"]) == 1 and set(loops["loops"][0]) <= {0, 1, 2}
    assert set(loops["loopy_lines"]) <= {0, 1, 2} and set(loops["generating_lines"]) <= {0, 1, 2}
    y_trees = build_y().trees()
    assert len(y_trees["trees"]) == 1 and build_y().loops()["loops"] == []
    np.testing.assert_array_equal(y_trees["rank"], [0, 1, 1])


def test_tables_are_data_frames_with_a_row_per_element():
    y = build_y()
    vertices, edges = y.vertex_table(), y.edge_table()
    assert isinstance(vertices, pandas.DataFrame)
    assert list(vertices["node_type"]) == ["ending", "branching", "ending", "ending"]
    assert list(vertices["degree"]) == [1, 3, 1, 1] and list(vertices["size"]) == [0, 10, 20, 30]
    assert list(edges["num_points"]) == [3, 2, 4] and list(edges["target"]) == [1, 2, 3]
    np.testing.assert_allclose(edges["length"], y.edge_lengths())


def test_tables_are_dicts_of_arrays_without_pandas(monkeypatch):
    monkeypatch.setitem(sys.modules, "pandas", None)
    table = build_y().edge_table()
    assert isinstance(table, dict)
    np.testing.assert_array_equal(table["source"], [0, 1, 1])


def test_resample_inserts_points_and_refuses_while_viewed():
    graph = kxspatialgraph.from_arrays(**TRIANGLE_AND_EDGE)
    points = graph.points
    with pytest.raises(BufferError):
        graph.resample(0.5)
    del points
    graph.resample(0.5)
    np.testing.assert_array_equal(np.diff(graph.offsets)[[0, 3]], [7, 5])  # lengths 3 and 2
    assert graph.total_length() == pytest.approx(3 + 5 + 4 + 2)
    with pytest.raises(kxspatialgraph.Error, match="^Error: "):
        graph.resample(-1)


def test_shortest_path_and_the_subgraph_along_it():
    y = build_y()
    path = y.shortest_path(0, 3)
    np.testing.assert_array_equal(path["vertices"], [0, 1, 3])
    np.testing.assert_array_equal(path["edges"], [0, 2])
    along = y.subgraph(**path)
    np.testing.assert_array_equal(along.vertices, y.vertices[[0, 1, 3]])
    np.testing.assert_array_equal(along.edges, [[0, 1], [1, 2]])
    np.testing.assert_array_equal(along.point_attributes["thickness"], y.point_attributes["thickness"][[0, 1, 2, 5, 6, 7, 8]])
    assert along.label_groups == y.label_groups
    unreachable = kxspatialgraph.from_arrays(**TRIANGLE_AND_EDGE).shortest_path(0, 4)
    assert len(unreachable["vertices"]) == 0 and len(unreachable["edges"]) == 0
    with pytest.raises(IndexError):
        y.shortest_path(0, 4)


def test_statistics_and_distance_along_two_straight_edges():
    # A 3-long edge with radii 1 -> 2 and, after a branch vertex, a 4-long one;
    # a separate component (edge 2) is never reached.
    graph = kxspatialgraph.from_arrays(
        vertices=np.array([[0, 0, 0], [3, 0, 0], [3, 4, 0], [9, 9, 9], [9, 9, 10]], np.float32),
        edges=np.array([[0, 1], [1, 2], [3, 4]]),
        points=np.array([[0, 0, 0], [3, 0, 0], [3, 0, 0], [3, 4, 0], [9, 9, 9], [9, 9, 10]], np.float32),
        offsets=np.array([0, 2, 4, 6]),
        point_attributes={"thickness": np.array([1, 2, 2, 2, 1, 1], np.float32)})
    segments = graph.statistics(edges=[0, 1])["Segment Statistics"]
    np.testing.assert_array_equal(segments["Segment ID"], [0, 1])
    np.testing.assert_allclose(segments["Length"], [3, 4])
    assert len(graph.statistics()["Segment Statistics"]["Length"]) == 3

    along = graph.distance_to_point(position=(1, 0.1, 0))
    np.testing.assert_allclose(along[:4], [0, 3, 3, 7])
    assert (along[4:] == np.finfo(np.float32).max).all()
    np.testing.assert_array_equal(graph.distance_to_point(edge=1, point=-1)[:4], [7, 4, 4, 0])
    with pytest.raises(IndexError):
        graph.distance_to_point(edge=3, point=0)
    with pytest.raises(TypeError):
        graph.distance_to_point(edge=0)
    with pytest.raises(ValueError, match="finite"):
        graph.distance_to_point(position=(np.nan, 0, 0))


def test_tables_and_distances_stay_whole_while_another_thread_edits():
    chain = np.arange(2000)
    graph = kxspatialgraph.from_arrays(np.c_[chain, chain * 0, chain * 0], np.c_[chain[:-1], chain[1:]])
    stop = threading.Event()

    def add_vertices():
        while not stop.is_set():
            graph.edit("addVertex", [1, 2, 3])

    editor = threading.Thread(target=add_vertices)
    editor.start()
    try:
        for _ in range(40):
            table = graph.vertex_table()
            assert len(table["x"]) == len(table["degree"]) == len(table["node_type"])
            assert graph.distance_to_point(edge=0, point=0)[0] == 0
    finally:
        stop.set()
        editor.join()
