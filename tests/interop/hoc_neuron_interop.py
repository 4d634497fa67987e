#!/usr/bin/python3
"""NEURON as an independent reader of korva's HOC export: korva converts a
branching neuron (and loads and saves it from the console); NEURON must see
in each export the original's sections, 3-D points, diameters, roots and, for
every child, the point it is attached at and which of its ends is attached.
Usage: hoc_neuron_interop.py KORVA WORK_DIR"""
import json
import os
import random
import re
import subprocess
import sys

NEURON_VIEW = r"""
import json
import re, sys
from neuron import h
if h.load_file(sys.argv[1]) != 1:
    sys.exit("NEURON could not load " + sys.argv[1])
def points(sec):
    return [[round(f(i, sec=sec), 4) for f in (h.x3d, h.y3d, h.z3d, h.diam3d)] for i in range(int(h.n3d(sec=sec)))]
view = {}
for sec in h.allsec():
    ref = h.SectionRef(sec=sec)
    at = points(ref.parent)[0 if sec.parentseg().x < 0.5 else -1][:3] if ref.has_parent() else None
    view[json.dumps(points(sec))] = [at, h.section_orientation(sec=sec) if at else None]
print(json.dumps(view))
"""


def write_neuron(path, rng=random.Random(7)):
    """A soma and 40 dendrites, each starting where its parent ends; returns the section count."""
    sections = [("soma", None, [[0, 0, 0, 8], [0, 2.5, 0, 8], [0, 5, 0, 6]])]
    for k in range(40):
        parent = 0 if k < 3 else rng.randrange(len(sections))
        pts = [sections[parent][2][-1][:3] + [round(rng.uniform(0.5, 3), 2)]]
        for _ in range(rng.randrange(1, 6)):
            pts.append([round(c + rng.uniform(-64, 64)) / 16 for c in pts[-1][:3]] + [round(rng.uniform(0.5, 3), 2)])
        sections.append(("dend[%d]" % k, parent, pts))
    with open(path, "w") as f:
        f.write("create soma, dend[40]\n")
        for name, parent, pts in sections:
            f.write("%s {\n  pt3dclear()\n%s}\n" % (name, "".join("  pt3dadd(%r, %r, %r, %r)\n" % tuple(p) for p in pts)))
            if parent is not None:
                f.write("connect %s(0), %s(1)\n" % (name, sections[parent][0]))
    return len(sections)


def run(*command):
    env = dict(os.environ, NEURON_MODULE_OPTIONS="-nogui")
    return subprocess.run(command, env=env, capture_output=True, text=True)


def neuron_view(path):
    result = run("/usr/bin/python3", "-c", NEURON_VIEW, path)
    return json.loads(result.stdout.splitlines()[-1]) if result.returncode == 0 else result.stderr


def main():
    korva, work = sys.argv[1], sys.argv[2]
    os.makedirs(work, exist_ok=True)
    os.chdir(work)
    count = write_neuron("neuron.hoc")
    original = neuron_view("neuron.hoc")
    checks = {  # what: problem, or "" when fine
        "korva convert": run(korva, "convert", "neuron.hoc", "converted.hoc").stderr,
        "korva load and save": run(korva, "-c", "load neuron.hoc\nsave HOC neuron.hoc saved.hoc").stderr,
        "korva info": "" if re.search(r"^Edges: +%d$" % count, run(korva, "info", "converted.hoc").stdout, re.M) else "count",
        "NEURON reads the original": "" if len(original) == count else original,
    }
    for export in ["converted.hoc", "saved.hoc"]:
        seen = neuron_view(export) if os.path.exists(export) else "missing"
        differing = [k for k in original if not isinstance(seen, dict) or seen.get(k) != original[k]]
        checks["NEURON reads " + export] = "%d sections differ, e.g. %s" % (len(differing), differing[:1]) \
            if differing or len(seen) != len(original) else ""
    failed = {what: problem for what, problem in checks.items() if problem}
    for what, problem in failed.items():
        print("FAIL: %s: %s" % (what, problem))
    print("%d passed, %d failed" % (len(checks) - len(failed), len(failed)))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
