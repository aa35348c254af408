#!/usr/bin/env python3
"""Other readers on the files that the benchmarks of import have left.     bench/import_peers.py FOLDER

One line `<reader>/<what>/<n> nanoseconds` of CPU each, the best of some runs: numpy.loadtxt, pandas' C reader with its
default and with exact conversion, and the command `load` of ngspice. A reader that is not installed is left out, as is a
file that is not there.
"""
import resource
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

RUNS = 3


def best(function):
    times = []
    for _ in range(RUNS):
        start = time.process_time()
        function()
        times.append(time.process_time() - start)
    return min(times)


def show(name, rows, seconds):
    print(f"{name}/{rows} {seconds * 1e9:.0f}", flush=True)


def numpy_reader(table):
    import numpy as np

    data = np.loadtxt(table, delimiter=",", skiprows=1)
    show("NumPy/loadtxt", len(data), best(lambda: np.loadtxt(table, delimiter=",", skiprows=1)))
    return data


def pandas_reader(table, exact):
    import pandas as pd

    def read(precision):
        return pd.read_csv(table, engine="c", float_precision=precision)

    for name, precision in (("read_csv", None), ("read_csv_exact", "round_trip")):
        data = read(precision).to_numpy()
        show(f"Pandas/{name}", len(data), best(lambda: read(precision)))
        if exact is not None:
            print(f"pandas {name}: {(data != exact).mean():.1%} of the numbers differ in the last bits", file=sys.stderr)


def children_seconds(command, folder):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, cwd=folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def ngspice_load(raw):
    """The script that loads, less the same script without it."""
    with tempfile.TemporaryDirectory() as folder:
        seconds = []
        for load in (f"load {raw}\n", ""):
            (Path(folder) / "run.cir").write_text(f"* script\n.control\n{load}quit\n.endc\n.end\n")
            seconds.append(min(children_seconds(["ngspice", "-b", "run.cir"], folder) for _ in range(RUNS)))
        return seconds[0] - seconds[1]


def points_of(raw):
    with raw.open(encoding="ascii") as lines:
        return next(int(line.split(":")[1]) for line in lines if line.startswith("No. Points"))


def main():
    folder = Path(sys.argv[1]).resolve()
    table, raw = folder / "table.csv", folder / "points.raw"
    exact = None
    if table.exists():
        for reader in (lambda: numpy_reader(table), lambda: pandas_reader(table, exact)):
            try:
                exact = reader()
            except ImportError as missing:
                print(f"left out: {missing}", file=sys.stderr)
    if raw.exists() and shutil.which("ngspice"):
        show("Ngspice/load", points_of(raw), ngspice_load(raw))


main()
