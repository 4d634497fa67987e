"""Reading and writing through korva's format registry, and the graph as arrays."""
import gc

import numpy as np
import pytest

import kxspatialgraph


def arrays_of(graph):
    """Everything a graph holds, as plain copies."""
    return {
        "vertices": np.array(graph.vertices),
        "edges": graph.edges,
        "points": np.array(graph.points),
        "offsets": np.array(graph.offsets),
        **{f"vertex:{n}": np.array(a) for n, a in graph.vertex_attributes.items()},
        **{f"edge:{n}": np.array(a) for n, a in graph.edge_attributes.items()},
        **{f"point:{n}": np.array(a) for n, a in graph.point_attributes.items()},
    }


def assert_same_arrays(a, b):
    assert a.keys() == b.keys()
    for name in a:
        np.testing.assert_array_equal(a[name], b[name], err_msg=name)


@pytest.mark.parametrize("suffix, fmt", [(".kxm", None), (".kxm", "KorvaMeshCompressed"), (".dat", "KorvaMeshASCII")])
def test_file_round_trip_keeps_every_array(neuron, tmp_path, suffix, fmt):
    path = tmp_path / ("copy" + suffix)
    neuron.save(str(path), format=fmt)
    again = kxspatialgraph.load(str(path))
    assert_same_arrays(arrays_of(neuron), arrays_of(again))
    assert again.label_groups == neuron.label_groups


def test_arrays_and_label_groups_follow_the_swc_records(neuron):
    assert neuron.vertices.shape == (neuron.num_vertices, 3) and neuron.vertices.dtype == np.float32
    assert neuron.edges.shape == (neuron.num_edges, 2) and neuron.edges.dtype == np.int32
    assert neuron.offsets[0] == 0 and neuron.offsets[-1] == len(neuron.points)
    first = neuron.edge_points(0)
    # Record 2 (0, 0, 7.501) is the source of the first edge, whose line ends at record 1.
    np.testing.assert_allclose(first[0], [0, 0, 7.501], rtol=1e-6)
    np.testing.assert_array_equal(first[-1], neuron.vertices[neuron.edges[0, 1]])
    np.testing.assert_array_equal(neuron.edge_points(-1), neuron.points[neuron.offsets[-2]:])
    assert neuron.point_attributes["thickness"].dtype == np.float32
    assert neuron.point_attributes["Topology"].shape == (neuron.num_points,)
    # Label groups are nested dicts.
    topology = neuron.label_groups["Topology"]
    assert topology["name"] == "Topology" and topology["id"] == 0
    assert topology["color"] == pytest.approx((0.8, 0.8, 0.8))
    ids = {child["name"]: child["id"] for child in topology["children"]}
    assert ids["Label3"] == 3  # each type's label has the type as id
    assert set(np.unique(neuron.point_attributes["Topology"])) <= set(ids.values())


def test_views_share_the_graphs_storage_and_keep_it_alive(neuron):
    vertices = neuron.vertices
    expected = np.array(vertices)
    assert not vertices.flags.writeable and not vertices.flags.owndata
    with pytest.raises(ValueError):
        vertices[0, 0] = 1.0
    assert neuron.vertices.__array_interface__["data"][0] == vertices.__array_interface__["data"][0]
    tail = vertices[1:]
    del neuron, vertices
    gc.collect()
    np.testing.assert_array_equal(tail, expected[1:])


def test_edges_are_a_copy(neuron):
    edges = neuron.edges
    assert edges.flags.owndata and edges.flags.writeable
    edges[0] = (-5, -5)
    assert tuple(neuron.edges[0]) != (-5, -5)


@pytest.mark.parametrize("index", [173, -174, 10**6])
def test_bad_edge_index_raises_index_error(neuron, index):
    with pytest.raises(IndexError):
        neuron.edge_points(index)


@pytest.mark.parametrize("call, message", [
    (lambda g, d: kxspatialgraph.load(str(d / "missing.swc")), "Error: Cannot read file"),
    (lambda g, d: g.save(str(d / "x.kxm"), format="NoSuchFormat"), 'Error: Unknown file format "NoSuchFormat".'),
    (lambda g, d: g.save(str(d / "x.unknown")), "Error: No format writes KxSpatialGraph"),
])
def test_failures_raise_error_with_the_console_line(neuron, tmp_path, call, message):
    with pytest.raises(kxspatialgraph.Error, match="^" + message.replace("(", r"\(").replace(".", r"\.")):
        call(neuron, tmp_path)


@pytest.mark.parametrize("call, expected", [
    (lambda g: g.save("x.kxm", format=5), "a format name, not 5"),
    (lambda g: g.edit("addVertex", None, 0, 0), "a number, not None"),
    (lambda g: g.edit("smooth", edges=[0], n=2.5), "an integer n, not 2.5"),
    (lambda g: g.distance_to_point(edge=0.5, point=0), "an edge index, not 0.5"),
])
def test_arguments_of_a_wrong_type_are_type_errors_that_say_so(neuron, call, expected):
    with pytest.raises(TypeError, match="^expected " + expected):
        call(neuron)


def test_damaged_file_raises_and_failed_save_keeps_the_old_file(neuron, tmp_path):
    damaged = tmp_path / "damaged.swc"
    damaged.write_text("1 1 0 0 0 1 -1\n2 1 0 0 x 1 1\n")
    with pytest.raises(kxspatialgraph.Error, match="^Error: "):
        kxspatialgraph.load(str(damaged))
    target = tmp_path / "keep.swc"
    target.write_text("old contents\n")
    target.chmod(0o444)
    with pytest.raises(kxspatialgraph.Error):
        neuron.save(str(target))
    assert target.read_text() == "old contents\n"


def test_threads_share_the_library_one_call_at_a_time(neuron_path, neuron):
    from concurrent.futures import ThreadPoolExecutor

    def load_and_measure(_):
        graph = kxspatialgraph.load(str(neuron_path))
        return graph.total_length(), float(np.array(graph.points).sum())

    with ThreadPoolExecutor(4) as pool:
        results = set(pool.map(load_and_measure, range(16)))
    assert results == {(neuron.total_length(), float(np.array(neuron.points).sum()))}
