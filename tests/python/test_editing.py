"""Editing through the console's operations and undo stack."""
import gc

import numpy as np
import pytest

import kxspatialgraph
from test_building import build_y
from test_files_and_arrays import arrays_of, assert_same_arrays


@pytest.fixture(autouse=True)
def empty_undo_stack():
    """Graphs of earlier tests are gone, and the stack forgets their edits."""
    gc.collect()
    with pytest.raises(kxspatialgraph.Error, match="^Error: Nothing to undo.$"):
        kxspatialgraph.undo()


EDITS = [
    ("delete", (), dict(vertices=[2, 3], edges=[1, 2])),
    ("addVertex", ([1, 2, 3],), {}),
    ("connect", (), dict(vertices=[0, 2], polyline=[[0, 0, 0], [9, 9, 0], [20, 5, 0]])),
    ("move", (3, 1.5, 2, 3), {}),
    ("replace", (1, [[10, 0, 0], [15, 4, 0], [20, 5, 0]]), {}),
    ("pointToVertex", (), dict(points=[[2, 1]])),
    ("smooth", (), dict(edges=[0, 2], n=3)),
    ("splitEdge", (14, -2, 0, 2, 1), {}),
]


@pytest.mark.parametrize("operation, args, options", EDITS, ids=[e[0] for e in EDITS])
def test_undo_restores_and_redo_repeats(operation, args, options):
    y = build_y()
    before = arrays_of(y)
    y.edit(operation, *args, **options)
    after = arrays_of(y)
    assert kxspatialgraph.undo() == f"{operation} on graph"
    assert_same_arrays(arrays_of(y), before)
    assert kxspatialgraph.redo() == f"{operation} on graph"
    assert_same_arrays(arrays_of(y), after)


def test_an_edit_carried_out_on_a_damaged_graph_warns_and_undoes():
    y = build_y()
    y.edit("move", 3, 1.5, 2, 3)  # edge 2 still ends at the old place: the graph is damaged
    with pytest.warns(UserWarning, match="^Error: target vertex 3"):
        y.edit("delete", edges=[0])
    assert y.num_edges == 2
    with pytest.warns(UserWarning, match="^Error: target vertex 3"):
        assert kxspatialgraph.undo() == "delete on graph"
    assert y.num_edges == 3


def test_the_answer_is_the_highlighted_selection_and_passes_on():
    y = build_y()
    added = y.edit("addVertex", [30, 0, 0])
    np.testing.assert_array_equal(added["vertices"], [4])
    joined = y.edit("connect", vertices=[3, *added["vertices"]])
    assert y.num_edges == 4 and tuple(y.edges[3]) == (3, 4)
    y.edit("delete", **{**joined, "vertices": [], "edges": [3]})
    assert y.num_edges == 3


@pytest.mark.parametrize("options", [dict(vertices=[4]), dict(edges=[-1]), dict(all_points=[3]),
                                     dict(points=[[0, 3]]), dict(points=[[3, 0]])])
def test_elements_that_do_not_exist_are_index_errors(options):
    y = build_y()
    with pytest.raises(IndexError):
        y.edit("delete", **options)


def test_edits_and_undo_wait_for_views_to_go():
    y = build_y()
    y.edit("addVertex", [1, 2, 3])
    points = y.points
    with pytest.raises(BufferError):
        y.edit("addVertex", [4, 5, 6])
    with pytest.raises(BufferError):
        kxspatialgraph.undo()
    del points
    kxspatialgraph.undo()
    assert y.num_vertices == 4


def test_one_stack_for_the_session_that_forgets_deleted_graphs():
    first, second = build_y(), build_y()
    first.edit("addVertex", [1, 2, 3])
    second.edit("addVertex", [1, 2, 3])
    kxspatialgraph.undo()
    assert (first.num_vertices, second.num_vertices) == (5, 4)
    del first
    gc.collect()
    with pytest.raises(kxspatialgraph.Error, match="Nothing to undo"):
        kxspatialgraph.undo()
