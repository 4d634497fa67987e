"""Total cable length of a traced neuron per SWC structure type, and a
histogram of its branch lengths.

    PYTHONPATH=build/release/python /usr/bin/python3 examples/python/neuron_lengths.py [FILE.swc] [OUT.png]
"""
import pathlib
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

import kxspatialgraph  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
path = sys.argv[1] if len(sys.argv) > 1 else str(HERE.parent / "data" / "CA1.swc")
out = sys.argv[2] if len(sys.argv) > 2 else "branch_lengths.png"

neuron = kxspatialgraph.load(path)
points, offsets = neuron.points, neuron.offsets
topology = neuron.point_attributes["Topology"]

# Each piece of cable between two consecutive points of one edge belongs to
# the structure type of its far point (the SWC record it leads to).
pieces = np.linalg.norm(np.diff(points, axis=0), axis=1)
within_edge = np.ones(len(pieces), bool)
within_edge[offsets[1:-1] - 1] = False
ids = topology[1:][within_edge]
totals = np.bincount(ids, weights=pieces[within_edge])

names = {label["id"]: label["name"] for label in neuron.label_groups["Topology"]["children"]}
print(f"{neuron.label}: {neuron.num_edges} branches, {neuron.num_points} points")
for label_id in np.flatnonzero(totals):
    print(f"  {names.get(label_id, label_id):>8}: {totals[label_id]:10.1f}")
print(f"  {'total':>8}: {totals.sum():10.1f}  (graph: {neuron.total_length():.1f})")

lengths = neuron.edge_lengths()
figure, axes = plt.subplots(figsize=(6, 4))
axes.hist(lengths, bins=30, color="tab:blue")
axes.set_xlabel("branch length")
axes.set_ylabel("branches")
axes.set_title(f"{neuron.label}: {len(lengths)} branches")
figure.tight_layout()
figure.savefig(out)
print(f"histogram: {out}")
