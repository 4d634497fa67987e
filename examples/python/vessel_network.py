"""A vessel-like tree built from NumPy arrays in one call, with radii that
shrink at every branching, rendered as tubes coloured by radius.

    PYTHONPATH=build/release/python /usr/bin/python3 examples/python/vessel_network.py [OUT.png] [OUT.kxm]
"""
import sys

import numpy as np

import kxspatialgraph

out_png = sys.argv[1] if len(sys.argv) > 1 else "vessels.png"
out_kxm = sys.argv[2] if len(sys.argv) > 2 else "vessels.kxm"
rng = np.random.default_rng(7)

# Grow a binary tree: every vessel forks into two thinner, shorter ones.
vertices = [np.zeros(3)]
edges, polylines, radii, generation = [], [], [], []
tips = [(0, np.array([0.0, 0.0, 1.0]), 3.0)]  # (vertex, direction, radius)
for level in range(7):
    next_tips = []
    for start, direction, radius in tips:
        for side in (-1, 1):
            turn = rng.normal(0, 0.35, 3) + side * np.cross(direction, [0.3, 0.7, 0.1])
            heading = direction + turn
            heading /= np.linalg.norm(heading)
            length = 40.0 * 0.75 ** level
            # A gently wiggling polyline of 12 points from the start vertex.
            t = np.linspace(0, 1, 12)[:, None]
            wiggle = np.sin(t * np.pi) * rng.normal(0, 0.08 * length, 3)
            line = vertices[start] + t * heading * length + wiggle
            vertices.append(line[-1])
            end = len(vertices) - 1
            edges.append((start, end))
            polylines.append(line)
            radii.append(np.full(len(line), radius * 0.8))
            generation.append(level)
            next_tips.append((end, heading, radius * 0.8))
    tips = next_tips

points = np.concatenate(polylines)
offsets = np.concatenate([[0], np.cumsum([len(line) for line in polylines])])
graph = kxspatialgraph.from_arrays(
    np.array(vertices), np.array(edges), points, offsets,
    edge_attributes={"generation": np.array(generation)},
    point_attributes={"thickness": np.concatenate(radii)}, label="vessels")

table = graph.edge_table()
print(f"{graph.num_vertices} vertices, {graph.num_edges} vessels, {graph.num_points} points, "
      f"total length {graph.total_length():.0f}")
print(table.groupby("generation")["length"].agg(["count", "mean"]).round(1))
graph.render(800, 600, color="thickness", path=out_png)
graph.save(out_kxm)
print(f"picture: {out_png}, graph: {out_kxm}")
