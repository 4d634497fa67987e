#!/usr/bin/python3
"""NEURON as an independent reader of korva's HOC export.

Writes a branching neuron in HOC, has korva load it and save it again (by
`korva convert` and by the console's load/save), checks `korva info`, then
loads the original and each export in NEURON and compares what NEURON sees:
the sections with their 3-D points and diameters, the roots, and for every
child the point where it is attached and which of its ends is attached.
Usage: hoc_neuron_interop.py KORVA SOURCE_DIR WORK_DIR
"""
import json
import os
import random
import subprocess
import sys

NEURON_DUMP = r"""
import json, sys
from neuron import h
if h.load_file(sys.argv[1]) != 1:
    sys.exit("NEURON could not load " + sys.argv[1])
def points(sec):
    return [[sec.x3d(i), sec.y3d(i), sec.z3d(i), sec.diam3d(i)] for i in range(int(sec.n3d()))]
sections = []
for sec in h.allsec():
    ref = h.SectionRef(sec=sec)
    entry = {"points": points(sec)}
    if ref.has_parent():
        parent = ref.parent
        attached = points(parent)[0 if sec.parentseg().x < 0.5 else -1][:3]
        entry["attached_at"] = attached
        entry["attached_end"] = h.section_orientation(sec=sec)
    sections.append(entry)
print(json.dumps(sections))
"""


def make_neuron(path):
    """A soma with three trees; children start where their parent ends."""
    rng = random.Random(7)
    sections = [("soma", None, [[0, 0, 0, 8], [0, 2.5, 0, 8], [0, 5, 0, 6]])]
    for k in range(40):
        parent = 0 if k < 3 else rng.randrange(len(sections))
        start = sections[parent][2][-1]
        pts = [start[:3] + [round(rng.uniform(0.5, 3), 2)]]
        for _ in range(rng.randrange(1, 6)):
            pts.append([round(c + rng.uniform(-4, 4) * 16) / 16 for c in pts[-1][:3]] + [round(rng.uniform(0.5, 3), 2)])
        sections.append(("dend[%d]" % (len(sections) - 1), parent, pts))
    with open(path, "w") as f:
        f.write("create soma, dend[%d]\n" % (len(sections) - 1))
        for name, parent, pts in sections:
            f.write("%s {\n  pt3dclear()\n" % name)
            for p in pts:
                f.write("  pt3dadd(%s, %s, %s, %s)\n" % tuple(repr(float(v)) for v in p))
            f.write("}\n")
            if parent is not None:
                f.write("connect %s(0), %s(1)\n" % (name, sections[parent][0]))
    return len(sections)


def neuron_view(path):
    env = dict(os.environ, NEURON_MODULE_OPTIONS="-nogui")
    out = subprocess.run(["/usr/bin/python3", "-c", NEURON_DUMP, path], env=env, check=True,
                         capture_output=True, text=True).stdout
    sections = json.loads(out.splitlines()[-1])
    # Sections keyed by their points (names change on export), points rounded to float precision.
    view = {}
    for s in sections:
        key = json.dumps([[round(v, 4) for v in p] for p in s["points"]])
        view[key] = (json.dumps([round(v, 4) for v in s.get("attached_at", [])]), s.get("attached_end"))
    return view


def korva(korva_exe, *args):
    env = dict(os.environ)
    env.setdefault("LSAN_OPTIONS", "suppressions=%s/scripts/lsan.supp:print_suppressions=0" % SOURCE_DIR)
    return subprocess.run([korva_exe, *args], env=env, capture_output=True, text=True)


def main():
    global SOURCE_DIR
    korva_exe, SOURCE_DIR, work = sys.argv[1:4]
    os.makedirs(work, exist_ok=True)
    os.chdir(work)
    count = make_neuron("neuron.hoc")
    checks = []  # (what, problem or None)
    run = korva(korva_exe, "convert", "neuron.hoc", "converted.hoc")
    checks.append(("korva convert", run.returncode and run.stderr))
    run = korva(korva_exe, "-c", "load neuron.hoc\nsave HOC neuron.hoc saved.hoc")
    checks.append(("korva load and save", run.returncode and run.stderr))
    info = korva(korva_exe, "info", "converted.hoc").stdout
    checks.append(("korva info", "Segments:   %d" % count not in info and info))
    original = neuron_view("neuron.hoc")
    roots = sum(1 for attached, _ in original.values() if attached == "[]")
    checks.append(("NEURON reads the original", (len(original), roots) != (count, 1) and
                   "%d sections, %d roots" % (len(original), roots)))
    for export in ["converted.hoc", "saved.hoc"]:
        seen = neuron_view(export) if os.path.exists(export) else {}
        missing = [k for k in original if k not in seen]
        moved = [k for k in original if k in seen and seen[k] != original[k]]
        checks.append(("NEURON reads " + export, (missing or moved or len(seen) != len(original)) and
                       "%d sections missing, %d attached elsewhere, e.g. %s" %
                       (len(missing), len(moved), (missing + moved)[:1])))
    failed = [(what, problem) for what, problem in checks if problem]
    for what, problem in failed:
        print("FAIL: %s: %s" % (what, problem))
    print("%d passed, %d failed" % (len(checks) - len(failed), len(failed)))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
