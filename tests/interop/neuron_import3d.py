"""Reads korva's SWC and Neurolucida exports of one neuron with NEURON's
Import3d, an independent reader, and compares sections, points and length
with what korva reports for the graph.

Usage: neuron_import3d.py KORVA INPUT.swc WORKDIR
Run with Debian's /usr/bin/python3 (the neuron module lives there)."""
import math
import os
import subprocess
import sys

os.environ.setdefault("NEURON_MODULE_OPTIONS", "-nogui")
from neuron import h  # noqa: E402


def korva(binary, *args):
    run = subprocess.run([binary, *args], capture_output=True, text=True)
    if run.returncode != 0:
        sys.exit("korva %s failed: %s" % (" ".join(args), run.stderr))
    return run.stdout


def import3d(path):
    """Sections, summed 3-D point counts, summed length and the first point."""
    for sec in list(h.allsec()):
        h.delete_section(sec=sec)
    reader = h.Import3d_SWC_read() if path.endswith(".swc") else h.Import3d_Neurolucida3()
    reader.input(path)
    h.Import3d_GUI(reader, False).instantiate(None)
    sections = list(h.allsec())
    length = 0.0
    for s in sections:
        for i in range(int(s.n3d()) - 1):
            length += math.dist((s.x3d(i), s.y3d(i), s.z3d(i)), (s.x3d(i + 1), s.y3d(i + 1), s.z3d(i + 1)))
    first = sections[0]
    return len(sections), sum(int(s.n3d()) for s in sections), length, (first.x3d(0), first.y3d(0), first.z3d(0))


def check(what, ok, detail):
    print("%s: %s (%s)" % (what, "ok" if ok else "FAILED", detail))
    return ok


def main():
    binary, source, workdir = sys.argv[1:4]
    if not h.load_file("stdlib.hoc") or not h.load_file("import3d.hoc"):
        sys.exit("NEURON's import3d.hoc does not load")
    os.makedirs(workdir, exist_ok=True)
    swc, asc = os.path.join(workdir, "export.swc"), os.path.join(workdir, "export.asc")
    korva(binary, "convert", source, swc)
    korva(binary, "convert", source, asc)
    report = korva(binary, "-c", "set g [load %s]; puts [$g totalLength]; puts [$g getNumEdges]; "
                   "puts [$g getNumEdgePoints]" % source).split("\n")
    length = float(report[0])
    counts = {"Segments": int(report[1]), "Points": int(report[2])}
    ok = True

    sections, points, neuron_length, _ = import3d(swc)
    ok &= check("SWC sections = edges", sections == counts["Segments"], "%d vs %d" % (sections, counts["Segments"]))
    ok &= check("SWC points = edge points", points == counts["Points"], "%d vs %d" % (points, counts["Points"]))
    ok &= check("SWC length", abs(neuron_length - length) <= 1e-4 * length, "%.4f vs %.4f" % (neuron_length, length))

    # The Neurolucida export thins inner points: each written point is a
    # point line; every section but the first repeats its parent's last point.
    lines = open(asc).read().split("\n")
    point_lines = [l for l in lines if l.startswith("(") and len(l) > 1 and (l[1].isdigit() or l[1] == "-")]
    sections, points, neuron_length, first = import3d(asc)
    ok &= check("ASC sections = edges", sections == counts["Segments"], "%d vs %d" % (sections, counts["Segments"]))
    ok &= check("ASC points", points == len(point_lines) + sections - 1, "%d vs %d" % (points, len(point_lines)))
    ok &= check("ASC length of the thinned polylines", 0.8 * length <= neuron_length <= length * (1 + 1e-6),
                "%.4f vs %.4f" % (neuron_length, length))
    # Flipped back, the first point read is one of the source's samples.
    samples = [tuple(float(v) for v in l.split()[2:5]) for l in open(source) if l.strip() and l.lstrip()[0] != "#"]
    back = (first[0], -first[1], -first[2])
    ok &= check("ASC y and z flipped back", min(math.dist(back, s) for s in samples) < 1e-4, "%s" % (back,))
    sys.exit(0 if ok else 1)


main()
