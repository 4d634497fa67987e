"""The Python examples run and write what they promise."""
import os
import re
import subprocess
import sys

from conftest import ROOT


def run_example(name, tmp_path, *args):
    result = subprocess.run([sys.executable, str(ROOT / "examples" / "python" / name), *args],
                            cwd=tmp_path, capture_output=True, text=True, env={**os.environ, "MPLBACKEND": "Agg"})
    assert result.returncode == 0, result.stderr
    return result.stdout


def test_neuron_lengths_per_label_add_up_to_the_total(tmp_path):
    out = run_example("neuron_lengths.py", tmp_path, str(ROOT / "examples" / "data" / "CA1.swc"), "h.png")
    summed, total = map(float, re.search(r"total:\s+([\d.]+)\s+\(graph: ([\d.]+)\)", out).groups())
    assert abs(summed - total) < 0.1 and total > 0
    assert (tmp_path / "h.png").read_bytes().startswith(b"\x89PNG")


def test_vessel_network_is_built_and_rendered(tmp_path):
    out = run_example("vessel_network.py", tmp_path)
    assert "255 vertices, 254 vessels" in out
    assert (tmp_path / "vessels.png").read_bytes().startswith(b"\x89PNG")
    assert (tmp_path / "vessels.kxm").stat().st_size > 0
